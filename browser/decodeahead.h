#pragma once

#include <QObject>
#include <QTimer>

class CanvasView;

/// Decodes the photographs that will probably be looked at next while the program has nothing else to do, one at a
/// time: a page below what is in sight, the pairs that the arrows would bring, a page above. Nothing before the canvas
/// was painted for the first time, and nothing for a canvas that nobody sees.
class DecodeAhead final : public QObject
{
    Q_OBJECT

public:
    /// `view` outlives this object.
    explicit DecodeAhead(const CanvasView &view);

    /// To be called whenever the view was painted.
    void begin();

    void stop();

private:
    void step();
    [[nodiscard]] bool decodeOne() const;

    const CanvasView &m_view;
    QTimer m_timer;
};
