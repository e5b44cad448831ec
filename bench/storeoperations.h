#pragma once

#include "bench/measure.h"

/// The choice of a folder in the picture store, and deleting an entry with six pictures, on the catalogue in the
/// working folder, each beside its floor (the same name with " floor" appended).
[[nodiscard]] Timings measureStore(int repetitions);
