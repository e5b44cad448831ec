#pragma once

#include <QVariant>

/// What a list shows of a stored value: `stored` is the value of the cell, for Qt::ToolTipRole too. Texts are cut as
/// shownText() does, and the tool tip has them as plain text, because a path rarely fits its column.
[[nodiscard]] QVariant shownValue(const QVariant &stored, int role);
