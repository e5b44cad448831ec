#pragma once

#include <QPainter>

#include <cmath>

/// The point nearest to `point` that falls on a whole pixel of the screen. At scales like 1.5 a picture drawn between
/// two pixels would be blurred.
[[nodiscard]] inline QPointF onDevicePixel(const QPainter &painter, const QPointF &point)
{
    const QTransform toDevice = painter.deviceTransform();
    const QPointF exact = toDevice.map(point);
    return toDevice.inverted().map(QPointF(std::round(exact.x()), std::round(exact.y())));
}
