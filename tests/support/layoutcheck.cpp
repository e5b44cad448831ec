#include "tests/support/layoutcheck.h"

#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "browser/textitem.h"
#include "tests/support/testpictures.h"

#include <QRandomGenerator>

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

} // namespace

QRectF LayoutCheck::shown(const QGraphicsItem *item)
{
    if (const auto *button = qgraphicsitem_cast<const ButtonItem *>(item)) {
        return item->mapRectToScene(QRectF({ 0, 0 }, buttonBox(button->kind())));
    }
    const auto *photo = qgraphicsitem_cast<const Picture *>(item);
    return item->mapRectToScene(photo ? photo->frame() : item->boundingRect());
}

QString LayoutCheck::blockFault(const EntryBlock *block)
{
    const QList<QGraphicsItem *> items = block->childItems();
    for (const QGraphicsItem *item : items) {
        if (!block->sceneBoundingRect().contains(shown(item))) {
            return u"%1 leaves its card"_s.arg(described(item));
        }
    }
    return overlapFault(items);
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
    return overlapFault(contents);
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
