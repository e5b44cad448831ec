#include "store/colorscheme.h"

namespace {

constexpr QColor LightBlue(185, 230, 255);
constexpr QColor LightYellow(250, 255, 175);
constexpr QColor LightGreen(145, 255, 200);

QColor lightAccent(const QColor &background)
{
    if (background == QColor(Qt::gray) || background == QColor(Qt::white) || background == LightBlue) {
        return Qt::darkBlue;
    }
    if (background == LightYellow) {
        return Qt::darkYellow;
    }
    if (background == LightGreen) {
        return Qt::darkGreen;
    }
    return Qt::white;
}

} // namespace

const QList<QColor> &ColorScheme::palette()
{
    static const QList<QColor> colors { QColor(Qt::gray), QColor(Qt::white), QColor(Qt::black), LightBlue, LightYellow,
        LightGreen };
    return colors;
}

ColorScheme::ColorScheme(const QColor &background)
    : m_background(background.toRgb()) // a colour dialog may hand over another model, which never equals ours
{
    if (m_background == QColor(Qt::black)) {
        m_mode = Dark;
        m_boxColor = Qt::darkGray;
        m_textColor = Qt::white;
        m_accentColor = Qt::white;
        return;
    }
    m_boxColor = QColor(222, 222, 222);
    m_textColor = QColor(12, 15, 118);
    m_accentColor = lightAccent(m_background);
}
