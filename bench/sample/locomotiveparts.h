#pragma once

#include <QColor>
#include <QPainterPath>
#include <QRectF>
#include <QString>

class QPainter;

/// Parts that several builds of locomotives and wagons share, in metres above the rails (up is negative).
namespace Parts {

void paintGroundShadow(QPainter &painter, double length);

void paintWheel(QPainter &painter, double x, double radius, const QColor &color, bool hasSpokes = false);

/// A bogie with `axles` wheelsets around `x`.
void paintBogie(QPainter &painter, double x, int axles, double spacing, double radius, const QColor &frame);

/// Buffers and coupling at both ends of a vehicle of this length.
void paintBuffers(QPainter &painter, double length);

/// Fills a body panel and gives it the light from above.
void paintPanel(QPainter &painter, const QPainterPath &shape, const QColor &color);

void paintWindow(QPainter &painter, const QRectF &pane);
void paintGrille(QPainter &painter, const QRectF &area, const QColor &body);

/// A door with its handrails, from `top` down to `bottom`.
void paintDoor(QPainter &painter, double x, double top, double bottom, const QColor &body);

void paintLamp(QPainter &painter, const QPointF &centre, double radius);

/// Letters of this height with their middle at `centre`.
void paintLettering(QPainter &painter, const QString &text, const QPointF &centre, double height, const QColor &color);

/// A pantograph on the roof at `roof` metres above the rails, folded or raised to the wire.
void paintPantograph(QPainter &painter, double x, double roof, bool isRaised);

/// Insulators and lines along a roof between two positions.
void paintRoofLine(QPainter &painter, double from, double to, double roof);

} // namespace Parts
