#include "bench/sample/locomotive.h"
#include "bench/sample/locomotiveparts.h"

#include <QPainter>

namespace {

constexpr double BoilerTop = 3.75;
constexpr double BoilerBottom = 1.95;
constexpr double CabTop = 4.1;
constexpr double TenderGap = 0.35;

/// The engine stands to the left, its tender to the right; x = 0 is the middle of both.
struct Layout
{
    explicit Layout(const Appearance &look)
        : front(-look.length / 2 + 0.6)
        , cabFront(look.length * 0.06)
        , cabEnd(look.length * 0.06 + 2.2)
        , end(look.length / 2 - 0.6)
    { }

    double front;
    double cabFront;
    double cabEnd;
    double end;
};

QBrush boilerLight(const QColor &color)
{
    QLinearGradient light(0, -BoilerTop, 0, -BoilerBottom);
    light.setColorAt(0, color.lighter(150));
    light.setColorAt(0.25, color.lighter(230));
    light.setColorAt(0.45, color.lighter(130));
    light.setColorAt(1, color.darker(150));
    return light;
}

void paintWheels(QPainter &painter, const Layout &layout, const Appearance &look)
{
    const int drivers = look.axles.at(1);
    const double spacing = look.wheel * 2 + 0.14;
    const double middle = (layout.front + layout.cabEnd) / 2 + 0.3;
    const double first = middle - spacing * (drivers - 1) / 2;
    painter.setBrush(look.body.darker(115));
    painter.drawRect(QRectF(layout.front + 0.4, -2.05, layout.cabEnd - layout.front - 0.5, 1.15)); // frame
    for (int i = 0; i < look.axles.at(0); ++i) {
        Parts::paintWheel(painter, layout.front + 0.9 + i * 1.3, 0.5, look.frame, true);
    }
    for (int i = 0; i < drivers; ++i) {
        Parts::paintWheel(painter, first + i * spacing, look.wheel, look.frame, true);
    }
    const double rod = -look.wheel + look.wheel * 0.35;
    painter.setBrush(QColor(46, 46, 48));
    painter.drawRoundedRect(QRectF(layout.front + 0.6, -1.5, 1.5, 0.75), 0.12, 0.12); // cylinder
    painter.setPen(QPen(QColor(200, 202, 206), 0.14, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(first, rod), QPointF(first + spacing * (drivers - 1), rod));
    painter.drawLine(QPointF(layout.front + 1.9, -1.1), QPointF(first + spacing, rod));
    painter.setPen(Qt::NoPen);
}

void paintBoiler(QPainter &painter, const Layout &layout, const Appearance &look)
{
    painter.setBrush(look.frame);
    painter.drawRect(QRectF(layout.front, -1.75, layout.cabEnd - layout.front, 0.2)); // running board
    painter.setBrush(boilerLight(look.body));
    painter.drawRoundedRect(
        QRectF(layout.front + 0.35, -BoilerTop, layout.cabFront - layout.front, BoilerTop - BoilerBottom), 0.25, 0.4);
    painter.setPen(QPen(QColor(150, 150, 152, 150), 0.05));
    for (int i = 1; i < 5; ++i) {
        const double x = layout.front + 2 + (layout.cabFront - layout.front - 2) * i / 5;
        painter.drawLine(QPointF(x, -BoilerTop), QPointF(x, -BoilerBottom));
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(boilerLight(look.body));
    painter.drawRoundedRect(QRectF(layout.front + 0.9, -4.35, 0.75, 0.8), 0.1, 0.1); // chimney
    for (const double x : { 3.4, 5.2 }) { // domes
        painter.drawRoundedRect(QRectF(layout.front + x, -BoilerTop - 0.35, 1.1, 0.6), 0.35, 0.35);
    }
    painter.setBrush(look.body.lighter(140));
    painter.drawRoundedRect(QRectF(layout.front + 0.2, -3.6, 1.9, 1.5), 0.15, 0.15); // smoke deflector
}

void paintCab(QPainter &painter, const Layout &layout, const Appearance &look, const QString &number)
{
    QPainterPath cab;
    cab.addRect(QRectF(layout.cabFront, -CabTop, layout.cabEnd - layout.cabFront, CabTop - 1.5));
    Parts::paintPanel(painter, cab, look.body.lighter(125));
    QPainterPath roof;
    roof.addRoundedRect(
        QRectF(layout.cabFront - 0.25, -CabTop - 0.18, layout.cabEnd - layout.cabFront + 0.6, 0.3), 0.14, 0.14);
    Parts::paintPanel(painter, roof, look.roof);
    Parts::paintWindow(painter, { layout.cabFront + 0.35, -3.75, 0.7, 0.75 });
    Parts::paintWindow(painter, { layout.cabFront + 1.2, -3.75, 0.7, 0.75 });
    const QPointF plate((layout.cabFront + layout.cabEnd) / 2, -2.4);
    painter.setBrush(QColor(150, 30, 28));
    painter.drawRect(QRectF(plate.x() - 0.98, plate.y() - 0.28, 1.96, 0.56));
    Parts::paintLettering(painter, number, plate, 0.34, look.lettering);
}

void paintTender(QPainter &painter, const Layout &layout, const Appearance &look)
{
    const double start = layout.cabEnd + TenderGap;
    const double length = layout.end - start;
    painter.setBrush(look.body.darker(115));
    painter.drawRect(QRectF(layout.cabEnd - 0.4, -1.5, length + TenderGap + 0.4, 0.6)); // frame, up to the engine
    for (const double share : { 0.25, 0.75 }) {
        Parts::paintBogie(painter, start + length * share, 2, 1.5, 0.5, look.frame);
    }
    QPainterPath tank;
    tank.addRect(QRectF(start, -3.2, length, 2.05));
    Parts::paintPanel(painter, tank, look.body.lighter(125));
    painter.setBrush(QColor(24, 24, 26));
    painter.drawPolygon(QPolygonF({ { start + 0.2, -3.2 }, { start + 0.8, -3.65 }, { start + length * 0.6, -3.75 },
        { start + length * 0.85, -3.2 } })); // coal
}

/// Steam drifts back over the train.
void paintSteam(QPainter &painter, const Layout &layout)
{
    for (int i = 0; i < 26; ++i) {
        const double share = i / 25.0;
        const QPointF puff(layout.front + 1.3 + 15 * share * share + (i % 3) * 0.4, -4.5 - 2.6 * share - (i % 4) * 0.3);
        const double radius = 0.45 + 1.9 * share;
        QRadialGradient cloud(puff, radius);
        cloud.setColorAt(0, QColor(250, 250, 252, int(170 * (1 - share * 0.75))));
        cloud.setColorAt(1, QColor(250, 250, 252, 0));
        painter.setBrush(cloud);
        painter.drawEllipse(puff, radius, radius);
    }
}

} // namespace

void paintSteamLocomotive(QPainter &painter, const Appearance &look, const QString &number)
{
    const Layout layout(look);
    Parts::paintGroundShadow(painter, look.length);
    Parts::paintBuffers(painter, look.length);
    paintTender(painter, layout, look);
    paintWheels(painter, layout, look);
    paintBoiler(painter, layout, look);
    paintCab(painter, layout, look, number);
    Parts::paintLamp(painter, { layout.front + 0.1, -1.95 }, 0.14);
    paintSteam(painter, layout);
}
