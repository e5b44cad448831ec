#include "browser/canvasaccessible.h"

#include "browser/canvasitemaccessible.h"
#include "browser/canvasview.h"
#include "browser/picturescene.h"

#include <QAccessible>
#include <QGraphicsItem>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

QAccessibleInterface *describe(const QString &className, QObject *object)
{
    auto *view = className == u"CanvasView"_s ? qobject_cast<CanvasView *>(object) : nullptr;
    return view ? new CanvasAccessible(view) : nullptr;
}

/// In reading order: that is the order in which the items are put on the canvas and into their blocks.
QList<QGraphicsItem *> itemsBelow(const CanvasView &view, const QGraphicsItem *parent)
{
    if (parent) {
        return parent->childItems();
    }
    QList<QGraphicsItem *> topLevel;
    const QList<QGraphicsItem *> all = view.canvas() ? view.canvas()->items(Qt::AscendingOrder) : topLevel;
    for (QGraphicsItem *item : all) {
        if (!item->parentItem()) {
            topLevel.append(item);
        }
    }
    return topLevel;
}

} // namespace

CanvasAccessible::CanvasAccessible(CanvasView *view)
    : QAccessibleWidget(view, QAccessible::Pane)
    , m_view(view)
    , m_connection(QObject::connect(view, &CanvasView::itemsChanged, view, [this] { forgetItems(); }))
{ }

CanvasAccessible::~CanvasAccessible()
{
    QObject::disconnect(m_connection);
    forgetItems();
}

void CanvasAccessible::install()
{
    static bool isInstalled = false;
    if (!isInstalled) {
        QAccessible::installFactory(describe);
        isInstalled = true;
    }
}

void CanvasAccessible::tellFocus(CanvasView *view, QGraphicsItem *item)
{
    const auto *canvas = static_cast<CanvasAccessible *>(QAccessible::queryAccessibleInterface(view));
    if (QAccessibleInterface *focused = canvas ? canvas->interfaceOf(item) : nullptr) {
        QAccessibleEvent event(focused, QAccessible::Focus);
        QAccessible::updateAccessibility(&event);
    }
}

int CanvasAccessible::childCount() const
{
    return int(childrenOf(nullptr).size());
}

QAccessibleInterface *CanvasAccessible::child(int index) const
{
    return QAccessible::accessibleInterface(childrenOf(nullptr).value(index));
}

int CanvasAccessible::indexOfChild(const QAccessibleInterface *child) const
{
    return int(childrenOf(nullptr).indexOf(QAccessible::uniqueId(const_cast<QAccessibleInterface *>(child))));
}

QAccessibleInterface *CanvasAccessible::childAt(int x, int y) const
{
    const QList<QAccessible::Id> children = childrenOf(nullptr);
    for (const QAccessible::Id id : children) {
        QAccessibleInterface *child = QAccessible::accessibleInterface(id);
        if (child->rect().contains(x, y)) {
            return child;
        }
    }
    return nullptr;
}

QAccessibleInterface *CanvasAccessible::focusChild() const
{
    const QGraphicsItem *focused = m_view->hasFocus() && m_view->canvas() ? m_view->canvas()->focusItem() : nullptr;
    return focused ? interfaceOf(focused) : nullptr;
}

QList<QAccessible::Id> CanvasAccessible::childrenOf(const QGraphicsItem *parent) const
{
    const auto known = m_children.constFind(parent);
    if (known != m_children.constEnd()) {
        return *known;
    }
    QList<QAccessible::Id> children;
    const QList<QGraphicsItem *> items = itemsBelow(*m_view, parent);
    for (QGraphicsItem *item : items) {
        if (CanvasItemAccessible::describes(item)) {
            // The registry owns it from now on.
            children.append(QAccessible::registerAccessibleInterface(new CanvasItemAccessible(item, this)));
        }
    }
    m_children.insert(parent, children);
    return children;
}

QAccessibleInterface *CanvasAccessible::interfaceOf(const QGraphicsItem *item) const
{
    const QList<QAccessible::Id> siblings = childrenOf(item->parentItem());
    for (const QAccessible::Id id : siblings) {
        auto *sibling = static_cast<CanvasItemAccessible *>(QAccessible::accessibleInterface(id));
        if (sibling->item() == item) {
            return sibling;
        }
    }
    return nullptr;
}

/// By number, because at the very end of the program the registry may have deleted them before.
void CanvasAccessible::forgetItems()
{
    const QHash<const QGraphicsItem *, QList<QAccessible::Id>> forgotten = std::exchange(m_children, {});
    for (const QList<QAccessible::Id> &children : forgotten) {
        for (const QAccessible::Id id : children) {
            QAccessible::deleteAccessibleInterface(id);
        }
    }
}
