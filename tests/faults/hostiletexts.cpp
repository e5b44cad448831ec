#include "tests/faults/hostiletexts.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QStringList>
#include <QTextDocument>
#include <QTextEdit>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype LongestLine = 32767; // the toolkit's limit for a field of one line
constexpr qsizetype LongestShown = 300;

bool isControl(QChar character)
{
    const char16_t code = character.unicode();
    return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

bool separatesLines(QChar character)
{
    return character == u'\u2028' || character == u'\u2029';
}

/// The first characters of a longer text, but not half of the last one.
QString start(const QString &text, qsizetype length)
{
    const bool splitsLetter
        = text.size() > length && text.at(length - 1).isHighSurrogate() && text.at(length).isLowSurrogate();
    return text.left(splitsLetter ? length - 1 : length);
}

} // namespace

QString hostileText(QRandomGenerator &random)
{
    const QStringList pieces { u"<b>x</b>"_s, u"7'8"_s, u"7%2"_s, u"%1"_s, u"\"--;DROP TABLE loc_seen"_s,
        u"' OR 1=1 --"_s, u"\U0001F600"_s, u"\U0001F469\u200D\U0001F467"_s, u"e\u0301"_s, u"\u202Eabc"_s, u"\u200B"_s,
        u"&amp;"_s, u"&Ort"_s, u"a\nb"_s, u"\t"_s, u"\u2028"_s, u"\u00AD"_s, u"\u0141\u00F3d\u017A"_s, u"\u6771"_s,
        u"\u05E2\u05D1"_s, u":num"_s, u"?1"_s, u"$x"_s, u"\\0"_s, u"\\"_s, u" "_s, u"  "_s, u"NULL"_s, u"0"_s,
        u"1e99"_s, u"2001-05-17"_s, u"<img src=\"file:///etc/passwd\">"_s, u"<a href='x'>y</a>"_s,
        QString(QChar(0xD83D)), QString(QChar(0)), u"\uFEFF"_s, QString(QChar(0xFFFE)), QString(QChar(0xFFFF)),
        u"Gotthard"_s, u"./Data/Pictures/../x"_s, QString(10000, u'W'), QString(40, u'x'), u"\u00DF"_s, u"\u00C4"_s,
        u"\r\n"_s, u"\v"_s, u"\f"_s, u"\u0001"_s, u"\u2029"_s, u"\uFDD0"_s, u"\uFFFC"_s, u"%"_s, u"_"_s, u"[x]"_s,
        u"\u00A0"_s };
    QString text;
    for (int i = random.bounded(1, 6); i > 0; --i) {
        text += pieces.at(random.bounded(pieces.size()));
    }
    return text;
}

void pasteInto(QLineEdit *edit, const QString &text)
{
    QApplication::clipboard()->setText(text);
    edit->selectAll();
    edit->paste();
}

void pasteInto(QTextEdit *edit, const QString &text)
{
    QApplication::clipboard()->setText(text);
    edit->selectAll();
    edit->paste();
}

QString onOneLine(const QString &typed)
{
    const auto breaks = [](QChar character) { return isControl(character) || separatesLines(character); };
    QString line = typed.left(LongestLine);
    while (!line.isEmpty() && breaks(line.back())) {
        line.chop(1);
    }
    while (!line.isEmpty() && breaks(line.front())) {
        line.remove(0, 1);
    }
    for (QChar &character : line) {
        character = breaks(character) ? QChar(u' ') : character;
    }
    return line;
}

QString commentOnOneLine(QString typed)
{
    typed.replace(u"\r\n"_s, u" "_s);
    for (QChar &character : typed) {
        const bool isEnd = u"\n\t\r\v\f"_s.contains(character) || separatesLines(character);
        const bool isEndToControl = character == u'\uFDD0' || character == u'\uFDD1'; // the text control's own signs
        character = isEnd || isEndToControl ? QChar(u' ') : character;
    }
    return typed;
}

QString asStored(const QString &text, qsizetype limit)
{
    QString stored = start(text, limit);
    for (qsizetype i = 0; i < stored.size(); ++i) {
        const QChar character = stored.at(i);
        const bool isPair = character.isHighSurrogate() && i + 1 < stored.size() && stored.at(i + 1).isLowSurrogate();
        if (isPair) {
            ++i;
        } else if (character.isSurrogate() || character.unicode() >= 0xFFFE) {
            stored[i] = u'\uFFFD';
        }
    }
    return stored;
}

QString onCanvas(QString stored)
{
    for (QChar &character : stored) {
        const bool isBlank = isControl(character) || separatesLines(character) || character == u'\uFFFC';
        character = isBlank ? QChar(u' ') : character;
    }
    return stored;
}

QString inList(const QString &stored)
{
    return stored.size() <= LongestShown ? stored : start(stored, LongestShown) + u'\u2026';
}

QString readableIn(const QString &toolTip)
{
    QTextDocument document;
    document.setHtml(toolTip);
    return withoutGaps(document.toPlainText());
}

QString withoutGaps(QString text)
{
    text.removeIf(
        [](QChar character) { return character.isSpace() || !character.isPrint() || character.isSurrogate(); });
    return text;
}

bool isStartOf(const QString &shown, const QString &whole)
{
    const qsizetype dots = shown.lastIndexOf(u'\u2026');
    const bool isCut = dots >= 0 && withoutGaps(shown.sliced(dots + 1)).isEmpty();
    return shown == whole || (isCut && whole.startsWith(shown.first(dots)));
}

QString lettersOn(const QAbstractButton *button)
{
    QString letters;
    const QString text = button->text();
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isMark = text.at(i) == u'&';
        if (!isMark || (i + 1 < text.size() && text.at(++i) == u'&')) {
            letters += text.at(i);
        }
    }
    return letters;
}
