#include "tests/faults/sleepwatch.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include <fcntl.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

constexpr qint64 Second = 1'000'000'000; // ns

qint64 clockAtStart = 0;
qint64 busyAtStart = 0;

qint64 clockTime()
{
    timespec now {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * Second + now.tv_nsec;
}

/// For how long the main thread has computed or waited for a processor; 0 when the system does not tell.
qint64 busyTime()
{
    std::array<char, 100> text {};
    const int file = open("/proc/self/schedstat", O_RDONLY | O_CLOEXEC);
    const ssize_t size = file < 0 ? -1 : read(file, text.data(), text.size() - 1);
    close(file);
    if (size <= 0) {
        return 0;
    }
    char *end = nullptr;
    const qint64 computed = std::strtoll(text.data(), &end, 10);
    return computed + std::strtoll(end, nullptr, 10);
}

void giveUp(const char *reason)
{
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, reason, std::strlen(reason));
    _exit(3);
}

/// Runs inside of whatever call the process hangs in, so it does only what a signal handler may.
void look(int)
{
    const int error = errno;
    const qint64 passed = clockTime() - clockAtStart;
    const qint64 asleep = busyAtStart == 0 ? 0 : passed - (busyTime() - busyAtStart);
    if (asleep > SleepWatch::LongestSleep * Second) {
        giveUp("asleep for five seconds\n");
    }
    if (passed > SleepWatch::LongestTime * Second) {
        giveUp("busy for a minute\n");
    }
    errno = error;
}

void lookEvery(int milliseconds)
{
    const timeval interval { milliseconds / 1000, milliseconds % 1000 * 1000L };
    const itimerval timer { interval, interval };
    setitimer(ITIMER_REAL, &timer, nullptr);
}

} // namespace

SleepWatch::SleepWatch()
{
    clockAtStart = clockTime();
    busyAtStart = busyTime();
    struct sigaction action
    { };
    action.sa_handler = look;
    action.sa_flags = SA_RESTART;
    sigaction(SIGALRM, &action, nullptr);
    lookEvery(500);
}

SleepWatch::~SleepWatch()
{
    lookEvery(0);
}
