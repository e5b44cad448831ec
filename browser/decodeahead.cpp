#include "browser/decodeahead.h"

#include "browser/canvasview.h"
#include "browser/entryblock.h"
#include "browser/picturescene.h"

#include <algorithm>
#include <chrono>

using namespace std::chrono_literals;

namespace {

constexpr auto Pause = 10ms; // after a paint: what it has brought about and the next key come first
constexpr auto BusyPause = 500ms; // while a page is loaded or a form is open

/// The blocks that reach into the part of the canvas between `top` and `bottom`, in order.
QList<EntryBlock *> blocksBetween(const QList<EntryBlock *> &blocks, double top, double bottom)
{
    const auto first = std::partition_point(
        blocks.begin(), blocks.end(), [top](const EntryBlock *block) { return block->y() + block->height() <= top; });
    const auto last
        = std::partition_point(first, blocks.end(), [bottom](const EntryBlock *block) { return block->y() < bottom; });
    return { first, last };
}

} // namespace

DecodeAhead::DecodeAhead(const CanvasView &view)
    : m_view(view)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &DecodeAhead::step);
}

void DecodeAhead::begin()
{
    m_timer.start(Pause);
}

void DecodeAhead::stop()
{
    m_timer.stop();
}

/// Each step looks anew at what stands on the canvas, so that nothing is kept that a redraw could delete.
void DecodeAhead::step()
{
    const PictureScene *canvas = m_view.canvas();
    if (!canvas || !m_view.isVisible() || m_view.window()->isMinimized()) {
        return;
    }
    if (canvas->isBusy()) {
        m_timer.start(BusyPause);
    } else if (decodeOne()) {
        m_timer.start(0ms); // which lets every event go first that has come meanwhile
    }
}

/// False when nothing is left to be decoded; then the pairs are let go that are out of sight.
bool DecodeAhead::decodeOne() const
{
    const double scale = m_view.devicePixelRatioF();
    const QRectF seen = m_view.mapToScene(m_view.viewport()->rect()).boundingRect();
    const QList<EntryBlock *> &all = m_view.canvas()->blocks();
    const QList<EntryBlock *> inSight = blocksBetween(all, seen.top(), seen.bottom());
    const auto shown = [scale](EntryBlock *block) { return block->decodeShown(scale); };
    const auto further = [scale](EntryBlock *block) { return block->decodeFurther(scale); };
    const QList<EntryBlock *> below = blocksBetween(all, seen.top(), seen.bottom() + seen.height());
    const QList<EntryBlock *> above = blocksBetween(all, seen.top() - seen.height(), seen.top());
    if (std::any_of(below.begin(), below.end(), shown) || std::any_of(inSight.begin(), inSight.end(), further)
        || std::any_of(above.rbegin(), above.rend(), shown)) {
        return true;
    }
    for (EntryBlock *block : all) {
        if (!inSight.contains(block)) {
            block->forgetFurther();
        }
    }
    return false;
}
