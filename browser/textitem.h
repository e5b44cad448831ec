#pragma once

#include <QGraphicsTextItem>

/// A plain text on the canvas that the user can read but not edit or select. Never interprets markup.
class TextItem final : public QGraphicsTextItem
{
    Q_OBJECT

public:
    enum { Type = UserType + 1 };

    /// A `width` above 0, in pixels, wraps the text there, inside a word where no word end fits.
    TextItem(
        const QString &text, const QFont &font, const QColor &color, double width = 0, QGraphicsItem *parent = nullptr);

    [[nodiscard]] int type() const override { return Type; }

    /// Ends at the width given for wrapping: blanks at a line's end would reach beyond it, though nobody sees them.
    [[nodiscard]] QRectF boundingRect() const override;

    /// Takes smaller letters until the wrapped text is at most `height` pixels high; below a readable size it is cut.
    void fitInto(double height);

    /// Height of the laid out text in pixels.
    [[nodiscard]] double height() const { return boundingRect().height(); }

private:
    double m_width;
};
