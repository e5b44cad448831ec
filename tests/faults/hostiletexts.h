#pragma once

#include <QRandomGenerator>
#include <QString>

class QAbstractButton;
class QLineEdit;
class QTextEdit;

/// Most characters that a field stores, as the manual promises them; here once more, so that a wrong one is found.
namespace FieldLimit {
constexpr qsizetype Name = 38; // of groups and classes
constexpr qsizetype Number = 18;
constexpr qsizetype Place = 38;
constexpr qsizetype Comment = 198;
} // namespace FieldLimit

/// Texts that a careless program would take for markup, for a part of a statement, for a placeholder or for nothing.
[[nodiscard]] QString hostileText(QRandomGenerator &random);

/// Replaces what the field holds, from the clipboard, so that what has no key comes in too.
void pasteInto(QLineEdit *edit, const QString &text);
void pasteInto(QTextEdit *edit, const QString &text);

/// What a field of one line holds of a pasted text: line feeds, tabs and their like are blanks, and gone at the ends.
[[nodiscard]] QString onOneLine(const QString &typed);

/// What the comment's field holds, on one line: each end of a line and each tab is a blank.
[[nodiscard]] QString commentOnOneLine(QString typed);

/// How the database holds the first `limit` characters of a text: what is no letter, like half a surrogate pair, is the
/// sign for that.
[[nodiscard]] QString asStored(const QString &text, qsizetype limit);

/// How the canvas and the group buttons show a stored text: nothing in it breaks the line.
[[nodiscard]] QString onCanvas(QString stored);

/// How lists, tool tips and fields for paths show a stored text: the first 300 characters of it.
[[nodiscard]] QString inList(const QString &stored);

/// What is to be read in a tool tip, without gaps, which come out of it in another form.
[[nodiscard]] QString readableIn(const QString &toolTip);

/// The text without gaps, to be compared with what is to be read in a tool tip.
[[nodiscard]] QString withoutGaps(QString text);

/// Whether a text that may have found too little room is the start of `whole`. Behind the dots the toolkit keeps the
/// signs that change the direction.
[[nodiscard]] bool isStartOf(const QString &shown, const QString &whole);

/// The letters on a button, where a single "&" would vanish and mark the letter behind it.
[[nodiscard]] QString lettersOn(const QAbstractButton *button);
