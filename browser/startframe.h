#pragma once

#include <QGraphicsItem>

/// The wooden picture frame of the start view, with a mount between wood and photograph.
class StartFrame final : public QGraphicsItem
{
public:
    static constexpr double Width = 30; // wood and mount, in scene pixels on each side

    /// `photo` is the size of what the frame goes around.
    explicit StartFrame(const QSizeF &photo)
        : m_size(photo + QSizeF(2 * Width, 2 * Width))
    { }

    [[nodiscard]] QSizeF size() const { return m_size; }

    /// The frame with its shadow.
    [[nodiscard]] QRectF boundingRect() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

private:
    QSizeF m_size;
};
