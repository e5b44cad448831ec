#pragma once

#include <QGraphicsView>

#include <memory>

class DecodeAhead;
class PictureScene;

/// The window onto a canvas. Adds the keyboard to it: Tab and the arrow keys walk through its buttons and photographs,
/// Return and Space act on them, Page Up, Page Down, Home and End scroll.
class CanvasView final : public QGraphicsView
{
    Q_OBJECT

public:
    explicit CanvasView(QWidget *parent = nullptr);
    ~CanvasView() override;

    [[nodiscard]] PictureScene *canvas() const;

    /// Shows another canvas; the keyboard goes on there where it was when that canvas was last shown.
    void showCanvas(PictureScene *canvas);

Q_SIGNALS:
    void itemsChanged(); // the canvas shows other items, or is another one

protected:
    void focusInEvent(QFocusEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool focusNextPrevChild(bool next) override;

private:
    bool moveFocus(int step);
    bool moveFocusToRow(int direction);
    bool scrollBy(int key);
    void focusOn(QGraphicsItem *item);

    std::unique_ptr<DecodeAhead> m_decodeAhead;
};
