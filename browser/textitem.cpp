#include "browser/textitem.h"

#include <QTextDocument>
#include <QTextOption>

#include <algorithm>

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

QRectF TextItem::boundingRect() const
{
    QRectF rect = QGraphicsTextItem::boundingRect();
    if (m_width > 0) {
        rect.setWidth(std::min(rect.width(), m_width));
    }
    return rect;
}
