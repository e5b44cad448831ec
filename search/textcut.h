#pragma once

#include <QString>

/// Limits in characters of the texts that the forms store.
namespace TextLimit {
constexpr qsizetype Name = 38; // groups and classes
constexpr qsizetype Number = 18;
constexpr qsizetype Place = 38;
constexpr qsizetype Comment = 198;
} // namespace TextLimit

/// The first `limit` characters of a longer text, never ending in half of a surrogate pair. The result is never a
/// null text, because SQLite would take that for NULL.
[[nodiscard]] inline QString cutText(const QString &text, qsizetype limit)
{
    if (text.size() <= limit) {
        return text.isNull() ? QStringLiteral("") : text;
    }
    const bool splitsPair = limit > 0 && text.at(limit - 1).isHighSurrogate() && text.at(limit).isLowSurrogate();
    return text.left(splitsPair ? limit - 1 : limit);
}

/// A stored text for a list, a field, a tool tip or a message box. Laying out millions of letters, as no form can have
/// stored them, would take minutes.
[[nodiscard]] inline QString shownText(const QString &text)
{
    constexpr qsizetype Longest = 300; // characters
    return text.size() <= Longest ? text : cutText(text, Longest) + u'…';
}

/// A stored text for a question to the user: what no form could have stored is cut, so that the question that goes on
/// behind it can still be read.
[[nodiscard]] inline QString shortened(const QString &text)
{
    constexpr qsizetype Longest = 60; // characters
    return text.size() <= Longest ? text : cutText(text, Longest) + u'…';
}
