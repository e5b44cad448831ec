#include "bench/sample/locomotiveparts.h"

#include "bench/sample/locomotive.h"

#include <QFont>
#include <QLinearGradient>
#include <QPainter>
#include <QRadialGradient>

#include <cmath>
#include <numbers>

using namespace Qt::StringLiterals;

void Parts::paintGroundShadow(QPainter &painter, double length)
{
    QLinearGradient shadow(0, -1.1, 0, 0.3);
    shadow.setColorAt(0, QColor(20, 20, 26, 0));
    shadow.setColorAt(0.7, QColor(20, 20, 26, 170));
    shadow.setColorAt(1, QColor(20, 20, 26, 0));
    painter.setPen(Qt::NoPen);
    painter.fillRect(QRectF(-length / 2 + 0.9, -1.1, length - 1.8, 1.4), shadow);
}

void Parts::paintWheel(QPainter &painter, double x, double radius, const QColor &color, bool hasSpokes)
{
    const QPointF centre(x, -radius);
    painter.setPen(QPen(QColor(168, 168, 170), radius * 0.14));
    painter.setBrush(hasSpokes ? QColor(34, 34, 36) : color);
    painter.drawEllipse(centre, radius * 0.93, radius * 0.93);
    if (hasSpokes) {
        painter.setPen(QPen(color, radius * 0.1));
        for (int i = 0; i < 7; ++i) {
            const double angle = i * std::numbers::pi / 7 + x;
            const QPointF end(std::cos(angle) * radius * 0.84, std::sin(angle) * radius * 0.84);
            painter.drawLine(centre - end, centre + end);
        }
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(color, radius * 0.16));
        painter.drawEllipse(centre, radius * 0.8, radius * 0.8);
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(color.darker(130));
    painter.drawEllipse(centre, radius * 0.26, radius * 0.26);
}

void Parts::paintBogie(QPainter &painter, double x, int axles, double spacing, double radius, const QColor &frame)
{
    const double first = x - spacing * (axles - 1) / 2;
    for (int i = 0; i < axles; ++i) {
        paintWheel(painter, first + i * spacing, radius, frame.lighter(125));
    }
    const double half = spacing * (axles - 1) / 2 + radius * 0.9;
    painter.setPen(Qt::NoPen);
    painter.setBrush(frame);
    painter.drawRoundedRect(QRectF(x - half, -radius * 1.55, 2 * half, radius * 0.62), 0.12, 0.12);
    for (int i = 0; i < axles; ++i) {
        const double axle = first + i * spacing;
        painter.setBrush(frame.lighter(140));
        painter.drawRoundedRect(QRectF(axle - 0.2, -radius - 0.22, 0.4, 0.42), 0.06, 0.06); // axle box
        painter.setPen(QPen(frame.lighter(170), 0.05));
        painter.drawLine(QPointF(axle - 0.5, -radius * 1.45), QPointF(axle - 0.2, -radius * 1.05));
        painter.drawLine(QPointF(axle + 0.5, -radius * 1.45), QPointF(axle + 0.2, -radius * 1.05));
        painter.setPen(Qt::NoPen);
    }
}

void Parts::paintBuffers(QPainter &painter, double length)
{
    painter.setPen(Qt::NoPen);
    for (const int side : { -1, 1 }) {
        const double end = side * length / 2;
        painter.setBrush(QColor(40, 40, 44));
        painter.drawRect(QRectF(end - side * 0.62, -1.16, side * 0.5, 0.2).normalized());
        painter.drawRect(QRectF(end - side * 0.12, -1.3, side * 0.12, 0.48).normalized());
        painter.drawRect(QRectF(end - side * 0.6, -0.86, side * 0.26, 0.4).normalized()); // coupling
    }
}

void Parts::paintPanel(QPainter &painter, const QPainterPath &shape, const QColor &color)
{
    const QRectF bounds = shape.boundingRect();
    QLinearGradient light(0, bounds.top(), 0, bounds.bottom());
    light.setColorAt(0, color.lighter(128));
    light.setColorAt(0.18, color.lighter(112));
    light.setColorAt(0.5, color);
    light.setColorAt(1, color.darker(122));
    painter.setPen(QPen(color.darker(170), 0.04));
    painter.setBrush(light);
    painter.drawPath(shape);
    painter.setPen(Qt::NoPen);
}

void Parts::paintWindow(QPainter &painter, const QRectF &pane)
{
    QLinearGradient glass(pane.topLeft(), pane.bottomRight());
    glass.setColorAt(0, QColor(178, 206, 224));
    glass.setColorAt(0.45, QColor(76, 98, 118));
    glass.setColorAt(1, QColor(38, 50, 64));
    painter.setPen(QPen(QColor(206, 208, 210), 0.06));
    painter.setBrush(glass);
    painter.drawRoundedRect(pane, 0.08, 0.08);
    painter.setPen(Qt::NoPen);
}

void Parts::paintGrille(QPainter &painter, const QRectF &area, const QColor &body)
{
    painter.setPen(QPen(body.darker(170), 0.04));
    painter.setBrush(body.darker(128));
    painter.drawRect(area);
    for (double y = area.top() + 0.1; y < area.bottom(); y += 0.11) {
        painter.drawLine(QPointF(area.left(), y), QPointF(area.right(), y));
    }
    painter.setPen(Qt::NoPen);
}

void Parts::paintDoor(QPainter &painter, double x, double top, double bottom, const QColor &body)
{
    painter.setPen(QPen(body.darker(150), 0.04));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(QRectF(x - 0.34, top, 0.68, bottom - top));
    painter.setPen(QPen(QColor(222, 222, 214), 0.05));
    for (const double rail : { x - 0.46, x + 0.46 }) {
        painter.drawLine(QPointF(rail, top + 0.7), QPointF(rail, bottom + 0.1));
    }
    paintWindow(painter, { x - 0.22, top + 0.12, 0.44, 0.6 });
}

void Parts::paintLamp(QPainter &painter, const QPointF &centre, double radius)
{
    QRadialGradient shine(centre, radius * 3.2);
    shine.setColorAt(0, QColor(255, 244, 190, 220));
    shine.setColorAt(1, QColor(255, 244, 190, 0));
    painter.setPen(Qt::NoPen);
    painter.setBrush(shine);
    painter.drawEllipse(centre, radius * 3.2, radius * 3.2);
    painter.setBrush(QColor(255, 250, 224));
    painter.drawEllipse(centre, radius, radius);
}

void Parts::paintLettering(
    QPainter &painter, const QString &text, const QPointF &centre, double height, const QColor &color)
{
    QFont font(u"Liberation Sans"_s);
    font.setBold(true);
    font.setPixelSize(100); // the path is scaled, so that the letters keep their shape at every size
    QPainterPath letters;
    letters.addText(0, 0, font, text);
    const QRectF bounds = letters.boundingRect();
    painter.save();
    painter.translate(centre);
    painter.scale(height / 72, height / 72);
    painter.translate(-bounds.center().x(), 36);
    painter.fillPath(letters, color);
    painter.restore();
}

void Parts::paintPantograph(QPainter &painter, double x, double roof, bool isRaised)
{
    const double head = isRaised ? WireHeight : roof + 0.5;
    const double knee = roof + (head - roof) * 0.52;
    const double reach = isRaised ? 0.95 : 1.5;
    const QPointF middle(x, -head);
    painter.setPen(QPen(QColor(150, 46, 40), 0.09));
    for (const int side : { -1, 1 }) {
        const QPointF joint(x + side * reach, -knee);
        painter.drawLine(QPointF(x + side * 0.25, -roof), joint);
        painter.drawLine(joint, middle);
    }
    painter.setPen(QPen(QColor(60, 60, 64), 0.12));
    painter.drawLine(middle - QPointF(0.42, 0), middle + QPointF(0.42, 0));
    painter.drawLine(QPointF(x - 1.1, -roof - 0.05), QPointF(x + 1.1, -roof - 0.05));
    painter.setPen(Qt::NoPen);
}

void Parts::paintRoofLine(QPainter &painter, double from, double to, double roof)
{
    painter.setPen(QPen(QColor(156, 92, 60), 0.1));
    for (double x = from; x <= to; x += (to - from) / 4) {
        painter.drawLine(QPointF(x, -roof), QPointF(x, -roof - 0.32)); // insulator
    }
    painter.setPen(QPen(QColor(70, 72, 76), 0.06));
    painter.drawLine(QPointF(from, -roof - 0.34), QPointF(to, -roof - 0.34));
    painter.setPen(Qt::NoPen);
}
