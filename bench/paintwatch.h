#pragma once

#include <QObject>

class QGraphicsView;

/// Waits until a view has really been painted.
class PaintWatch final : public QObject
{
public:
    explicit PaintWatch(QGraphicsView *view);

    /// Lets events run until the view was painted once more. Ends the process when it never is: there would be nothing
    /// to measure.
    void waitForPaint();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    int m_paints = 0;
};
