#include "tests/faults/hostiletexts.h"

#include "store/textcut.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

QString hostileText(QRandomGenerator &random)
{
    const QStringList pieces { u"<b>x</b>"_s, u"7'8"_s, u"7%2"_s, u"%1"_s, u"\"--;DROP TABLE loc_seen"_s,
        u"' OR 1=1 --"_s, u"\U0001F600"_s, u"\U0001F469\u200D\U0001F467"_s, u"e\u0301"_s, u"\u202Eabc"_s, u"\u200B"_s,
        u"&amp;"_s, u"&Ort"_s, u"a\nb"_s, u"\t"_s, u"\u2028"_s, u"\u00AD"_s, u"\u0141\u00F3d\u017A"_s, u"\u6771"_s,
        u"\u05E2\u05D1"_s, u":num"_s, u"?1"_s, u"$x"_s, u"\\0"_s, u"\\"_s, u" "_s, u"  "_s, u"NULL"_s, u"0"_s,
        u"1e99"_s, u"2001-05-17"_s, u"<img src=\"file:///etc/passwd\">"_s, u"<a href='x'>y</a>"_s,
        QString(QChar(0xD83D)), QString(QChar(0)), u"\uFEFF"_s, QString(QChar(0xFFFE)), QString(QChar(0xFFFF)),
        u"Gotthard"_s, u"./Data/Pictures/../x"_s, QString(10000, u'W'), QString(40, u'x'), u"\u00DF"_s, u"\u00C4"_s,
        u"\r\n"_s, u"%"_s, u"_"_s, u"[x]"_s, u"\u00A0"_s };
    QString text;
    for (int i = random.bounded(1, 6); i > 0; --i) {
        text += pieces.at(random.bounded(pieces.size()));
    }
    return text;
}

QString asStored(const QString &text, qsizetype limit)
{
    QString stored = QString::fromUtf8('x' + cutText(text, limit).toUtf8()).sliced(1);
    stored.replace(QChar(0xFFFF), QChar::ReplacementCharacter);
    stored.replace(QChar::ByteOrderSwapped, QChar::ReplacementCharacter);
    return stored.startsWith(QChar::ByteOrderMark) ? stored.sliced(1) : stored;
}

bool isPlain(const QString &text)
{
    return std::none_of(text.cbegin(), text.cend(), [](QChar character) {
        return character.category() == QChar::Other_Control || character == QChar::LineSeparator
            || character == QChar::ParagraphSeparator;
    });
}

QString visible(QString text)
{
    text.removeIf(
        [](QChar character) { return character.isSpace() || !character.isPrint() || character.isSurrogate(); });
    return text;
}
