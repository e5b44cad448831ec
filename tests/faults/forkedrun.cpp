#include "tests/faults/forkedrun.h"

#include <QLoggingCategory>

#include <array>
#include <csignal>

#include <poll.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

int reportPipe = -1;

} // namespace

QString ForkedRun::End::description() const
{
    return u"Signal %1%2\n%3\n%4"_s.arg(QString::number(signal), timedOut ? u", zu lange"_s : QString(),
        lines.join(u'\n'), QString::fromUtf8(errors.last(std::min<qsizetype>(errors.size(), 4000))));
}

ForkedRun::ForkedRun(const std::function<void()> &work)
{
    std::array<int, 2> ends {};
    if (pipe(ends.data()) != 0) {
        qFatal("no pipe");
    }
    m_errors = memfd_create("errors", 0);
    m_process = fork();
    if (m_process != 0) {
        close(ends[1]);
        m_pipe = ends[0];
        return;
    }
    close(ends[0]);
    reportPipe = ends[1];
    dup2(m_errors, STDERR_FILENO);
    for (const int crash : { SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL }) {
        signal(crash, SIG_DFL); // that of the test would call a debugger
    }
    qInstallMessageHandler(nullptr); // that of the test would write into the test's own report
    QLoggingCategory::setFilterRules(u"*.debug=false"_s);
    work();
    _exit(0);
}

ForkedRun::~ForkedRun()
{
    if (m_process > 0) {
        ::kill(m_process, SIGKILL);
        waitpid(m_process, nullptr, 0);
    }
    close(m_pipe);
    close(m_errors);
}

void ForkedRun::report(const QString &line)
{
    const QByteArray bytes = line.toUtf8() + '\n';
    if (::write(reportPipe, bytes.constData(), std::size_t(bytes.size())) != bytes.size()) {
        _exit(1);
    }
}

void ForkedRun::reportStandardOutput()
{
    dup2(reportPipe, STDOUT_FILENO);
}

bool ForkedRun::waitForLine(int timeout)
{
    const qsizetype before = m_output.size();
    while (m_output.indexOf('\n', before) < 0) {
        if (!readMore(timeout)) {
            return false;
        }
    }
    return true;
}

bool ForkedRun::waitForLines(qsizetype count, int timeout)
{
    while (m_output.count('\n') < count) {
        if (!readMore(timeout)) {
            return false;
        }
    }
    return true;
}

void ForkedRun::kill()
{
    ::kill(m_process, SIGKILL);
}

ForkedRun::End ForkedRun::finish(int timeout)
{
    End end;
    QElapsedTimer timer;
    timer.start();
    while (readMore(timeout - int(timer.elapsed()))) { }
    if (timer.elapsed() >= timeout) {
        end.timedOut = true;
        kill();
        while (readMore(1000)) { }
    }
    int status = 0;
    waitpid(m_process, &status, 0);
    m_process = -1;
    if (WIFSIGNALED(status)) {
        end.signal = WTERMSIG(status);
    } else if (WEXITSTATUS(status) != 0) {
        end.signal = -WEXITSTATUS(status);
    }
    end.lines = QString::fromUtf8(m_output).split(u'\n', Qt::SkipEmptyParts);
    end.errors.resize(1 << 20);
    end.errors.resize(std::max<ssize_t>(0, pread(m_errors, end.errors.data(), std::size_t(end.errors.size()), 0)));
    return end;
}

/// False at the end of the output or of the time.
bool ForkedRun::readMore(int timeout)
{
    pollfd watched { m_pipe, POLLIN, 0 };
    if (timeout <= 0 || poll(&watched, 1, timeout) <= 0) {
        return false;
    }
    std::array<char, 4096> bytes {};
    const ssize_t size = read(m_pipe, bytes.data(), bytes.size());
    if (size <= 0) {
        return false;
    }
    m_output.append(bytes.data(), size);
    return true;
}
