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

/// All that are measured; `isQuick` leaves out those above 50 megapixels.
[[nodiscard]] QList<SourcePhoto> sourcePhotos(bool isQuick);

/// Makes those that are missing in `folder`. False when one could not be written.
[[nodiscard]] bool makeSourcePhotos(const QString &folder, bool isQuick);

/// Makes `count` copies of 750 x 500 pixels (some upright) in `folder`, unless they are there.
[[nodiscard]] bool makeBaseCopies(const QString &folder, int count);

/// The base copies' files in `folder`, by name.
[[nodiscard]] QString baseCopy(const QString &folder, int index);
