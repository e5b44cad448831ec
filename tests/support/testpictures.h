#pragma once

#include <QImage>
#include <QSize>
#include <QString>

/// A picture whose four corners differ, so that a test can see whether it stands upright:
/// red at the top left, green at the top right, blue at the bottom left, yellow at the bottom right.
[[nodiscard]] QImage testImage(const QSize &size);

/// A picture with soft slopes and thin lines, on which bad scaling shows and which makes a long file.
[[nodiscard]] QImage detailedImage(const QSize &size);

/// Writes testImage() as JPEG; `orientation` is the EXIF orientation tag, 1 (upright) writes none.
/// The stored pixels are testImage(size) in every case: readers turn them by the tag.
void writeTestJpeg(const QString &path, const QSize &size, int orientation = 1);

/// A PNG file whose right half is transparent.
void writeTransparentPng(const QString &path, const QSize &size);
