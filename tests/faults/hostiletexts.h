#pragma once

#include <QRandomGenerator>
#include <QString>

/// Texts that a careless program would take for markup, for a part of a statement, for a placeholder or for nothing.
[[nodiscard]] QString hostileText(QRandomGenerator &random);

/// How the database holds the text of a field: what is no letter, like half a surrogate pair, becomes the sign for
/// that, and a mark of the byte order, which nobody sees, disappears from the start.
[[nodiscard]] QString asStored(const QString &text, qsizetype limit);

/// Whether all of the text can stand in a field of one line.
[[nodiscard]] bool isPlain(const QString &text);

/// The text without gaps, which come out of a tool tip in another form.
[[nodiscard]] QString visible(QString text);
