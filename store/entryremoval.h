#pragma once

#include "store/statement.h"

/// Removes an entry with its pictures' copies and rows, asking nobody; the user's own files are never touched.
/// Where the catalogue cannot be read and written, or another program is reading it, nothing is removed at all. The
/// ids 0 and -1 are those of no entry: nothing is done, which is no failure.
[[nodiscard]] WriteOutcome removeEntry(int entryId);
