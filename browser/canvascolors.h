#pragma once

#include <QColor>

class ColorScheme;

/// Contrast ratio of two opaque colours, from 1 (equal) to 21 (black on white), as WCAG 2 defines it.
[[nodiscard]] double contrast(const QColor &first, const QColor &second);

/// `color`, made darker or lighter just as far as it takes to be read on `ground` (contrast at least 4.5).
[[nodiscard]] QColor readableOn(const QColor &ground, const QColor &color);

/// What the cards of the canvas are painted with, whatever background the user has chosen.
struct CardColors
{
    explicit CardColors(const ColorScheme &scheme);

    QColor ground; // of the card, all its texts are readable on it
    QColor frame;
    QColor text;
    QColor accent; // running numbers
};
