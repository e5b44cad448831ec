#pragma once

#include <QAccessible>
#include <QAccessibleInterface>

class CanvasAccessible;
class QGraphicsItem;

/// One item of the canvas for a screen reader: an entry, a photograph, a button or a text. Buttons and photographs can
/// be pressed through it.
class CanvasItemAccessible final : public QAccessibleInterface, public QAccessibleActionInterface
{
public:
    /// Both outlive this object.
    CanvasItemAccessible(QGraphicsItem *item, const CanvasAccessible *canvas);

    /// Whether there is anything to say about the item; frames and plates are only to be looked at.
    [[nodiscard]] static bool describes(const QGraphicsItem *item);

    [[nodiscard]] const QGraphicsItem *item() const { return m_item; }

    [[nodiscard]] bool isValid() const override { return true; }
    [[nodiscard]] QObject *object() const override { return nullptr; }
    [[nodiscard]] QWindow *window() const override;
    [[nodiscard]] QAccessibleInterface *parent() const override;
    [[nodiscard]] int childCount() const override;
    [[nodiscard]] QAccessibleInterface *child(int index) const override;
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *child) const override;
    [[nodiscard]] QAccessibleInterface *childAt(int x, int y) const override;
    [[nodiscard]] QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text kind, const QString &text) override;
    [[nodiscard]] QRect rect() const override;
    [[nodiscard]] QAccessible::Role role() const override;
    [[nodiscard]] QAccessible::State state() const override;
    [[nodiscard]] void *interface_cast(QAccessible::InterfaceType type) override;

    [[nodiscard]] QStringList actionNames() const override;
    void doAction(const QString &actionName) override;
    [[nodiscard]] QStringList keyBindingsForAction(const QString &actionName) const override;

private:
    [[nodiscard]] QString name() const;
    [[nodiscard]] QString description() const;
    [[nodiscard]] bool isPressable() const;

    QGraphicsItem *m_item;
    const CanvasAccessible *m_canvas;
};
