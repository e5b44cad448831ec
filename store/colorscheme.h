#pragma once

#include <QColor>
#include <QList>

/// The canvas colours that follow from the background colour.
class ColorScheme final
{
public:
    enum Mode { Light = 101, Dark = 102 };

    /// The six backgrounds that a user can choose; the stored index refers to this order.
    [[nodiscard]] static const QList<QColor> &palette();

    explicit ColorScheme(const QColor &background);

    [[nodiscard]] QColor background() const { return m_background; }
    [[nodiscard]] Mode mode() const { return m_mode; }
    [[nodiscard]] QColor boxColor() const { return m_boxColor; }
    [[nodiscard]] QColor textColor() const { return m_textColor; }
    [[nodiscard]] QColor accentColor() const { return m_accentColor; }

private:
    QColor m_background;
    Mode m_mode = Light;
    QColor m_boxColor;
    QColor m_textColor;
    QColor m_accentColor;
};
