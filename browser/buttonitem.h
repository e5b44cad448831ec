#pragma once

#include <QGraphicsPixmapItem>
#include <QSize>
#include <QString>

/// The kinds of buttons on the canvas; 0 is a photograph, which is no button.
enum class ButtonKind { Photo = 0, Edit = 1, Delete, Left, Right, Count, Back, More };

/// The image file of a kind, relative to the working folder. Any unknown kind has the edit image.
[[nodiscard]] QString buttonImage(ButtonKind kind);

/// The box in pixels that the kind's image is fitted into.
[[nodiscard]] QSize buttonBox(ButtonKind kind);

/// What the button does, for tool tips and screen readers.
[[nodiscard]] QString buttonName(ButtonKind kind);

/// A picture button on the canvas. It only says what it is and to which entry it belongs; the canvas acts.
class ButtonItem final : public QGraphicsPixmapItem
{
public:
    enum { Type = UserType + 2 };

    /// `key` names the pair of pictures that an arrow button stands at; empty for all others.
    ButtonItem(ButtonKind kind, int entryId, const QString &key = {}, QGraphicsItem *parent = nullptr);

    [[nodiscard]] int type() const override { return Type; }
    [[nodiscard]] ButtonKind kind() const { return m_kind; }
    [[nodiscard]] int entryId() const { return m_entryId; }
    [[nodiscard]] QString key() const { return m_key; }

    [[nodiscard]] QRectF boundingRect() const override;

    /// The kind's box: neither the margin for the focus mark nor what a dense screen makes of the image is the button.
    [[nodiscard]] QPainterPath shape() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

private:
    ButtonKind m_kind;
    int m_entryId;
    QString m_key;
};
