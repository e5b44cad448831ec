#pragma once

#include <QColor>
#include <QList>
#include <QString>

class QPainter;

enum class Build { Box, Crocodile, LongNosed, Steam };

/// How a class looks from the side. Lengths are metres.
struct Appearance
{
    Build build = Build::Box;
    double length = 16;
    QList<int> axles { 2, 2 }; // in each bogie or frame, from the front
    double wheel = 0.62; // radius
    double slope = 0.3; // how far the front leans back
    bool hasRods = false;
    bool hasPantographs = true;
    QColor body;
    QColor lower; // band along the bottom of the body; the body's colour for none
    QColor stripe; // thin line above it; transparent for none
    QColor roof { 120, 122, 126 };
    QColor frame { 52, 52, 56 };
    QColor lettering { 240, 240, 236 };
};

/// Height of the contact wire above the rails.
constexpr double WireHeight = 5.7;

/// Paints a locomotive from the side into a coordinate system of metres: x runs to the right from its middle, the rails
/// lie at y = 0, and up is negative.
void paintLocomotive(QPainter &painter, const Appearance &look, const QString &number);

// One function for each build; each begins in its own file.
void paintBoxLocomotive(QPainter &painter, const Appearance &look, const QString &number);
void paintCrocodile(QPainter &painter, const Appearance &look, const QString &number);
void paintSteamLocomotive(QPainter &painter, const Appearance &look, const QString &number);
