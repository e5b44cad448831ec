#include "browser/canvasitemaccessible.h"

#include "browser/buttonitem.h"
#include "browser/canvasaccessible.h"
#include "browser/canvastexts.h"
#include "browser/canvasview.h"
#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "browser/textitem.h"

#include <QGraphicsItem>

namespace {

/// Without the margin that is kept for the mark of the keyboard focus.
QRectF visiblePart(const QGraphicsItem *item)
{
    if (const auto *button = qgraphicsitem_cast<const ButtonItem *>(item)) {
        return { QPointF(0, 0), buttonBox(button->kind()) };
    }
    const auto *picture = qgraphicsitem_cast<const Picture *>(item);
    return picture ? picture->frame() : item->boundingRect();
}

} // namespace

CanvasItemAccessible::CanvasItemAccessible(QGraphicsItem *item, const CanvasAccessible *canvas)
    : m_item(item)
    , m_canvas(canvas)
{ }

bool CanvasItemAccessible::describes(const QGraphicsItem *item)
{
    switch (item->type()) {
    case ButtonItem::Type:
    case EntryBlock::Type:
    case Picture::Type:
    case TextItem::Type:
        return true;
    default:
        return false;
    }
}

QWindow *CanvasItemAccessible::window() const
{
    return m_canvas->window();
}

QAccessibleInterface *CanvasItemAccessible::parent() const
{
    const QGraphicsItem *parent = m_item->parentItem();
    return parent ? m_canvas->interfaceOf(parent) : const_cast<CanvasAccessible *>(m_canvas);
}

int CanvasItemAccessible::childCount() const
{
    return int(m_canvas->childrenOf(m_item).size());
}

QAccessibleInterface *CanvasItemAccessible::child(int index) const
{
    return QAccessible::accessibleInterface(m_canvas->childrenOf(m_item).value(index));
}

int CanvasItemAccessible::indexOfChild(const QAccessibleInterface *child) const
{
    return int(m_canvas->childrenOf(m_item).indexOf(QAccessible::uniqueId(const_cast<QAccessibleInterface *>(child))));
}

QAccessibleInterface *CanvasItemAccessible::childAt(int x, int y) const
{
    for (int i = 0; i < childCount(); ++i) {
        if (child(i)->rect().contains(x, y)) {
            return child(i);
        }
    }
    return nullptr;
}

QString CanvasItemAccessible::text(QAccessible::Text kind) const
{
    switch (kind) {
    case QAccessible::Name:
        return name();
    case QAccessible::Description:
        return description();
    default:
        return {};
    }
}

void CanvasItemAccessible::setText(QAccessible::Text kind, const QString &text)
{
    Q_UNUSED(kind)
    Q_UNUSED(text)
}

QRect CanvasItemAccessible::rect() const
{
    const CanvasView *view = m_canvas->view();
    const QRectF part = m_item->mapRectToScene(visiblePart(m_item));
    return { view->viewport()->mapToGlobal(view->mapFromScene(part.topLeft())), part.size().toSize() };
}

QAccessible::Role CanvasItemAccessible::role() const
{
    switch (m_item->type()) {
    case ButtonItem::Type:
        return QAccessible::Button;
    case EntryBlock::Type:
        return QAccessible::Grouping;
    case Picture::Type:
        return QAccessible::Graphic;
    default:
        return QAccessible::StaticText;
    }
}

QAccessible::State CanvasItemAccessible::state() const
{
    const QWidget *viewport = m_canvas->view()->viewport();
    QAccessible::State state;
    state.focusable = isPressable();
    state.focused = isPressable() && m_canvas->view()->hasFocus() && m_item->hasFocus();
    state.readOnly = !isPressable();
    state.offscreen = !QRect(viewport->mapToGlobal(QPoint(0, 0)), viewport->size()).intersects(rect());
    return state;
}

void *CanvasItemAccessible::interface_cast(QAccessible::InterfaceType type)
{
    return type == QAccessible::ActionInterface && isPressable() ? static_cast<QAccessibleActionInterface *>(this)
                                                                 : nullptr;
}

QStringList CanvasItemAccessible::actionNames() const
{
    return { pressAction(), setFocusAction() };
}

void CanvasItemAccessible::doAction(const QString &actionName)
{
    PictureScene *canvas = m_canvas->view()->canvas();
    if (actionName == pressAction()) {
        canvas->activate(m_item);
    } else if (actionName == setFocusAction()) {
        m_canvas->view()->setFocus();
        canvas->setFocusItem(m_item);
    }
}

QStringList CanvasItemAccessible::keyBindingsForAction(const QString &actionName) const
{
    Q_UNUSED(actionName)
    return {};
}

QString CanvasItemAccessible::name() const
{
    if (const auto *button = qgraphicsitem_cast<const ButtonItem *>(m_item)) {
        return buttonName(button->kind());
    }
    if (const auto *block = qgraphicsitem_cast<const EntryBlock *>(m_item)) {
        return summary(block->card());
    }
    if (const auto *picture = qgraphicsitem_cast<const Picture *>(m_item)) {
        return picture->name();
    }
    const auto *text = qgraphicsitem_cast<const TextItem *>(m_item);
    return text ? text->toPlainText() : QString();
}

/// Tells the buttons of different entries apart, and reads the comment with its entry.
QString CanvasItemAccessible::description() const
{
    if (const auto *block = qgraphicsitem_cast<const EntryBlock *>(m_item)) {
        return CanvasTexts::shown(block->card().comment);
    }
    const auto *block = qgraphicsitem_cast<const EntryBlock *>(m_item->parentItem());
    return block && isPressable() ? summary(block->card()) : QString();
}

bool CanvasItemAccessible::isPressable() const
{
    return m_item->flags().testFlag(QGraphicsItem::ItemIsFocusable);
}
