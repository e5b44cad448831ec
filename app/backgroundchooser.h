#pragma once

#include <QColor>
#include <QIcon>
#include <QList>
#include <QString>

struct NamedColor
{
    QString name;
    QColor color;
};

/// The backgrounds of the colour menu, in the order of the menu.
[[nodiscard]] QList<NamedColor> menuColors();

/// The colour button's picture above a bar in `color`.
[[nodiscard]] QIcon colorButtonIcon(const QColor &color);

/// A patch of `color` for a menu entry.
[[nodiscard]] QIcon colorMenuIcon(const QColor &color);
