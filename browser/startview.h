#pragma once

#include "browser/entrycard.h"

#include <QList>

class QGraphicsItem;

/// The items of the view that greets the user: one photograph large in a frame, below it the details of its entry and
/// the size of the whole catalogue. The caller owns the items; `modelName` is the name of the entry's class,
/// `storedPictures` the count of the catalogue's pictures, which takes long and is known to the caller.
[[nodiscard]] QList<QGraphicsItem *> startViewItems(
    const PicturePaths &picture, const EntryCard &card, const QString &modelName, int storedPictures);
