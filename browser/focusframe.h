#pragma once

#include <QPainter>
#include <QRectF>

/// The mark of the canvas item that has the keyboard focus: a light and a dark line, visible on every background.
namespace FocusFrame {

constexpr double Margin = 6; // pixels around the item

[[nodiscard]] inline QRectF around(const QRectF &rect)
{
    return rect.adjusted(-Margin, -Margin, Margin, Margin);
}

inline void paint(QPainter *painter, const QRectF &rect)
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setBrush(Qt::NoBrush);
    const QRectF frame = around(rect).adjusted(2.5, 2.5, -2.5, -2.5);
    painter->setPen(QPen(Qt::white, 5));
    painter->drawRoundedRect(frame, 5, 5);
    painter->setPen(QPen(QColor(200, 60, 0), 2.5));
    painter->drawRoundedRect(frame, 5, 5);
    painter->restore();
}

} // namespace FocusFrame
