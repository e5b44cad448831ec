#include "browser/textitem.h"

#include <QTextDocument>
#include <QTextOption>

#include <algorithm>

namespace {

constexpr int SmallestLetters = 13; // pixels

} // namespace

TextItem::TextItem(const QString &text, const QFont &font, const QColor &color, double width, QGraphicsItem *parent)
    : QGraphicsTextItem(parent)
    , m_width(width)
{
    document()->setUndoRedoEnabled(false);
    document()->setDocumentMargin(0);
    setTextInteractionFlags(Qt::NoTextInteraction);
    setAcceptedMouseButtons(Qt::NoButton);
    setFont(font);
    setDefaultTextColor(color);
    setPlainText(text);
    if (width > 0) {
        QTextOption option = document()->defaultTextOption();
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        document()->setDefaultTextOption(option);
        setTextWidth(width);
    }
}

void TextItem::fitInto(double height)
{
    QFont smaller = font();
    while (this->height() > height && smaller.pixelSize() > SmallestLetters) {
        smaller.setPixelSize(smaller.pixelSize() - 1);
        setFont(smaller);
    }
    QString text = toPlainText();
    while (this->height() > height && text.size() > 1) {
        text.chop(text.size() > 2 && text.at(text.size() - 2).isLowSurrogate() ? 3 : 2);
        text.append(u'…');
        setPlainText(text);
    }
}

QRectF TextItem::boundingRect() const
{
    QRectF rect = QGraphicsTextItem::boundingRect();
    if (m_width > 0) {
        rect.setWidth(std::min(rect.width(), m_width));
    }
    return rect;
}
