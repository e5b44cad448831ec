#include "bench/sample/landscape.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace {

constexpr int Rounds = 4;
constexpr qsizetype Step = 1 << Rounds; // points between a summit and the saddle beside it

/// The skyline of a chain: summits at even multiples of Step, saddles at odd ones.
QList<QPointF> skyline(const QRectF &frame, double top, double height, QRandomGenerator &random)
{
    const int summits = random.bounded(4, 7);
    const double distance = (frame.width() + 300) / (2 * summits);
    QList<QPointF> line;
    for (int i = 0; i <= 2 * summits; ++i) {
        const bool isSummit = i % 2 == 0;
        const double depth = isSummit ? between(0, 0.34, random) : between(0.38, 0.62, random);
        line.append({ frame.left() - 150 + (i + between(-0.28, 0.28, random)) * distance, top + height * depth });
    }
    double spread = height * 0.05;
    for (int round = 0; round < Rounds; ++round) {
        QList<QPointF> finer { line.first() };
        for (qsizetype i = 1; i < line.size(); ++i) {
            const QPointF middle = (line.at(i - 1) + line.at(i)) / 2;
            finer.append(middle + QPointF(0, between(-spread, spread, random)));
            finer.append(line.at(i));
        }
        line = finer;
        spread *= 0.62;
    }
    return line;
}

QPainterPath filledBelow(const QList<QPointF> &line, double foot)
{
    QPainterPath path(QPointF(line.first().x(), foot));
    for (const QPointF &point : line) {
        path.lineTo(point);
    }
    path.lineTo(line.last().x(), foot);
    path.closeSubpath();
    return path;
}

/// Snow from the skyline down in tongues; the higher the summit, the deeper they reach.
QPainterPath snowCaps(const QList<QPointF> &line, double snowLine, QRandomGenerator &random)
{
    QPainterPath path(line.first());
    for (const QPointF &point : line) {
        path.lineTo(point);
    }
    bool isTongue = false;
    for (qsizetype i = line.size() - 1; i >= 0; i -= random.bounded(2, 5)) {
        const QPointF &point = line.at(i);
        const double depth = std::max(0.0, snowLine - point.y());
        const double share = isTongue ? between(0.7, 1.0, random) : between(0.25, 0.5, random);
        path.lineTo(point.x() + between(-6, 6, random), point.y() + depth * share);
        isTongue = !isTongue;
    }
    path.closeSubpath();
    return path;
}

/// The flank to the right of each summit, turned away from the sun.
void paintFlanks(
    QPainter &painter, const QList<QPointF> &line, double foot, const QColor &shadow, QRandomGenerator &random)
{
    for (qsizetype summit = 0; summit + Step < line.size(); summit += 2 * Step) {
        QPainterPath flank(line.at(summit));
        for (qsizetype i = summit; i <= summit + Step; ++i) {
            flank.lineTo(line.at(i));
        }
        const QPointF top = line.at(summit);
        const double width = line.at(summit + Step).x() - top.x();
        flank.lineTo(top.x() + width * 1.5, foot);
        flank.lineTo(top.x() + width * 0.55, foot);
        for (const double share : { 0.75, 0.5, 0.25 }) { // a broken arete
            flank.lineTo(
                top.x() + width * (share * 0.5 + between(-0.18, 0.12, random)), top.y() + (foot - top.y()) * share);
        }
        flank.closeSubpath();
        painter.fillPath(
            flank, downwards(top.y(), foot, shadow, QColor(shadow.red(), shadow.green(), shadow.blue(), 20)));
    }
}

void paintChain(QPainter &painter, const QRectF &frame, double top, double foot, double distance, const Daylight &day,
    QRandomGenerator &random)
{
    const double height = foot - top;
    const QList<QPointF> line = skyline(frame, top, height, random);
    painter.fillPath(filledBelow(line, foot),
        downwards(
            top, foot, mixed(day.rock, day.haze, distance), mixed(day.rock, day.haze, std::min(1.0, distance + 0.5))));
    const double snowLine = top + height * (day.season == Season::Winter ? 0.95 : 0.52);
    const QColor snow = mixed(QColor(250, 252, 255), day.skyBottom, day.light == Light::Evening ? 0.5 : 0.15);
    painter.fillPath(snowCaps(line, snowLine, random), mixed(snow, day.haze, distance * 0.5));
    paintFlanks(painter, line, foot, QColor(52, 66, 104, int(110 * (1 - distance))), random);
}

} // namespace

void Landscape::paintMountains(
    QPainter &painter, const QRectF &frame, double top, double foot, const Daylight &day, QRandomGenerator &random)
{
    painter.setPen(Qt::NoPen);
    const double height = foot - top;
    paintChain(painter, frame, top, foot, 0.55, day, random);
    paintChain(painter, frame, top + height * between(0.12, 0.3, random), foot, 0.2, day, random);
}
