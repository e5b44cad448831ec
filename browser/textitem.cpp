#include "browser/textitem.h"

#include <QGlyphRun>
#include <QPainter>
#include <QTextOption>

#include <algorithm>

namespace {

constexpr int SmallestLetters = 13; // pixels

/// Whether the text has letters that not every font has in all its styles. Latin and ordinary punctuation are quick.
bool isForeign(const QString &text)
{
    constexpr char16_t LastLatin = 0x024f;
    return std::any_of(text.begin(), text.end(), [](QChar letter) {
        const bool isPunctuation = letter.unicode() >= 0x2000 && letter.unicode() <= 0x206f;
        return letter.unicode() > LastLatin && !isPunctuation;
    });
}

/// How many letters would be shown as an empty box, because no installed font has them.
qsizetype missingLetters(const QString &text, const QFont &font)
{
    QTextLayout layout(text, font);
    layout.beginLayout();
    layout.createLine();
    layout.endLayout();
    qsizetype missing = 0;
    const QList<QGlyphRun> runs = layout.glyphRuns();
    for (const QGlyphRun &run : runs) {
        missing += run.glyphIndexes().count(0);
    }
    return missing;
}

/// Many alphabets have no italics: upright letters are better than boxes.
QFont fontWithLettersFor(const QString &text, const QFont &font)
{
    const qsizetype missing = font.italic() && isForeign(text) ? missingLetters(text, font) : 0;
    if (missing == 0) {
        return font;
    }
    QFont upright = font;
    upright.setItalic(false);
    return missingLetters(text, upright) < missing ? upright : font;
}

} // namespace

TextItem::TextItem(const QString &text, const QFont &font, const QColor &color, double width, QGraphicsItem *parent)
    : QGraphicsItem(parent)
    , m_text(text)
    , m_color(color)
    , m_width(width)
{
    setAcceptedMouseButtons(Qt::NoButton);
    m_layout.setFont(fontWithLettersFor(text, font));
    m_layout.setCacheEnabled(true); // else every paint would shape the letters again
    layOut();
}

void TextItem::setPlainText(const QString &text)
{
    m_text = text;
    layOut();
}

void TextItem::paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget)
{
    Q_UNUSED(option)
    Q_UNUSED(widget)
    painter->setPen(m_color);
    if (m_isTooWide) {
        painter->setClipRect(m_bounds, Qt::IntersectClip);
    }
    m_layout.draw(painter, {});
}

void TextItem::fitInto(double height)
{
    QFont smaller = font();
    while (this->height() > height && smaller.pixelSize() > SmallestLetters) {
        smaller.setPixelSize(smaller.pixelSize() - 1);
        m_layout.setFont(smaller);
        layOut();
    }
    QString text = m_text;
    while (this->height() > height && text.size() > 1) {
        text.chop(text.size() > 2 && text.at(text.size() - 2).isLowSurrogate() ? 3 : 2);
        text.append(u'…');
        setPlainText(text);
    }
}

/// A single letter can be wider than the column, and no line break helps there: then all letters are made smaller.
void TextItem::layOut()
{
    prepareGeometryChange();
    double widest = layOutLines();
    const int letters = font().pixelSize();
    if (m_width > 0 && widest > m_width && letters > SmallestLetters) {
        QFont smaller = font();
        smaller.setPixelSize(std::max(SmallestLetters, int(letters * m_width / widest)));
        m_layout.setFont(smaller);
        widest = layOutLines();
    }
    m_isTooWide = m_width > 0 && widest > m_width;
    m_bounds.setWidth(m_width > 0 ? m_width : widest);
}

/// Returns the width of the widest line; the height is that of `m_bounds` from then on.
double TextItem::layOutLines()
{
    QString paragraph = m_text;
    m_layout.setText(paragraph.replace(u'\n', QChar::LineSeparator));
    const Qt::LayoutDirection direction = m_text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight;
    // What is read from right to left stands at the left too, where the eye looks for it on every card.
    QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
    option.setTextDirection(direction);
    option.setWrapMode(m_width > 0 ? QTextOption::WrapAtWordBoundaryOrAnywhere : QTextOption::NoWrap);
    m_layout.setTextOption(option);

    double bottom = 0;
    double widest = 0;
    m_layout.beginLayout();
    for (QTextLine line = m_layout.createLine(); line.isValid(); line = m_layout.createLine()) {
        line.setLeadingIncluded(true);
        if (m_width > 0) {
            line.setLineWidth(m_width);
        } else {
            line.setNumColumns(int(m_text.size()) + 1); // as wide as it is
        }
        line.setPosition({ 0, bottom });
        bottom += line.height();
        widest = std::max(widest, line.naturalTextWidth());
    }
    m_layout.endLayout();
    m_bounds.setHeight(bottom);
    return widest;
}
