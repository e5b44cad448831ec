#pragma once

#include "store/statement.h"

/// Removes an entry with its pictures' copies and rows, asking nobody; the user's own files are never touched.
/// Where the catalogue cannot be written, nothing is removed at all.
[[nodiscard]] WriteOutcome removeEntry(int entryId);
