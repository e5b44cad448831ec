#pragma once

#include <QDateTime>
#include <QImage>
#include <QString>

/// "./Data/Pictures/<folder>/<name>.jpg", with the name made of the bare numbers of year, month, day, hour, minute,
/// second and millisecond.
[[nodiscard]] QString copyPath(const QString &folder, const QDateTime &time);

/// A copy path in `folder` that no file has yet. The names carry no leading zeros and a clock can be set back, so the
/// clock is read again until the name is free.
[[nodiscard]] QString freeCopyPath(const QString &folder);

/// Writes the picture as a whole JPEG file on the disk, or nothing; true only when it is safely there. Never
/// overwrites a file.
[[nodiscard]] bool writeCopy(const QImage &picture, const QString &path);

/// Removes a copy that the program made: a file directly inside a folder below "./Data/Pictures", and never the one
/// that `originalPath` names. Anything else is left alone and logged, whatever the database says.
/// True when the file was removed.
bool removeCopy(const QString &path, const QString &originalPath);
