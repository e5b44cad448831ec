#pragma once

#include "bench/sample/season.h"

#include <QRectF>

class QPainter;

/// Where the railway runs through the picture: the height of the rails and how many pixels a metre has there.
struct Track
{
    double y;
    double scale;
};

/// The railway without its trains, in pixels over the whole width of `frame`.
namespace Lineside {

void paintTrack(
    QPainter &painter, const QRectF &frame, const Track &track, const Daylight &day, QRandomGenerator &random);

/// Masts behind the track and the wires above it.
void paintCatenary(QPainter &painter, const QRectF &frame, const Track &track, QRandomGenerator &random);

/// Poles along a line that has no wire of its own.
void paintTelegraphLine(QPainter &painter, const QRectF &frame, const Track &track, QRandomGenerator &random);

/// Platform, building and clock behind the track.
void paintStation(
    QPainter &painter, const QRectF &frame, const Track &track, const Daylight &day, QRandomGenerator &random);

/// A stone viaduct that carries the track, its arches open down to `foot`.
void paintViaduct(QPainter &painter, const QRectF &frame, const Track &track, double foot, const Daylight &day,
    QRandomGenerator &random);

} // namespace Lineside
