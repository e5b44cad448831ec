#pragma once

#include "bench/sample/season.h"

#include <QRectF>

class QPainter;

/// Everything behind and below the railway, painted from far to near. Each function draws one layer over the whole
/// width of `frame`; the same random generator gives the same layer.
namespace Landscape {

void paintSky(QPainter &painter, const QRectF &frame, const Daylight &day, QRandomGenerator &random);

/// A jagged chain whose summits lie around `top`, with snow on the higher ones; it reaches down to `foot`.
void paintMountains(
    QPainter &painter, const QRectF &frame, double top, double foot, const Daylight &day, QRandomGenerator &random);

/// A wooded hill with its crest around `crest`. `distance` from 0 (near) to 1 (in the haze).
void paintHill(QPainter &painter, const QRectF &frame, double crest, double distance, const Daylight &day,
    QRandomGenerator &random);

/// A calm lake from `shore` down to `nearShore`.
void paintLake(QPainter &painter, const QRectF &frame, double shore, double nearShore, const Daylight &day,
    QRandomGenerator &random);

/// The meadow from `top` to the lower edge, with grass and flowers or with snow.
void paintMeadow(QPainter &painter, const QRectF &frame, double top, const Daylight &day, QRandomGenerator &random);

/// A broad-leaved tree or a conifer that stands at `foot` and is `height` high.
void paintTree(QPainter &painter, const QPointF &foot, double height, bool isConifer, const Daylight &day,
    QRandomGenerator &random);

void paintSnowfall(QPainter &painter, const QRectF &frame, QRandomGenerator &random);

} // namespace Landscape
