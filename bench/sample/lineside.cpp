#include "bench/sample/lineside.h"

#include "bench/sample/locomotive.h"

#include <QPainter>
#include <QPainterPath>

namespace {

void paintBallast(
    QPainter &painter, const QRectF &frame, const Track &track, const Daylight &day, QRandomGenerator &random)
{
    const double top = track.y + 0.05 * track.scale;
    const double bottom = track.y + 1.25 * track.scale;
    painter.fillRect(QRectF(frame.left(), top, frame.width(), bottom - top),
        downwards(top, bottom, day.ballast, day.ballast.darker(125)));
    const int stones = int(frame.width() * 1.2);
    for (int i = 0; i < stones; ++i) {
        const double size = between(0.04, 0.11, random) * track.scale;
        painter.setBrush(varied(day.ballast, 36, random));
        painter.drawEllipse(
            QPointF(between(frame.left(), frame.right(), random), between(top, bottom, random)), size, size * 0.6);
    }
}

void paintMast(QPainter &painter, double x, const Track &track)
{
    const auto up = [&track](double metres) { return track.y - metres * track.scale; };
    const double width = 0.26 * track.scale;
    painter.setBrush(downwards(up(7.4), track.y, QColor(142, 148, 152), QColor(96, 100, 104)));
    painter.drawRect(QRectF(x - width / 2, up(7.4), width, up(-0.2) - up(7.4)));
    painter.setPen(QPen(QColor(92, 98, 102), 0.09 * track.scale));
    const double reach = 1.5 * track.scale;
    painter.drawLine(QPointF(x, up(7.1)), QPointF(x + reach, up(6.9)));
    painter.drawLine(QPointF(x, up(5.9)), QPointF(x + reach, up(6.9)));
    painter.drawLine(QPointF(x, up(6.0)), QPointF(x + reach, up(WireHeight)));
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(150, 92, 58));
    painter.drawEllipse(QPointF(x + 0.3 * track.scale, up(7.05)), 0.12 * track.scale, 0.09 * track.scale);
}

void paintWindows(QPainter &painter, const QRectF &wall, int storeys, int windows, bool isLit)
{
    const double width = wall.width() / (windows * 2 + 1);
    const double height = wall.height() / (storeys * 2 + 0.6);
    for (int storey = 0; storey < storeys; ++storey) {
        for (int i = 0; i < windows; ++i) {
            const QRectF pane(
                wall.left() + width * (1 + 2 * i), wall.top() + height * (0.6 + 2 * storey), width, height);
            painter.setBrush(isLit && (i + storey) % 3 != 0 ? QColor(255, 222, 140) : QColor(70, 84, 98));
            painter.setPen(QPen(QColor(244, 240, 230), width * 0.14));
            painter.drawRect(pane);
            painter.drawLine(QPointF(pane.center().x(), pane.top()), QPointF(pane.center().x(), pane.bottom()));
        }
    }
    painter.setPen(Qt::NoPen);
}

void paintBuilding(QPainter &painter, const QRectF &wall, const Daylight &day, QRandomGenerator &random)
{
    const QList<QColor> plasters { QColor(226, 206, 162), QColor(214, 180, 160), QColor(220, 220, 210),
        QColor(190, 120, 92) };
    const QColor plaster = plasters.at(random.bounded(int(plasters.size())));
    painter.setBrush(downwards(wall.top(), wall.bottom(), plaster, plaster.darker(114)));
    painter.drawRect(wall);
    const double over = wall.width() * 0.05;
    const QColor tiles = day.season == Season::Winter ? QColor(240, 244, 250) : QColor(132, 70, 54);
    painter.setBrush(downwards(wall.top() - wall.height() * 0.45, wall.top(), tiles.lighter(108), tiles));
    painter.drawPolygon(QPolygonF(
        { { wall.left() - over, wall.top() }, { wall.left() + wall.width() * 0.12, wall.top() - wall.height() * 0.42 },
            { wall.right() - wall.width() * 0.12, wall.top() - wall.height() * 0.42 },
            { wall.right() + over, wall.top() } }));
    paintWindows(painter, wall, 2, 6, day.light == Light::Evening);
}

void paintClock(QPainter &painter, const QPointF &centre, double radius)
{
    painter.setPen(QPen(QColor(40, 44, 50), radius * 0.2));
    painter.setBrush(QColor(250, 250, 248));
    painter.drawEllipse(centre, radius, radius);
    painter.drawLine(centre, centre + QPointF(radius * 0.1, -radius * 0.62));
    painter.drawLine(centre, centre + QPointF(radius * 0.45, radius * 0.12));
    painter.setPen(Qt::NoPen);
}

QPainterPath arches(const QRectF &frame, double crown, double foot, double span)
{
    QPainterPath openings;
    for (double x = frame.left() - span * 0.4; x < frame.right(); x += span) {
        const double width = span * 0.78;
        QPainterPath arch(QPointF(x, foot));
        arch.lineTo(x, crown + width / 2);
        arch.arcTo(QRectF(x, crown, width, width), 180, -180);
        arch.lineTo(x + width, foot);
        arch.closeSubpath();
        openings.addPath(arch);
    }
    return openings;
}

} // namespace

void Lineside::paintTrack(
    QPainter &painter, const QRectF &frame, const Track &track, const Daylight &day, QRandomGenerator &random)
{
    painter.setPen(Qt::NoPen);
    paintBallast(painter, frame, track, day, random);
    const double metre = track.scale;
    for (double x = frame.left() - between(0, 0.6, random) * metre; x < frame.right(); x += 0.62 * metre) {
        painter.setBrush(varied(QColor(96, 78, 66), 10, random));
        painter.drawRect(QRectF(x, track.y + 0.15 * metre, 0.27 * metre, 0.2 * metre));
    }
    painter.setBrush(QColor(96, 66, 50));
    painter.drawRect(QRectF(frame.left(), track.y, frame.width(), 0.17 * metre));
    painter.setBrush(QColor(206, 202, 198));
    painter.drawRect(QRectF(frame.left(), track.y, frame.width(), 0.05 * metre));
}

void Lineside::paintCatenary(QPainter &painter, const QRectF &frame, const Track &track, QRandomGenerator &random)
{
    painter.setPen(Qt::NoPen);
    const double span = track.scale * 17;
    const double reach = 1.5 * track.scale;
    const double first = frame.left() - between(0.1, 0.9, random) * span;
    for (double x = first; x < frame.right() + span; x += span) {
        paintMast(painter, x, track);
    }
    const double wire = track.y - WireHeight * track.scale;
    const double messenger = track.y - 6.9 * track.scale;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(70, 60, 56), std::max(1.0, 0.045 * track.scale)));
    painter.drawLine(QPointF(frame.left(), wire), QPointF(frame.right(), wire));
    for (double x = first + reach; x < frame.right() + span; x += span) {
        QPainterPath sag(QPointF(x, messenger));
        sag.quadTo(x + span / 2, messenger + 1.4 * track.scale, x + span, messenger);
        painter.drawPath(sag);
        for (const double share : { 0.2, 0.4, 0.6, 0.8 }) {
            const double y = messenger + 2 * 1.4 * track.scale * share * (1 - share);
            painter.drawLine(QPointF(x + span * share, y), QPointF(x + span * share, wire));
        }
    }
    painter.setPen(Qt::NoPen);
}

void Lineside::paintTelegraphLine(QPainter &painter, const QRectF &frame, const Track &track, QRandomGenerator &random)
{
    const double span = track.scale * 16;
    const double top = track.y - 6.6 * track.scale;
    const double first = frame.left() - between(0.1, 0.9, random) * span;
    for (double x = first; x < frame.right() + span; x += span) {
        painter.setPen(QPen(QColor(92, 72, 56), 0.22 * track.scale));
        painter.drawLine(QPointF(x, track.y), QPointF(x, top));
        painter.setPen(QPen(QColor(60, 60, 62), std::max(1.0, 0.035 * track.scale)));
        painter.setBrush(Qt::NoBrush);
        for (int i = 0; i < 3; ++i) {
            QPainterPath sag(QPointF(x, top + i * 0.35 * track.scale));
            sag.quadTo(x + span / 2, top + (1.1 + i * 0.35) * track.scale, x + span, top + i * 0.35 * track.scale);
            painter.drawPath(sag);
        }
    }
    painter.setPen(Qt::NoPen);
}

void Lineside::paintStation(
    QPainter &painter, const QRectF &frame, const Track &track, const Daylight &day, QRandomGenerator &random)
{
    painter.setPen(Qt::NoPen);
    const double metre = track.scale;
    const double platform = track.y - 0.75 * metre;
    const double left = frame.left() + between(-0.05, 0.35, random) * frame.width();
    paintBuilding(painter, QRectF(left, platform - 8.4 * metre, 17 * metre, 8.4 * metre), day, random);
    const QColor stone = day.season == Season::Winter ? QColor(226, 232, 240) : QColor(172, 168, 160);
    painter.setBrush(downwards(platform, track.y, stone, stone.darker(140)));
    painter.drawRect(QRectF(frame.left(), platform, frame.width(), 0.9 * metre));
    painter.setBrush(QColor(240, 240, 236));
    painter.drawRect(QRectF(frame.left(), platform, frame.width(), 0.1 * metre));
    const double post = left + 20.5 * metre;
    painter.setBrush(QColor(70, 76, 82));
    painter.drawRect(QRectF(post - 0.08 * metre, platform - 5.6 * metre, 0.16 * metre, 5.6 * metre));
    paintClock(painter, { post, platform - 5.6 * metre }, 0.62 * metre);
    for (const double x : { left - 5 * metre, left + 27 * metre }) {
        paintMast(painter, x, { platform, metre * 0.6 });
    }
}

void Lineside::paintViaduct(QPainter &painter, const QRectF &frame, const Track &track, double foot,
    const Daylight &day, QRandomGenerator &random)
{
    painter.setPen(Qt::NoPen);
    const double metre = track.scale;
    const double top = track.y;
    const QColor stone = mixed(QColor(176, 162, 142), day.haze, 0.12);
    QPainterPath wall;
    wall.addRect(QRectF(frame.left(), top, frame.width(), foot - top));
    const QPainterPath openings = arches(frame, top + 2.2 * metre, foot + 5, 15 * metre);
    const QPainterPath masonry = wall.subtracted(openings);
    painter.save();
    painter.translate(1.1 * metre, 0);
    painter.fillPath(masonry, stone.darker(170)); // the inner faces of the piers
    painter.restore();
    painter.fillPath(masonry, downwards(top, foot, stone.lighter(108), stone.darker(122)));
    painter.save();
    painter.setClipPath(masonry);
    for (int i = 0; i < 1500; ++i) {
        painter.setBrush(varied(QColor(stone.red(), stone.green(), stone.blue(), 120), 34, random));
        const double y = top + int(between(0, (foot - top) / (0.5 * metre), random)) * 0.5 * metre;
        painter.drawRect(QRectF(between(frame.left(), frame.right(), random), y, 1.0 * metre, 0.42 * metre));
    }
    painter.restore();
    painter.setBrush(stone.darker(112));
    painter.drawRect(QRectF(frame.left(), top - 0.1 * metre, frame.width(), 0.8 * metre));
    painter.setBrush(stone.lighter(116));
    painter.drawRect(QRectF(frame.left(), top - 0.1 * metre, frame.width(), 0.25 * metre));
}
