#pragma once

#include <QDateTime>
#include <QImage>
#include <QString>
#include <QStringList>

/// "./Data/Pictures/<folder>/<name>.jpg", with the name made of the bare numbers of year, month, day, hour, minute,
/// second and millisecond.
[[nodiscard]] QString copyPath(const QString &folder, const QDateTime &time);

/// Whether something lies at `path`, a link to nothing included.
[[nodiscard]] bool isTaken(const QString &path);

/// A copy path in `folder` that no file has yet. The names carry no leading zeros and a clock can be set back, so the
/// clock is read again until the name is free.
[[nodiscard]] QString freeCopyPath(const QString &folder);

/// Writes the picture as a whole JPEG file on the disk, or nothing; true only when it is safely there. Never
/// overwrites a file.
[[nodiscard]] bool writeCopy(const QImage &picture, const QString &path);

/// Removes copies that the program made: files directly inside a folder of "./Data/Pictures", and never one that
/// `originals` or the picture rows name as the user's own file. Anything else is left alone and logged, whatever the
/// database says. Returns the driver's text when the rows cannot be read, and nothing is removed then; else an empty
/// text.
[[nodiscard]] QString removeCopies(const QStringList &paths, const QStringList &originals);

/// The same for one copy. True when the file was removed.
bool removeCopy(const QString &path, const QString &originalPath);
