#pragma once

#include <QRandomGenerator>

class QPainter;

enum class Country { Switzerland, Germany, Austria };

/// A row of coaches or goods wagons in metres, like a locomotive: from x = `start` on to the right or to the left.
/// `count` wagons are painted; those beyond the picture's edge are simply not seen.
void paintTrain(QPainter &painter, double start, int direction, int count, bool isGoodsTrain, Country country,
    QRandomGenerator &random);
