#include "browser/canvascolors.h"

#include "store/colorscheme.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double ReadableContrast = 4.5;

double linear(double channel)
{
    return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &color)
{
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

QColor mixed(const QColor &from, const QColor &to, double share)
{
    const auto mix = [share](int a, int b) { return int(std::lround(a + (b - a) * share)); };
    return { mix(from.red(), to.red()), mix(from.green(), to.green()), mix(from.blue(), to.blue()) };
}

} // namespace

double contrast(const QColor &first, const QColor &second)
{
    const auto [darker, lighter] = std::minmax({ luminance(first), luminance(second) });
    return (lighter + 0.05) / (darker + 0.05);
}

QColor readableOn(const QColor &ground, const QColor &color)
{
    const QColor goal
        = contrast(ground, Qt::black) > contrast(ground, Qt::white) ? QColor(Qt::black) : QColor(Qt::white);
    constexpr int Steps = 20;
    for (int step = 0; step < Steps; ++step) {
        const QColor candidate = mixed(color, goal, double(step) / Steps);
        if (contrast(ground, candidate) >= ReadableContrast) {
            return candidate;
        }
    }
    return goal;
}

CardColors::CardColors(const ColorScheme &scheme)
    : ground(scheme.boxColor())
    , frame(scheme.boxColor().darker(130))
    , text(scheme.textColor())
    , accent(scheme.accentColor())
{
    if (scheme.mode() == ColorScheme::Dark) {
        // White is barely readable on the dark scheme's box colour, so that colour frames a darker card.
        ground = scheme.boxColor().darker(230);
        frame = scheme.boxColor();
    }
    text = readableOn(ground, text);
    accent = readableOn(ground, accent);
}
