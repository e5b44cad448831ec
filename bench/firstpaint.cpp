#include "bench/firstpaint.h"

#include <QEvent>
#include <QFile>
#include <QGraphicsView>
#include <QTextStream>

#include <ctime>

using namespace Qt::StringLiterals;

namespace {

class FirstPaint final : public QObject
{
public:
    FirstPaint(QApplication &application, double startedAt)
        : QObject(&application)
        , m_startedAt(startedAt)
    {
        application.installEventFilter(this);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && qobject_cast<QGraphicsView *>(watched->parent())) {
            qApp->removeEventFilter(this);
            // The event is only about to be delivered; what is queued now comes when the whole window is painted.
            QMetaObject::invokeMethod(
                this, [this] { report(); }, Qt::QueuedConnection);
        }
        return false;
    }

private:
    void report() const
    {
        const double elapsed = nowMs() - m_startedAt;
        QTextStream(stdout) << u"{\"ms\": %1, \"rss\": %2}\n"_s.arg(elapsed).arg(residentKb());
        QCoreApplication::quit();
    }

    double m_startedAt;
};

} // namespace

void reportFirstPaint(QApplication &application, double startedAt)
{
    silenceMessages();
    new FirstPaint(application, startedAt); // a child of the application
}

void silenceMessages()
{
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &message) {
        if (type == QtCriticalMsg || type == QtFatalMsg) {
            QTextStream(stderr) << message << '\n';
        }
    });
}

double nowMs()
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

int residentKb()
{
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly)) {
        return 0;
    }
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("VmRSS:")) {
            return line.mid(6).simplified().split(' ').first().toInt();
        }
    }
    return 0;
}
