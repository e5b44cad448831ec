#include "bench/sample/wagon.h"

#include "bench/sample/locomotiveparts.h"

#include <QPainter>

namespace {

QColor coachColor(Country country, QRandomGenerator &random)
{
    const QList<QColor> swiss { QColor(40, 84, 60), QColor(40, 84, 60), QColor(214, 218, 220) };
    const QList<QColor> german { QColor(36, 62, 96), QColor(196, 190, 168), QColor(150, 40, 44) };
    const QList<QColor> austrian { QColor(150, 44, 40), QColor(206, 128, 44), QColor(52, 84, 60) };
    const QList<QColor> &colors = country == Country::Switzerland ? swiss
        : country == Country::Germany                             ? german
                                                                  : austrian;
    return colors.at(random.bounded(int(colors.size())));
}

void paintCoach(QPainter &painter, double length, const QColor &color)
{
    for (const double x : { -length / 2 + 3, length / 2 - 3 }) {
        Parts::paintBogie(painter, x, 2, 2.3, 0.46, QColor(48, 48, 52));
    }
    painter.setBrush(QColor(44, 44, 48));
    painter.drawRect(QRectF(-3.4, -1.05, 6.8, 0.5));
    QPainterPath roof;
    roof.addRoundedRect(QRectF(-length / 2 + 0.2, -3.98, length - 0.4, 0.9), 0.4, 0.4);
    Parts::paintPanel(painter, roof, QColor(148, 150, 154));
    QPainterPath body;
    body.addRect(QRectF(-length / 2 + 0.2, -3.6, length - 0.4, 2.5));
    Parts::paintPanel(painter, body, color);
    for (double x = -length / 2 + 2.6; x < length / 2 - 2.4; x += 1.85) {
        Parts::paintWindow(painter, { x - 0.55, -3.1, 1.1, 0.85 });
    }
    for (const double x : { -length / 2 + 0.95, length / 2 - 0.95 }) {
        Parts::paintDoor(painter, x, -3.35, -1.2, color);
    }
}

void paintBoxWagon(QPainter &painter, double length, const QColor &color)
{
    QPainterPath roof;
    roof.addRoundedRect(QRectF(-length / 2, -3.95, length, 0.8), 0.4, 0.4);
    Parts::paintPanel(painter, roof, QColor(170, 172, 174));
    QPainterPath body;
    body.addRect(QRectF(-length / 2 + 0.1, -3.55, length - 0.2, 2.35));
    Parts::paintPanel(painter, body, color);
    painter.setPen(QPen(color.darker(140), 0.05));
    for (double x = -length / 2 + 0.8; x < length / 2; x += 0.9) {
        painter.drawLine(QPointF(x, -3.5), QPointF(x, -1.25));
    }
    painter.setPen(Qt::NoPen);
}

void paintTankWagon(QPainter &painter, double length, const QColor &color)
{
    painter.setBrush(QColor(50, 50, 54));
    painter.drawRect(QRectF(-length / 2, -1.25, length, 0.22));
    QPainterPath tank;
    tank.addRoundedRect(QRectF(-length / 2 + 0.5, -3.55, length - 1, 2.2), 0.9, 0.9);
    Parts::paintPanel(painter, tank, color);
    painter.setBrush(color.darker(120));
    painter.drawRect(QRectF(-0.5, -3.85, 1, 0.35));
}

void paintGoodsWagon(QPainter &painter, double length, QRandomGenerator &random)
{
    for (const double x : { -length / 2 + 2, length / 2 - 2 }) {
        Parts::paintBogie(painter, x, 2, 1.7, 0.46, QColor(56, 50, 48));
    }
    const QList<QColor> colors { QColor(122, 66, 48), QColor(104, 84, 68), QColor(92, 100, 108), QColor(140, 88, 44) };
    const QColor color = colors.at(random.bounded(int(colors.size())));
    if (random.bounded(3) == 0) {
        paintTankWagon(painter, length, QColor(170, 172, 176));
    } else {
        paintBoxWagon(painter, length, color);
    }
}

} // namespace

void paintTrain(QPainter &painter, double start, int direction, int count, bool isGoodsTrain, Country country,
    QRandomGenerator &random)
{
    const double length = isGoodsTrain ? 13 : 24;
    const QColor color = coachColor(country, random);
    for (int i = 0; i < count; ++i) {
        painter.save();
        painter.translate(start + direction * (length / 2 + i * length), 0);
        Parts::paintGroundShadow(painter, length);
        Parts::paintBuffers(painter, length);
        painter.setPen(Qt::NoPen);
        if (isGoodsTrain) {
            paintGoodsWagon(painter, length, random);
        } else {
            paintCoach(painter, length, color);
        }
        painter.restore();
    }
}
