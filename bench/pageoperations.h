#pragma once

#include "bench/measure.h"

/// Pages of a search on the catalogue in the working folder: name and milliseconds of each case and of its floor,
/// which is called like the case with " floor" appended.
[[nodiscard]] Timings measurePages(int repetitions);

/// What a user does on a page that is there: turning to the next pictures, and scrolling (the worst step of a page).
[[nodiscard]] Timings measureCanvas(int repetitions);
