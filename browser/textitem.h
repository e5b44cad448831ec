#pragma once

#include <QColor>
#include <QGraphicsItem>
#include <QTextLayout>

/// A plain text on the canvas that the user can read but not edit or select. Never interprets markup.
/// Laid out without a text document, which a page of hundreds of texts would wait and pay memory for.
class TextItem final : public QGraphicsItem
{
public:
    enum { Type = UserType + 1 };

    /// A `width` above 0, in pixels, wraps the text there, inside a word where no word end fits.
    TextItem(
        const QString &text, const QFont &font, const QColor &color, double width = 0, QGraphicsItem *parent = nullptr);

    [[nodiscard]] int type() const override { return Type; }
    [[nodiscard]] QString toPlainText() const { return m_text; }
    void setPlainText(const QString &text);
    [[nodiscard]] QFont font() const { return m_layout.font(); }
    [[nodiscard]] QColor defaultTextColor() const { return m_color; }

    /// As wide as the width given for wrapping: blanks at a line's end would reach beyond it, though nobody sees them.
    [[nodiscard]] QRectF boundingRect() const override { return m_bounds; }
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

    /// Takes smaller letters until the wrapped text is at most `height` pixels high; below a readable size it is cut.
    void fitInto(double height);

    /// Height of the laid out text in pixels.
    [[nodiscard]] double height() const { return m_bounds.height(); }

private:
    void layOut();
    double layOutLines();

    QString m_text;
    QTextLayout m_layout;
    QColor m_color;
    double m_width;
    QRectF m_bounds { 0, 0, 0, 0 };
    bool m_isTooWide = false; // even the smallest letters are wider than the column
};
