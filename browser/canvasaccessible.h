#pragma once

#include <QAccessibleWidget>
#include <QHash>
#include <QList>

class CanvasView;
class QGraphicsItem;

/// What a screen reader finds in the canvas: its entries and texts, in the entries their photographs and buttons, by
/// name and in reading order. It knows only the items that stand there now; other items are other objects to it.
class CanvasAccessible final : public QAccessibleWidget
{
public:
    explicit CanvasAccessible(CanvasView *view);
    ~CanvasAccessible() override;
    Q_DISABLE_COPY_MOVE(CanvasAccessible)

    /// From now on every CanvasView is described by an object of this class.
    static void install();

    /// Lets a screen reader know that the keyboard stands on `item`.
    static void tellFocus(CanvasView *view, QGraphicsItem *item);

    [[nodiscard]] CanvasView *view() const { return m_view; }
    [[nodiscard]] int childCount() const override;
    [[nodiscard]] QAccessibleInterface *child(int index) const override;
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *child) const override;
    [[nodiscard]] QAccessibleInterface *childAt(int x, int y) const override;
    [[nodiscard]] QAccessibleInterface *focusChild() const override;

    /// The items below `parent`, those of the canvas itself where it is null.
    [[nodiscard]] QList<QAccessible::Id> childrenOf(const QGraphicsItem *parent) const;
    /// Null for an item that has nothing to tell.
    [[nodiscard]] QAccessibleInterface *interfaceOf(const QGraphicsItem *item) const;

private:
    void forgetItems();

    CanvasView *m_view; // outlives this object
    QMetaObject::Connection m_connection;
    mutable QHash<const QGraphicsItem *, QList<QAccessible::Id>> m_children; // made when they are asked for
};
