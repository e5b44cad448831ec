#include "bench/sample/season.h"

#include <QLinearGradient>

#include <algorithm>
#include <cmath>

namespace {

void colourGround(Daylight &day)
{
    switch (day.season) {
    case Season::Spring:
        day.leaves = QColor(142, 178, 70);
        day.meadow = QColor(128, 172, 84);
        day.meadowNear = QColor(98, 146, 58);
        break;
    case Season::Summer:
        day.leaves = QColor(74, 122, 54);
        day.meadow = QColor(134, 160, 76);
        day.meadowNear = QColor(96, 132, 52);
        break;
    case Season::Autumn:
        day.leaves = QColor(200, 126, 44);
        day.meadow = QColor(160, 154, 82);
        day.meadowNear = QColor(128, 122, 58);
        break;
    case Season::Winter:
        day.leaves = QColor(128, 116, 112);
        day.meadow = QColor(232, 238, 246);
        day.meadowNear = QColor(246, 249, 253);
        day.wood = QColor(58, 84, 82);
        day.ballast = QColor(176, 178, 186);
        break;
    }
}

void colourSky(Daylight &day)
{
    switch (day.light) {
    case Light::Morning:
        day.skyTop = QColor(108, 158, 206);
        day.skyBottom = QColor(252, 226, 196);
        day.cloud = QColor(255, 240, 226);
        day.sun = QColor(255, 236, 190);
        day.glow = QColor(255, 206, 140, 26);
        break;
    case Light::Noon:
        day.skyTop = QColor(58, 122, 194);
        day.skyBottom = QColor(190, 220, 240);
        day.cloud = QColor(255, 255, 255);
        day.sun = QColor(255, 252, 230);
        day.glow = QColor(255, 255, 255, 0);
        break;
    case Light::Evening:
        day.skyTop = QColor(76, 92, 148);
        day.skyBottom = QColor(255, 184, 116);
        day.cloud = QColor(246, 178, 148);
        day.sun = QColor(255, 214, 140);
        day.haze = QColor(214, 170, 160);
        day.glow = QColor(255, 150, 70, 38);
        break;
    case Light::Overcast:
        day.skyTop = QColor(152, 166, 182);
        day.skyBottom = QColor(216, 222, 228);
        day.cloud = QColor(238, 241, 244);
        day.sun = QColor(238, 241, 244);
        day.haze = QColor(196, 204, 212);
        day.glow = QColor(120, 136, 160, 20);
        break;
    }
}

} // namespace

Daylight::Daylight(Season daySeason, Light dayLight)
    : season(daySeason)
    , light(dayLight)
    , rock(112, 116, 128)
    , haze(196, 212, 228)
    , wood(44, 82, 56)
    , ballast(138, 126, 116)
{
    colourGround(*this);
    colourSky(*this);
}

QColor mixed(const QColor &from, const QColor &to, double share)
{
    const auto part = [share](int one, int other) { return int(std::lround(one + (other - one) * share)); };
    return { part(from.red(), to.red()), part(from.green(), to.green()), part(from.blue(), to.blue()),
        part(from.alpha(), to.alpha()) };
}

QColor varied(const QColor &color, int spread, QRandomGenerator &random)
{
    const int change = random.bounded(-spread, spread + 1);
    const auto shifted = [change](int value) { return std::clamp(value + change, 0, 255); };
    return { shifted(color.red()), shifted(color.green()), shifted(color.blue()), color.alpha() };
}

double between(double low, double high, QRandomGenerator &random)
{
    return low + (high - low) * random.generateDouble();
}

QBrush downwards(double top, double bottom, const QColor &above, const QColor &below)
{
    QLinearGradient gradient(0, top, 0, bottom);
    gradient.setColorAt(0, above);
    gradient.setColorAt(1, below);
    return gradient;
}
