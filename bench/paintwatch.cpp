#include "bench/paintwatch.h"

#include "bench/firstpaint.h"

#include <QCoreApplication>
#include <QEvent>
#include <QGraphicsView>

namespace {

constexpr double Patience = 20000; // ms

} // namespace

PaintWatch::PaintWatch(QGraphicsView *view)
    : QObject(view)
{
    view->viewport()->installEventFilter(this);
}

void PaintWatch::waitForPaint()
{
    const int before = m_paints;
    const double start = nowMs();
    while (m_paints == before) {
        QCoreApplication::processEvents(); // the paint itself is done when this returns
        if (nowMs() - start > Patience) {
            qFatal("The view was never painted.");
        }
    }
    QCoreApplication::processEvents(); // what the first paint has brought about
}

bool PaintWatch::eventFilter(QObject *watched, QEvent *event)
{
    Q_UNUSED(watched)
    if (event->type() == QEvent::Paint) {
        ++m_paints;
        m_lastPaint = nowMs();
    }
    return false;
}
