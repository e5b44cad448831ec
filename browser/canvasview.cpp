#include "browser/canvasview.h"

#include "browser/canvasaccessible.h"
#include "browser/decodeahead.h"
#include "browser/picturescene.h"

#include <QFocusEvent>
#include <QGraphicsItem>
#include <QKeyEvent>
#include <QScrollBar>

#include <cmath>

namespace {

constexpr int ScrollMargin = 40; // pixels kept visible around the focused item

} // namespace

CanvasView::CanvasView(QWidget *parent)
    : QGraphicsView(parent)
    , m_decodeAhead(std::make_unique<DecodeAhead>(*this))
{
    CanvasAccessible::install(); // first of all, because setting a name already asks for the view's description
    setAlignment(Qt::AlignLeft | Qt::AlignTop);
    setFocusPolicy(Qt::StrongFocus);
    setFrameShape(QFrame::NoFrame);
    setObjectName(QStringLiteral("canvasView"));
    setAccessibleName(tr("Einträge"));
    connect(this, &CanvasView::itemsChanged, m_decodeAhead.get(), &DecodeAhead::stop); // until they are painted
}

CanvasView::~CanvasView() = default;

PictureScene *CanvasView::canvas() const
{
    return qobject_cast<PictureScene *>(scene());
}

void CanvasView::showCanvas(PictureScene *canvas)
{
    if (canvas == scene()) {
        return;
    }
    if (const PictureScene *former = this->canvas()) {
        // One by one, for the view itself has more connections with its scene.
        disconnect(former, &PictureScene::itemsDeleted, this, nullptr);
        disconnect(former, &PictureScene::contentsChanged, this, nullptr);
        disconnect(former, &PictureScene::focusItemChanged, this, nullptr);
    }
    setScene(canvas);
    connect(canvas, &PictureScene::itemsDeleted, this, &CanvasView::itemsChanged);
    connect(canvas, &PictureScene::contentsChanged, this, &CanvasView::itemsChanged);
    connect(canvas, &PictureScene::focusItemChanged, this, [this](QGraphicsItem *item) {
        if (item) {
            CanvasAccessible::tellFocus(this, item);
        }
    });
    if (hasFocus()) {
        canvas->setFocus();
    }
    Q_EMIT itemsChanged();
}

void CanvasView::focusInEvent(QFocusEvent *event)
{
    QGraphicsView::focusInEvent(event);
    const bool isForward = event->reason() == Qt::TabFocusReason;
    if (canvas() && !canvas()->focusItem() && (isForward || event->reason() == Qt::BacktabFocusReason)) {
        moveFocus(isForward ? 1 : -1); // else one more key press would be needed to see where the keyboard is
    }
}

void CanvasView::hideEvent(QHideEvent *event)
{
    m_decodeAhead->stop();
    QGraphicsView::hideEvent(event);
}

void CanvasView::paintEvent(QPaintEvent *event)
{
    QGraphicsView::paintEvent(event);
    m_decodeAhead->begin();
}

void CanvasView::keyPressEvent(QKeyEvent *event)
{
    QGraphicsItem *focused = canvas() ? canvas()->focusItem() : nullptr;
    bool done = false;
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        if (focused) {
            if (!event->isAutoRepeat()) { // a key held down would answer the question and ask it again
                canvas()->activate(focused);
            }
            done = true;
        }
        break;
    case Qt::Key_Left:
        done = focused && moveFocus(-1);
        break;
    case Qt::Key_Right:
        done = focused && moveFocus(1);
        break;
    case Qt::Key_Up:
        done = focused && moveFocusToRow(-1);
        break;
    case Qt::Key_Down:
        done = focused && moveFocusToRow(1);
        break;
    default:
        done = scrollBy(event->key());
        break;
    }
    if (!done) {
        QGraphicsView::keyPressEvent(event);
    }
}

bool CanvasView::focusNextPrevChild(bool next)
{
    return moveFocus(next ? 1 : -1) || QGraphicsView::focusNextPrevChild(next);
}

/// Moves the focus by one item in reading order; false at both ends, where it leaves the canvas.
bool CanvasView::moveFocus(int step)
{
    if (!canvas()) {
        return false;
    }
    const QList<QGraphicsItem *> items = canvas()->focusItems();
    const auto current = items.indexOf(canvas()->focusItem());
    const auto target = current < 0 ? (step > 0 ? 0 : items.size() - 1) : current + step;
    if (target < 0 || target >= items.size()) {
        if (QGraphicsItem *item = canvas()->focusItem()) {
            item->clearFocus();
        }
        return false;
    }
    focusOn(items.at(target));
    return true;
}

/// Moves the focus to the nearest item that stands above or below the row of the focused one.
bool CanvasView::moveFocusToRow(int direction)
{
    const QPointF from = canvas()->focusItem()->sceneBoundingRect().center();
    const double row = canvas()->focusItem()->sceneBoundingRect().height() / 2;
    QGraphicsItem *nearest = nullptr;
    double shortest = 0;
    const QList<QGraphicsItem *> items = canvas()->focusItems();
    for (QGraphicsItem *item : items) {
        const QPointF to = item->sceneBoundingRect().center();
        const double down = (to.y() - from.y()) * direction;
        if (down <= row) {
            continue;
        }
        const double distance = down + 2 * std::abs(to.x() - from.x());
        if (!nearest || distance < shortest) {
            nearest = item;
            shortest = distance;
        }
    }
    if (nearest) {
        focusOn(nearest);
    }
    return nearest != nullptr;
}

bool CanvasView::scrollBy(int key)
{
    QScrollBar *bar = verticalScrollBar();
    switch (key) {
    case Qt::Key_PageUp:
        bar->triggerAction(QAbstractSlider::SliderPageStepSub);
        return true;
    case Qt::Key_PageDown:
        bar->triggerAction(QAbstractSlider::SliderPageStepAdd);
        return true;
    case Qt::Key_Home:
        bar->triggerAction(QAbstractSlider::SliderToMinimum);
        return true;
    case Qt::Key_End:
        bar->triggerAction(QAbstractSlider::SliderToMaximum);
        return true;
    default:
        return false;
    }
}

void CanvasView::focusOn(QGraphicsItem *item)
{
    canvas()->setFocusItem(item, Qt::TabFocusReason);
    ensureVisible(item, ScrollMargin, ScrollMargin);
}
