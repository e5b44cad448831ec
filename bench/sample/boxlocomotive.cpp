#include "bench/sample/locomotive.h"
#include "bench/sample/locomotiveparts.h"

#include <QPainter>

namespace {

constexpr double BodyTop = 3.65;
constexpr double BodyBottom = 1.05;
constexpr double RoofTop = 4.05;

/// The body between two heights, leaning back towards the roof at both ends.
QPainterPath bodyBetween(const Appearance &look, double bottom, double top)
{
    const double half = look.length / 2 - 0.6;
    const auto edge
        = [&look, half](double height) { return half - look.slope * (height - BodyBottom) / (BodyTop - BodyBottom); };
    QPainterPath path;
    path.addPolygon(QPolygonF({ { -edge(bottom), -bottom }, { -edge(top), -top }, { edge(top), -top },
        { edge(bottom), -bottom }, { -edge(bottom), -bottom } }));
    return path;
}

/// The wheels of a rigid frame: small ones that carry at both ends, large ones that drive between them.
void paintRigidWheels(QPainter &painter, const Appearance &look)
{
    const QColor color = look.frame.lighter(130);
    const double spacing = look.wheel * 2 + 0.5;
    const int groups = int(look.axles.size());
    double width = 0;
    for (int group = 1; group + 1 < groups; ++group) {
        width += spacing * look.axles.at(group) + (group > 1 ? 0.7 : 0);
    }
    double x = -width / 2;
    for (int group = 1; group + 1 < groups; ++group) {
        for (int axle = 0; axle < look.axles.at(group); ++axle) {
            Parts::paintWheel(painter, x + spacing / 2, look.wheel, color, true);
            x += spacing;
        }
        x += 0.7;
    }
    for (int axle = 0; axle < look.axles.first(); ++axle) {
        Parts::paintWheel(painter, -width / 2 - 0.75 - 1.35 * axle, 0.48, color, true);
    }
    for (int axle = 0; axle < look.axles.last(); ++axle) {
        Parts::paintWheel(painter, width / 2 + 0.75 + 1.35 * axle, 0.48, color, true);
    }
}

void paintRunningGear(QPainter &painter, const Appearance &look)
{
    const double half = look.length / 2;
    painter.setBrush(look.frame.darker(120));
    painter.drawRect(QRectF(-half + 1, -1.15, look.length - 2, 0.4));
    if (look.hasRods) {
        paintRigidWheels(painter, look);
        return;
    }
    painter.drawRoundedRect(QRectF(-1.7, -0.95, 3.4, 0.62), 0.1, 0.1); // transformer or tank
    const int bogies = int(look.axles.size());
    const double spacing = look.wheel * 2 + (look.axles.first() > 2 ? 0.75 : 1.35);
    for (int i = 0; i < bogies; ++i) {
        const double reach = half - 1.7 - spacing * (look.axles.at(i) - 1) / 2 - look.wheel;
        Parts::paintBogie(
            painter, -reach + 2 * reach * i / (bogies - 1), look.axles.at(i), spacing, look.wheel, look.frame);
    }
}

void paintFront(QPainter &painter, const Appearance &look, int side)
{
    const double end = side * (look.length / 2 - 0.6);
    const double lean = side * look.slope;
    painter.setBrush(QColor(52, 66, 82));
    painter.drawPolygon(QPolygonF({ { end - lean * 0.56, -2.5 }, { end - lean * 0.94, -3.45 },
        { end - lean * 0.94 - side * 0.24, -3.45 }, { end - lean * 0.56 - side * 0.24, -2.5 } }));
    const double cab = end - side * 1.35 - lean * 0.6;
    Parts::paintWindow(painter, QRectF(cab - 0.42, -3.3, 0.84, 0.78));
    Parts::paintDoor(painter, cab - side * 1.15, -3.4, -BodyBottom - 0.1, look.body);
    Parts::paintLamp(painter, { end - side * 0.1 - lean * 0.2, -1.6 }, 0.13);
}

void paintSides(QPainter &painter, const Appearance &look)
{
    const double reach = look.length / 2 - 4.6;
    const int panes = look.length > 17.5 ? 5 : 4;
    for (int i = 0; i < panes; ++i) {
        const double x = -reach + 2 * reach * i / (panes - 1);
        if (look.hasPantographs && i % 2 == 0) {
            Parts::paintWindow(painter, { x - 0.5, -3.3, 1.0, 0.55 });
        } else {
            Parts::paintGrille(painter, { x - 0.75, -3.38, 1.5, 0.72 }, look.body);
        }
    }
}

void paintRoof(QPainter &painter, const Appearance &look)
{
    const double half = look.length / 2 - 1.1 - look.slope;
    QPainterPath roof(QPointF(-half, -BodyTop));
    roof.cubicTo(-half + 0.2, -RoofTop, -half + 0.5, -RoofTop, -half + 1.2, -RoofTop);
    roof.lineTo(half - 1.2, -RoofTop);
    roof.cubicTo(half - 0.5, -RoofTop, half - 0.2, -RoofTop, half, -BodyTop);
    roof.closeSubpath();
    Parts::paintPanel(painter, roof, look.roof);
    painter.setBrush(look.roof.darker(125));
    if (look.hasPantographs) {
        painter.drawRoundedRect(QRectF(-1.4, -RoofTop - 0.2, 2.8, 0.24), 0.08, 0.08);
        Parts::paintRoofLine(painter, -half + 3.2, half - 3.2, RoofTop);
        Parts::paintPantograph(painter, -half + 1.9, RoofTop + 0.1, false);
        Parts::paintPantograph(painter, half - 1.9, RoofTop + 0.1, true);
        return;
    }
    for (const double x : { -2.6, 0.4, 2.4 }) { // fans and exhausts
        painter.drawRoundedRect(QRectF(x, -RoofTop - 0.18, 1.3, 0.22), 0.08, 0.08);
    }
}

} // namespace

void paintBoxLocomotive(QPainter &painter, const Appearance &look, const QString &number)
{
    Parts::paintGroundShadow(painter, look.length);
    paintRunningGear(painter, look);
    Parts::paintBuffers(painter, look.length);
    paintRoof(painter, look);
    Parts::paintPanel(painter, bodyBetween(look, BodyBottom, BodyTop), look.body);
    if (look.lower != look.body) {
        Parts::paintPanel(painter, bodyBetween(look, BodyBottom, BodyBottom + 0.72), look.lower);
    }
    if (look.stripe.alpha() > 0) {
        painter.fillPath(bodyBetween(look, BodyBottom + 0.76, BodyBottom + 0.88), look.stripe);
    }
    paintSides(painter, look);
    paintFront(painter, look, -1);
    paintFront(painter, look, 1);
    Parts::paintLettering(painter, number, { 0, -2.25 }, 0.5, look.lettering);
}
