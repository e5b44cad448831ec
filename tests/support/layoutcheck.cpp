#include "tests/support/layoutcheck.h"

#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "browser/textitem.h"
#include "tests/support/testpictures.h"

#include <QPainter>
#include <QRandomGenerator>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int FirstColumn = 20;
constexpr int LastColumn = 1060;

QString described(const QGraphicsItem *item)
{
    const QRectF rect = LayoutCheck::shown(item);
    return u"type %1 at (%2, %3) of size %4 x %5"_s.arg(item->type())
        .arg(rect.x())
        .arg(rect.y())
        .arg(rect.width())
        .arg(rect.height());
}

bool overlap(const QGraphicsItem *first, const QGraphicsItem *second)
{
    QRectF rect = LayoutCheck::shown(first);
    if (first->type() == TextItem::Type && second->type() == TextItem::Type) {
        rect.adjust(0, 5, 0, -5); // lines of text may stand closer than the leading above and below their letters
    }
    return rect.intersects(LayoutCheck::shown(second));
}

bool hasInk(const QImage &image, const QRect &area)
{
    for (int y = area.top(); y <= area.bottom(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        if (std::any_of(line + area.left(), line + area.right() + 1, [](QRgb pixel) { return qAlpha(pixel) > 0; })) {
            return true;
        }
    }
    return false;
}

/// The first two of the items that overlap; empty when there are none.
QString overlapFault(const QList<QGraphicsItem *> &items)
{
    for (qsizetype i = 0; i < items.size(); ++i) {
        for (qsizetype k = i + 1; k < items.size(); ++k) {
            if (overlap(items.at(i), items.at(k))) {
                return u"%1 overlaps %2"_s.arg(described(items.at(i)), described(items.at(k)));
            }
        }
    }
    return {};
}

/// The first of the texts among the items whose letters leave its bounds; empty when there is none.
QString inkFaultOf(const QList<QGraphicsItem *> &items)
{
    for (QGraphicsItem *item : items) {
        auto *text = qgraphicsitem_cast<TextItem *>(item);
        const QString fault = text ? LayoutCheck::inkFault(text) : QString();
        if (!fault.isEmpty()) {
            return fault;
        }
    }
    return {};
}

} // namespace

QRectF LayoutCheck::shown(const QGraphicsItem *item)
{
    if (const auto *button = qgraphicsitem_cast<const ButtonItem *>(item)) {
        return item->mapRectToScene(QRectF({ 0, 0 }, buttonBox(button->kind())));
    }
    const auto *photo = qgraphicsitem_cast<const Picture *>(item);
    return item->mapRectToScene(photo ? photo->frame() : item->boundingRect());
}

QString LayoutCheck::inkFault(TextItem *text)
{
    constexpr int Beyond = 16; // pixels looked at around the bounds
    constexpr int Lean = 6; // less than what texts keep from pictures, buttons and each other
    constexpr int Rise = 5;
    const QRectF bounds = text->boundingRect();
    const QSize size = bounds.toAlignedRect().size();
    QImage image(size + QSize(2 * Beyond, 2 * Beyond), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.translate(QPointF(Beyond, Beyond) - bounds.topLeft());
    text->paint(&painter, nullptr, nullptr);
    painter.end();
    const QRect all = image.rect();
    const QRect allowed = QRect({ Beyond, Beyond }, size).adjusted(-Lean, -Rise, Lean, Rise);
    for (const QRect &strip : { QRect(all.topLeft(), QPoint(all.right(), allowed.top() - 1)),
             QRect(QPoint(0, allowed.bottom() + 1), all.bottomRight()),
             QRect(QPoint(0, allowed.top()), QPoint(allowed.left() - 1, allowed.bottom())),
             QRect(QPoint(allowed.right() + 1, allowed.top()), QPoint(all.right(), allowed.bottom())) }) {
        if (hasInk(image, strip)) {
            return u"letters of \"%1\" leave their bounds"_s.arg(text->toPlainText());
        }
    }
    return {};
}

QString LayoutCheck::blockFault(const EntryBlock *block)
{
    const QList<QGraphicsItem *> items = block->childItems();
    for (const QGraphicsItem *item : items) {
        if (!block->sceneBoundingRect().contains(shown(item))) {
            return u"%1 leaves its card"_s.arg(described(item));
        }
    }
    const QString fault = inkFaultOf(items);
    return fault.isEmpty() ? overlapFault(items) : fault;
}

QString LayoutCheck::pageFault(const PictureScene &canvas)
{
    QList<QGraphicsItem *> contents; // frames and plates lie under them
    const QList<QGraphicsItem *> items = canvas.items();
    for (QGraphicsItem *item : items) {
        const QRectF rect = shown(item);
        if (rect.left() < FirstColumn || rect.right() > LastColumn || !canvas.sceneRect().contains(rect)) {
            return u"%1 leaves the canvas"_s.arg(described(item));
        }
        if (!item->parentItem() && item->type() != QGraphicsItem::UserType) {
            contents.append(item);
        }
    }
    for (const EntryBlock *block : canvas.blocks()) {
        const QString fault = blockFault(block);
        if (!fault.isEmpty()) {
            return fault;
        }
    }
    const QString fault = inkFaultOf(contents);
    return fault.isEmpty() ? overlapFault(contents) : fault;
}

QString LayoutCheck::anyText(QRandomGenerator &random, int longest)
{
    const QStringList words { u"W"_s, u"i"_s, u"Krokodil "_s, u"Wasserturm"_s, u" "_s, u"<b>x</b>"_s, u"שלום "_s,
        u"🚂"_s, u"机关车"_s, u"a\u0301"_s };
    QString result = u""_s; // an empty text, but not NULL
    const int wanted = random.bounded(longest + 1);
    const QString word = words.at(random.bounded(words.size()));
    while (result.size() < wanted) {
        result += random.bounded(3) == 0 ? words.at(random.bounded(words.size())) : word;
    }
    return result.left(longest);
}

QStringList LayoutCheck::anyPictures()
{
    const QList<QSize> shapes { { 750, 500 }, { 500, 750 }, { 500, 500 }, { 1, 2000 }, { 2000, 1 }, { 1, 1 },
        { 2000, 30 } };
    QStringList paths;
    for (qsizetype i = 0; i < shapes.size(); ++i) {
        paths.append(u"shape%1.jpg"_s.arg(i));
        writeTestJpeg(paths.last(), shapes.at(i));
    }
    return paths << u"missing.jpg"_s;
}
