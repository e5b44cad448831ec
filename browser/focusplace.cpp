#include "browser/focusplace.h"

#include "browser/entryblock.h"

#include <algorithm>

namespace {

QList<QGraphicsItem *> itemsOfKind(const EntryBlock &block, ButtonKind kind)
{
    QList<QGraphicsItem *> found;
    const QList<QGraphicsItem *> items = block.focusItems();
    for (QGraphicsItem *item : items) {
        const auto *button = qgraphicsitem_cast<const ButtonItem *>(item);
        if ((button ? button->kind() : ButtonKind::Photo) == kind) {
            found.append(item);
        }
    }
    return found;
}

ButtonKind standIn(ButtonKind kind)
{
    if (kind == ButtonKind::Left) {
        return ButtonKind::Right;
    }
    return kind == ButtonKind::Right ? ButtonKind::Left : ButtonKind::Edit;
}

const EntryBlock *blockAt(const FocusPlace &place, const QList<EntryBlock *> &blocks)
{
    for (const EntryBlock *block : blocks) {
        if (block->card().id == place.entryId) {
            return block;
        }
    }
    return blocks.at(std::min(place.block, blocks.size() - 1));
}

} // namespace

std::optional<FocusPlace> focusPlace(const QGraphicsItem *item, const QList<EntryBlock *> &blocks)
{
    if (!item) {
        return {};
    }
    const auto *button = qgraphicsitem_cast<const ButtonItem *>(item);
    FocusPlace place;
    place.kind = button ? button->kind() : ButtonKind::Photo;
    if (const auto *block = qgraphicsitem_cast<const EntryBlock *>(item->parentItem())) {
        place.entryId = block->card().id;
        place.block = std::max(qsizetype(0), blocks.indexOf(block));
        place.photo = std::max(qsizetype(0), itemsOfKind(*block, place.kind).indexOf(item));
    }
    return place;
}

QGraphicsItem *itemAtPlace(
    const FocusPlace &place, const QList<EntryBlock *> &blocks, const QList<QGraphicsItem *> &focusItems)
{
    if (place.entryId != 0 && !blocks.isEmpty()) {
        const EntryBlock *block = blockAt(place, blocks);
        QList<QGraphicsItem *> items = itemsOfKind(*block, place.kind);
        if (items.isEmpty()) {
            items = itemsOfKind(*block, standIn(place.kind));
        }
        if (!items.isEmpty()) {
            return items.at(std::min(place.photo, items.size() - 1));
        }
    }
    return focusItems.value(0);
}
