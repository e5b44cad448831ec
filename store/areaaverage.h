#pragma once

#include <QImage>
#include <QSize>
#include <QSizeF>

/// `image` made smaller: each pixel of the result is the exact average of the area that it stands for. `covered`, in
/// pixels of `image` from its top left corner, is what the result shows; of the last column and row that may be a
/// part only. Qt's smooth scaling is meant for the eye and estimates; where the step is no whole number, sharp edges
/// come out visibly softer. At most 256 pixels become one in either direction.
[[nodiscard]] QImage areaAverage(QImage image, const QSizeF &covered, const QSize &size);
