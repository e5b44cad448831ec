#include "browser/startframe.h"

#include <QPainter>

#include <array>

namespace {

constexpr double Wood = 14; // pixels
constexpr int Shadow = 8;
constexpr double ShadowDrop = 3; // further below than above
constexpr QColor Mount(248, 244, 234);
constexpr QColor Lip(205, 168, 86); // the gilded inner edge
constexpr QColor Edge(48, 28, 15);

/// The four bars, cut to a mitre; the light comes from above.
void paintWood(QPainter *painter, const QRectF &outer, const QRectF &inner)
{
    struct Bar
    {
        QPolygonF shape;
        QColor color;
    };
    const std::array bars {
        Bar { { { outer.topLeft(), outer.topRight(), inner.topRight(), inner.topLeft() } }, QColor(139, 90, 53) },
        Bar { { { outer.topLeft(), inner.topLeft(), inner.bottomLeft(), outer.bottomLeft() } }, QColor(120, 76, 44) },
        Bar {
            { { outer.topRight(), outer.bottomRight(), inner.bottomRight(), inner.topRight() } }, QColor(97, 60, 34) },
        Bar { { { outer.bottomLeft(), inner.bottomLeft(), inner.bottomRight(), outer.bottomRight() } },
            QColor(82, 50, 28) },
    };
    for (const Bar &bar : bars) {
        painter->setPen(QPen(bar.color, 0.5)); // closes the seams
        painter->setBrush(bar.color);
        painter->drawPolygon(bar.shape);
    }
}

} // namespace

QRectF StartFrame::boundingRect() const
{
    return QRectF(QPointF(0, 0), m_size).adjusted(-Shadow, -Shadow, Shadow, Shadow + ShadowDrop);
}

void StartFrame::paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget)
{
    Q_UNUSED(option)
    Q_UNUSED(widget)
    painter->setRenderHint(QPainter::Antialiasing);
    const QRectF outer(QPointF(0, 0), m_size);
    painter->setPen(Qt::NoPen);
    painter->setBrush(QColor(0, 0, 0, 12));
    for (int spread = 1; spread <= Shadow; ++spread) {
        const QRectF shadow = outer.translated(0, ShadowDrop).adjusted(-spread, -spread, spread, spread);
        painter->drawRoundedRect(shadow, spread, spread);
    }
    const QRectF inner = outer.adjusted(Wood, Wood, -Wood, -Wood);
    paintWood(painter, outer, inner);
    painter->setPen(QPen(Edge, 1));
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(outer.adjusted(0.5, 0.5, -0.5, -0.5));
    painter->setPen(QPen(Lip, 2));
    painter->setBrush(Mount);
    painter->drawRect(inner.adjusted(1, 1, -1, -1));
}
