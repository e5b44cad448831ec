#pragma once

#include <QBrush>
#include <QColor>
#include <QRandomGenerator>

enum class Season { Spring, Summer, Autumn, Winter };
enum class Light { Morning, Noon, Evening, Overcast };

/// The colours of a painted day: everything that is drawn outdoors takes its colours from here.
struct Daylight
{
    Daylight(Season daySeason, Light dayLight);

    Season season;
    Light light;
    QColor skyTop;
    QColor skyBottom;
    QColor cloud;
    QColor sun;
    QColor rock;
    QColor haze; // what lies far away fades into it
    QColor wood; // conifers
    QColor leaves; // broad-leaved trees
    QColor meadow;
    QColor meadowNear;
    QColor ballast;
    QColor glow; // laid over the finished picture, mostly transparent
};

/// `share` 0 gives `from`, 1 gives `to`.
[[nodiscard]] QColor mixed(const QColor &from, const QColor &to, double share);

/// The colour a little lighter or darker, as leaves and stones are.
[[nodiscard]] QColor varied(const QColor &color, int spread, QRandomGenerator &random);

[[nodiscard]] double between(double low, double high, QRandomGenerator &random);

/// A fill that fades from one colour at the height `top` to another at `bottom`.
[[nodiscard]] QBrush downwards(double top, double bottom, const QColor &above, const QColor &below);
