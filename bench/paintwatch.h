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

    /// When the last paint began, on the clock of nowMs().
    [[nodiscard]] double lastPaint() const { return m_lastPaint; }

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    int m_paints = 0;
    double m_lastPaint = 0;
};
