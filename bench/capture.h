#pragma once

#include <QString>

/// The least that capturing a photograph takes, without the program's code: decode as far reduced as possible, scale
/// smoothly into 750 x 500, encode, write, and wait for the disk.
void capturePlainly(const QString &source, const QString &target);

/// What vipsthumbnail takes for the same, in milliseconds of a whole process; negative when it is not installed.
[[nodiscard]] double captureWithVips(const QString &source, const QString &target);
