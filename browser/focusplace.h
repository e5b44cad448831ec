#pragma once

#include "browser/buttonitem.h"

#include <QList>

#include <optional>

class EntryBlock;
class QGraphicsItem;

/// Where the keyboard is on a canvas, told without pointing at an item: so the place can be found again on a page that
/// has been drawn anew.
struct FocusPlace
{
    int entryId = 0; // 0 for a button that belongs to no entry
    qsizetype block = 0; // its position on the page
    ButtonKind kind = ButtonKind::Photo;
    qsizetype photo = 0; // of those shown on the block
};

/// Nothing when `item` is null.
[[nodiscard]] std::optional<FocusPlace> focusPlace(const QGraphicsItem *item, const QList<EntryBlock *> &blocks);

/// The same kind of item of the same entry, else what comes nearest to it: an arrow with nowhere to go gives way to
/// the opposite one, a deleted entry to the one that moved up. Otherwise the first of `focusItems`, null if there are
/// none.
[[nodiscard]] QGraphicsItem *itemAtPlace(
    const FocusPlace &place, const QList<EntryBlock *> &blocks, const QList<QGraphicsItem *> &focusItems);
