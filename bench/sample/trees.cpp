#include "bench/sample/landscape.h"

#include <QPainter>
#include <QPainterPath>

#include <cmath>

namespace {

constexpr double NearTree = 70; // pixels from which on a tree is seen in detail

void paintConifer(
    QPainter &painter, const QPointF &foot, double height, const QColor &color, bool isSnowy, QRandomGenerator &random)
{
    const int tiers = height > NearTree ? 6 : 3;
    const double width = height * between(0.36, 0.44, random);
    painter.setBrush(QColor(78, 62, 50));
    painter.drawRect(QRectF(foot.x() - height * 0.02, foot.y() - height * 0.1, height * 0.04, height * 0.1));
    for (int tier = tiers - 1; tier >= 0; --tier) {
        const double share = (tier + 1.0) / tiers;
        const double tip = foot.y() - height * (1 - 0.82 * tier / tiers);
        const double base = foot.y() - height * (1 - 0.94 * share);
        const double half = width * (0.12 + 0.38 * share);
        const QPolygonF left({ { foot.x(), tip }, { foot.x(), base }, { foot.x() - half, base } });
        const QPolygonF right({ { foot.x(), tip }, { foot.x() + half, base }, { foot.x(), base } });
        painter.setBrush(color.lighter(100 + 4 * (tiers - tier)));
        painter.drawPolygon(left);
        painter.setBrush(color.darker(118));
        painter.drawPolygon(right);
        if (isSnowy) {
            painter.setBrush(QColor(246, 249, 255, 215));
            painter.drawPolygon(QPolygonF({ { foot.x(), tip }, { foot.x() + half * 0.45, tip + (base - tip) * 0.45 },
                { foot.x() - half * 0.7, tip + (base - tip) * 0.7 } }));
        }
    }
}

void paintBranch(QPainter &painter, const QPointF &from, double length, double angle, double width, int depth,
    QRandomGenerator &random)
{
    const QPointF to = from + QPointF(std::sin(angle), -std::cos(angle)) * length;
    painter.setPen(QPen(QColor(84, 72, 68), width, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(from, to);
    if (depth == 0) {
        return;
    }
    for (const double turn : { -0.5, -0.05, 0.45 }) {
        paintBranch(painter, to, length * between(0.55, 0.72, random), angle + turn + between(-0.15, 0.15, random),
            width * 0.6, depth - 1, random);
    }
}

void paintCrown(QPainter &painter, const QPointF &foot, double height, const QColor &color, QRandomGenerator &random)
{
    const bool isNear = height > NearTree;
    if (isNear) {
        painter.setBrush(QColor(84, 66, 52));
        painter.drawRect(QRectF(foot.x() - height * 0.03, foot.y() - height * 0.45, height * 0.06, height * 0.45));
    }
    const int puffs = isNear ? 34 : 5;
    for (int i = 0; i < puffs; ++i) {
        const double share = double(i) / puffs; // dark ones below first, bright ones above last
        const double radius = height * between(0.1, isNear ? 0.16 : 0.26, random);
        const QPointF centre(
            between(-0.24, 0.24, random) * height, -height * (0.34 + 0.42 * share + between(-0.08, 0.08, random)));
        painter.setBrush(varied(color.darker(int(132 - 40 * share)), isNear ? 10 : 4, random));
        painter.drawEllipse(foot + centre, radius, radius * 0.86);
    }
}

} // namespace

void Landscape::paintTree(QPainter &painter, const QPointF &foot, double height, bool isConifer, const Daylight &day,
    QRandomGenerator &random)
{
    painter.setPen(Qt::NoPen);
    const bool isWinter = day.season == Season::Winter;
    if (isConifer) {
        paintConifer(painter, foot, height, varied(day.wood, 14, random), isWinter, random);
    } else if (isWinter && height > NearTree) {
        paintBranch(painter, foot, height * 0.36, between(-0.05, 0.05, random), height * 0.05, 4, random);
        painter.setPen(Qt::NoPen);
    } else {
        paintCrown(painter, foot, height, varied(day.leaves, 14, random), random);
    }
}
