#pragma once

#include <QRectF>
#include <QString>
#include <QStringList>

class EntryBlock;
class PictureScene;
class QGraphicsItem;
class QRandomGenerator;
class TextItem;

/// What must hold for everything that stands on a canvas, whatever the catalogue's texts and pictures are.
namespace LayoutCheck {

/// The part of an item that the user sees, in scene pixels: buttons and photographs keep a margin for the focus mark.
[[nodiscard]] QRectF shown(const QGraphicsItem *item);

/// What of the text's letters is painted beyond its bounds; empty when nothing is but the lean of slanted letters and
/// what some scripts stack above a line.
[[nodiscard]] QString inkFault(TextItem *text);

/// What is wrong with the block; empty when nothing leaves the card, no letters leave their text's bounds, and no two
/// of its items overlap.
[[nodiscard]] QString blockFault(const EntryBlock *block);

/// What is wrong with the canvas; empty when its blocks, texts, photographs and buttons stand apart from each other
/// between x 20 and x 1060 and inside the scene, and every block is without fault.
[[nodiscard]] QString pageFault(const PictureScene &canvas);

/// Up to `longest` characters of wide and narrow letters, words, tags, emoji, other scripts, in any mixture.
[[nodiscard]] QString anyText(QRandomGenerator &random, int longest);

/// Writes pictures of all shapes into the working folder, from 1 x 2000 to 2000 x 1; the last path is of no file.
[[nodiscard]] QStringList anyPictures();

} // namespace LayoutCheck
