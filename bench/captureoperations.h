#pragma once

#include "bench/measure.h"

/// Choosing, showing and saving each of the source photographs in `folder` in the real picture form, beside its floor
/// (the same name with " floor" appended) and, for one of them, beside another program (" vips").
[[nodiscard]] Timings measureCapture(const QString &folder, bool isQuick, int repetitions);
