#pragma once

#include <QImage>
#include <QList>
#include <QString>

/// A photograph as a camera would have left it, large enough to be worth measuring.
struct SourcePhoto
{
    QString name; // of the file below the folder of the sources
    QSize size;
    enum Kind { Jpeg, Progressive, Png } kind = Jpeg;
};

/// All whose capture is timed; `isQuick` leaves out those above 50 megapixels.
[[nodiscard]] QList<SourcePhoto> sourcePhotos(bool isQuick);

/// Those, and the further ones whose copies are compared with the source.
[[nodiscard]] QList<SourcePhoto> qualityPhotos(bool isQuick);

/// Makes those of both that are missing in `folder`: painted at their own size, with edges as sharp as pixels allow.
/// False when one could not be written.
[[nodiscard]] bool makeSourcePhotos(const QString &folder, bool isQuick);

/// Makes `count` copies of 750 x 500 pixels (some upright) in `folder`, unless they are there.
[[nodiscard]] bool makeBaseCopies(const QString &folder, int count);

/// The base copies' files in `folder`, by name.
[[nodiscard]] QString baseCopy(const QString &folder, int index);
