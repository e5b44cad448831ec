#pragma once

#include "bench/measure.h"

#include <QString>

/// The table of all goals that were measured, in Markdown, with the growth over the catalogues below it.
[[nodiscard]] QString tableOf(const Timings &timings);

/// All timings and outcomes as a JSON file. False when it could not be written.
[[nodiscard]] bool writeJson(const Timings &timings, const QString &path);
