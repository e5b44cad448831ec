#include "bench/sample/landscape.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

using Ridge = QList<QPointF>;

/// A few waves laid over each other: the line of a hill.
Ridge softRidge(const QRectF &frame, double crest, double amplitude, QRandomGenerator &random)
{
    const double phase = between(0, 6, random);
    const double length = frame.width() * between(0.35, 0.6, random);
    Ridge ridge;
    for (double x = frame.left() - 10; x <= frame.right() + 10; x += 10) {
        const double wave
            = std::sin(x / length * 2 * std::numbers::pi + phase) + 0.4 * std::sin(x / length * 5 + 2 * phase);
        ridge.append({ x, crest + amplitude * wave });
    }
    return ridge;
}

QPainterPath filledBelow(const Ridge &ridge, double foot)
{
    QPainterPath path(QPointF(ridge.first().x(), foot));
    for (const QPointF &point : ridge) {
        path.lineTo(point);
    }
    path.lineTo(ridge.last().x(), foot);
    path.closeSubpath();
    return path;
}

void paintCloud(QPainter &painter, const QPointF &centre, double width, const QColor &color, QRandomGenerator &random)
{
    painter.save();
    painter.translate(centre);
    painter.scale(1, 0.42);
    for (int i = 0; i < 14; ++i) {
        const double x = between(-0.5, 0.5, random);
        const double radius = width * between(0.12, 0.26, random) * (1 - std::abs(x));
        const QPointF puff(x * width, between(-0.12, 0.08, random) * width);
        QRadialGradient gradient(puff, radius);
        gradient.setColorAt(0, QColor(color.red(), color.green(), color.blue(), 120));
        gradient.setColorAt(1, QColor(color.red(), color.green(), color.blue(), 0));
        painter.fillRect(QRectF(puff.x() - radius, puff.y() - radius, 2 * radius, 2 * radius), gradient);
    }
    painter.restore();
}

void paintGrass(QPainter &painter, const QRectF &frame, double top, const Daylight &day, QRandomGenerator &random)
{
    const double height = frame.bottom() - top;
    const int tufts = std::min(900, int(height * 4));
    for (int i = 0; i < tufts; ++i) {
        const double near = std::sqrt(random.generateDouble()); // more of it in front
        const QPointF root(between(frame.left(), frame.right(), random), top + height * near);
        const double length = 3 + 13 * near;
        painter.setPen(QPen(varied(mixed(day.meadow, day.meadowNear, near), 26, random), 1 + near));
        painter.drawLine(root, root + QPointF(between(-4, 4, random), -length));
    }
    painter.setPen(Qt::NoPen);
}

void paintFlowers(QPainter &painter, const QRectF &frame, double top, QRandomGenerator &random)
{
    const QList<QColor> colours { QColor(250, 226, 90), QColor(250, 250, 244), QColor(206, 88, 110),
        QColor(140, 120, 200) };
    for (int i = 0; i < 160; ++i) {
        const double near = std::sqrt(random.generateDouble());
        const double radius = 1 + 2.2 * near;
        painter.setBrush(colours.at(random.bounded(int(colours.size()))));
        painter.drawEllipse(QPointF(between(frame.left(), frame.right(), random), top + (frame.bottom() - top) * near),
            radius, radius * 0.8);
    }
}

} // namespace

void Landscape::paintSky(QPainter &painter, const QRectF &frame, const Daylight &day, QRandomGenerator &random)
{
    painter.fillRect(frame, downwards(frame.top(), frame.top() + frame.height() * 0.62, day.skyTop, day.skyBottom));
    if (day.light == Light::Morning || day.light == Light::Evening) {
        const QPointF sun(between(0.1, 0.9, random) * frame.width(), frame.height() * between(0.28, 0.36, random));
        QRadialGradient glow(sun, frame.width() * 0.45);
        glow.setColorAt(0, QColor(day.sun.red(), day.sun.green(), day.sun.blue(), 230));
        glow.setColorAt(0.07, QColor(day.sun.red(), day.sun.green(), day.sun.blue(), 150));
        glow.setColorAt(1, QColor(day.sun.red(), day.sun.green(), day.sun.blue(), 0));
        painter.fillRect(frame, glow);
    }
    const int clouds = day.light == Light::Overcast ? 16 : random.bounded(3, 7);
    for (int i = 0; i < clouds; ++i) {
        const QPointF centre(between(0, 1, random) * frame.width(), frame.height() * between(0.04, 0.3, random));
        paintCloud(painter, centre, frame.width() * between(0.16, 0.36, random), day.cloud, random);
    }
}

void Landscape::paintHill(QPainter &painter, const QRectF &frame, double crest, double distance, const Daylight &day,
    QRandomGenerator &random)
{
    painter.setPen(Qt::NoPen);
    const Ridge ridge = softRidge(frame, crest, 14 + 22 * (1 - distance), random);
    const QColor ground = mixed(day.meadow, day.haze, distance * 0.7);
    painter.setBrush(downwards(crest - 30, crest + 160, ground, mixed(ground, day.meadowNear, 0.5)));
    painter.drawPath(filledBelow(ridge, frame.bottom()));
    const double treeHeight = 16 + 40 * (1 - distance);
    for (const QPointF &point : ridge) {
        const double wooded = std::sin(point.x() / 90 + crest); // woods and clearings take turns
        if (wooded < -0.1) {
            continue;
        }
        for (int row = 0; row < 2; ++row) {
            Daylight far = day;
            far.wood = mixed(day.wood, day.haze, distance * 0.75);
            far.leaves = mixed(day.leaves, day.haze, distance * 0.75);
            const QPointF foot(
                point.x() + between(-8, 8, random), point.y() + row * treeHeight * 0.3 + between(2, 10, random));
            paintTree(painter, foot, treeHeight * between(0.6, 1.05, random), random.bounded(10) < 6, far, random);
        }
    }
}

void Landscape::paintLake(QPainter &painter, const QRectF &frame, double shore, double nearShore, const Daylight &day,
    QRandomGenerator &random)
{
    const QColor deep = mixed(day.skyTop, QColor(28, 70, 96), 0.45);
    painter.fillRect(QRectF(frame.left(), shore, frame.width(), nearShore - shore),
        downwards(shore, nearShore, mixed(day.skyBottom, deep, 0.25), deep));
    for (int i = 0; i < 90; ++i) {
        const double near = random.generateDouble();
        const double x = between(frame.left(), frame.right(), random);
        const double y = shore + (nearShore - shore) * near;
        painter.setPen(QPen(QColor(255, 255, 255, random.bounded(20, 90)), 1 + near));
        painter.drawLine(QPointF(x, y), QPointF(x + 12 + 50 * near, y));
    }
    painter.setPen(Qt::NoPen);
}

void Landscape::paintMeadow(
    QPainter &painter, const QRectF &frame, double top, const Daylight &day, QRandomGenerator &random)
{
    painter.setPen(Qt::NoPen);
    painter.fillRect(QRectF(frame.left(), top, frame.width(), frame.bottom() - top),
        downwards(top, frame.bottom(), day.meadow, day.meadowNear));
    if (day.season == Season::Winter) {
        for (int i = 0; i < 26; ++i) { // drifts
            const QPointF centre(
                between(frame.left(), frame.right(), random), between(top + 20, frame.bottom(), random));
            painter.setBrush(QColor(196, 210, 232, 70));
            painter.drawEllipse(centre, between(60, 160, random), between(4, 10, random));
        }
        return;
    }
    paintGrass(painter, frame, top, day, random);
    if (day.season == Season::Spring || day.season == Season::Summer) {
        paintFlowers(painter, frame, top, random);
    }
}

void Landscape::paintSnowfall(QPainter &painter, const QRectF &frame, QRandomGenerator &random)
{
    painter.setPen(Qt::NoPen);
    for (int i = 0; i < 420; ++i) {
        const double radius = between(0.8, 3.6, random);
        painter.setBrush(QColor(255, 255, 255, random.bounded(110, 220)));
        painter.drawEllipse(
            QPointF(between(frame.left(), frame.right(), random), between(frame.top(), frame.bottom(), random)), radius,
            radius);
    }
}
