#include "bench/sample/locomotive.h"
#include "bench/sample/locomotiveparts.h"

#include <QPainter>

namespace {

/// Where the parts of a locomotive with two noses lie.
struct Layout
{
    explicit Layout(const Appearance &look)
        : end(look.length / 2 - 0.6)
        , cab(look.build == Build::LongNosed ? look.length * 0.27 : look.length * 0.17)
    { }

    double end; // of the noses
    double cab; // half its length
    double cabTop = 3.75;
    double noseHigh = 2.95; // beside the cab
    double noseLow = 2.45; // at the end
};

QPainterPath nose(const Layout &layout, int side)
{
    QPainterPath path(QPointF(side * layout.cab, -1.15));
    path.lineTo(side * layout.cab, -layout.noseHigh);
    path.lineTo(side * (layout.end - 0.7), -layout.noseLow);
    path.quadTo(side * layout.end, -layout.noseLow + 0.05, side * layout.end, -layout.noseLow + 0.7);
    path.lineTo(side * layout.end, -1.15);
    path.closeSubpath();
    return path;
}

void paintRodDrive(QPainter &painter, const Layout &layout, const Appearance &look, int side)
{
    const double first = layout.cab * 0.55;
    const double spacing = look.wheel * 2 + 0.42;
    QPointF last;
    for (int i = 0; i < 3; ++i) {
        last = { side * (first + i * spacing), -look.wheel };
        Parts::paintWheel(painter, last.x(), look.wheel, look.frame.lighter(140), true);
    }
    Parts::paintWheel(painter, side * (layout.end - 0.75), 0.46, look.frame.lighter(140), true);
    const QPointF rodStart(side * first, -look.wheel + 0.24);
    const QPointF rodEnd(last.x(), -look.wheel + 0.24);
    const QPointF shaft(side * (first + 2.5 * spacing), -look.wheel - 0.35);
    painter.setPen(QPen(QColor(196, 196, 198), 0.16, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(rodStart, rodEnd);
    painter.setPen(QPen(QColor(172, 172, 176), 0.2, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(side * (first + spacing), -look.wheel + 0.24), shaft);
    painter.setPen(Qt::NoPen);
}

void paintNose(QPainter &painter, const Layout &layout, const Appearance &look, int side)
{
    if (look.build == Build::Crocodile) {
        paintRodDrive(painter, layout, look, side);
    } else {
        Parts::paintBogie(painter, side * (layout.end - 3.1), 3, 1.95, look.wheel, look.frame);
    }
    painter.setBrush(look.frame);
    painter.drawRect(
        QRectF(side * (layout.cab * 0.4), -1.3, side * (layout.end - layout.cab * 0.4), 0.24).normalized());
    Parts::paintPanel(painter, nose(layout, side), look.body);
    const double length = layout.end - layout.cab;
    for (int i = 0; i < 3; ++i) {
        const double x = side * (layout.cab + length * (0.2 + 0.22 * i));
        Parts::paintGrille(painter, { x - 0.4, -2.25, 0.8, 0.7 }, look.body);
    }
    painter.setPen(QPen(QColor(214, 214, 206), 0.05));
    painter.drawLine(QPointF(side * layout.cab, -layout.noseHigh - 0.25),
        QPointF(side * (layout.end - 0.5), -layout.noseLow - 0.22)); // handrail
    painter.setPen(Qt::NoPen);
    Parts::paintLamp(painter, { side * (layout.end - 0.18), -1.75 }, 0.15);
}

void paintCab(QPainter &painter, const Layout &layout, const Appearance &look, const QString &number)
{
    QPainterPath cab;
    cab.addRect(QRectF(-layout.cab, -layout.cabTop, 2 * layout.cab, layout.cabTop - 1.1));
    Parts::paintPanel(painter, cab, look.body);
    QPainterPath roof;
    roof.addRoundedRect(QRectF(-layout.cab - 0.25, -layout.cabTop - 0.3, 2 * layout.cab + 0.5, 0.4), 0.18, 0.18);
    Parts::paintPanel(painter, roof, look.roof);
    for (const int side : { -1, 1 }) {
        Parts::paintWindow(painter, { side * (layout.cab - 0.8) - 0.4, -3.5, 0.8, 0.8 });
        Parts::paintDoor(painter, side * (layout.cab - 1.9), -3.55, -1.15, look.body);
    }
    if (layout.cab > 3.6) {
        Parts::paintWindow(painter, { -1.3, -3.5, 0.9, 0.6 });
        Parts::paintWindow(painter, { 0.4, -3.5, 0.9, 0.6 });
    }
    Parts::paintLettering(painter, number, { 0, -2.1 }, layout.cab > 3.6 ? 0.5 : 0.4, look.lettering);
    const double roofTop = layout.cabTop + 0.3;
    Parts::paintRoofLine(painter, -layout.cab * 0.4, layout.cab * 0.4, roofTop);
    Parts::paintPantograph(painter, -layout.cab * 0.62, roofTop + 0.08, false);
    Parts::paintPantograph(painter, layout.cab * 0.62, roofTop + 0.08, true);
}

} // namespace

void paintCrocodile(QPainter &painter, const Appearance &look, const QString &number)
{
    const Layout layout(look);
    Parts::paintGroundShadow(painter, look.length);
    painter.setBrush(look.frame.darker(130));
    painter.drawRect(QRectF(-layout.cab, -1.3, 2 * layout.cab, 0.75));
    Parts::paintBuffers(painter, look.length);
    paintNose(painter, layout, look, -1);
    paintNose(painter, layout, look, 1);
    paintCab(painter, layout, look, number);
}
