#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QStringList>

#include <functional>

#include <sys/types.h>

/// Runs a function in a forked copy of this process, which may be killed or crash without harm to the test. Only for
/// tests whose own process shows no window and has no open database: a fork copies neither threads nor file locks.
class ForkedRun final
{
public:
    struct End
    {
        QStringList lines; // what report() was given
        QByteArray errors; // the standard error output
        int signal = 0; // that ended it; 0 when it came to its end by itself
        bool timedOut = false; // and was killed for that
        [[nodiscard]] bool isGood() const { return signal == 0 && !timedOut; }
        [[nodiscard]] QString description() const;
    };

    explicit ForkedRun(const std::function<void()> &work);
    ~ForkedRun();
    Q_DISABLE_COPY_MOVE(ForkedRun)

    /// Called inside: hands a line to the test at once.
    static void report(const QString &line);

    /// Called inside: from now on what goes to the standard output is handed over.
    static void reportStandardOutput();

    /// False when the process ended before it reported anything more.
    bool waitForLine(int timeout);

    /// The same until it has reported `count` lines in all.
    bool waitForLines(qsizetype count, int timeout);
    void kill();
    [[nodiscard]] End finish(int timeout);

private:
    bool readMore(int timeout);

    pid_t m_process;
    int m_pipe = -1;
    int m_errors = -1;
    QByteArray m_output;
};

/// Runs `work` to its end in a process of its own.
[[nodiscard]] inline ForkedRun::End runForked(const std::function<void()> &work, int timeout = 60000)
{
    return ForkedRun(work).finish(timeout);
}
