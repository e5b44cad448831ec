#include "tests/faults/failingcalls.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr std::size_t LongestLog = 65536;

struct State
{
    bool armed = false;
    int count = 0;
    long room = 0; // bytes
    FailingCalls::Fault fault;
    std::array<char, PATH_MAX> folder {};
    std::array<char, LongestLog> log {};
    std::size_t logged = 0;
};

State state;
void (*journalHook)() = nullptr;
FailingCalls::TouchHook touchHook = nullptr;

bool isBelow(const char *path)
{
    const std::size_t length = std::strlen(state.folder.data());
    if (path[0] == '/') {
        return std::strncmp(path, state.folder.data(), length) == 0;
    }
    return std::strncmp(path, "Data", 4) == 0 || std::strncmp(path, "./Data", 6) == 0;
}

bool endsWith(const char *text, const char *end)
{
    const std::size_t length = std::strlen(text);
    return length >= std::strlen(end) && std::strcmp(text + length - std::strlen(end), end) == 0;
}

void note(const char *name, const char *path)
{
    const char *slash = std::strrchr(path, '/');
    const int written = std::snprintf(state.log.data() + state.logged, LongestLog - state.logged, "%d %s %s\n",
        state.count, name, slash ? slash + 1 : path);
    state.logged = std::min(LongestLog - 1, state.logged + std::size_t(std::max(written, 0)));
}

/// What a call writes, by default nothing.
struct Writing
{
    int fd = -1;
    const void *bytes = nullptr;
    std::size_t size = 0;
    off64_t at = -1; // negative where the file itself knows the place
};

void writeHalf(const Writing &writing)
{
    if (writing.at < 0) {
        syscall(SYS_write, writing.fd, writing.bytes, writing.size / 2);
    } else {
        syscall(SYS_pwrite64, writing.fd, writing.bytes, writing.size / 2, writing.at);
    }
}

/// Counts a call on `path`; true when it has to fail, with errno set. Does not return when the process ends here.
bool fails(const char *name, const char *path, const Writing &writing = {})
{
    if (!state.armed || !isBelow(path)) {
        return false;
    }
    ++state.count;
    note(name, path);
    const FailingCalls::Fault &fault = state.fault;
    const bool isDue = fault.forever ? state.count >= fault.at : state.count == fault.at;
    if (!isDue || fault.mode == FailingCalls::CountOnly || fault.mode == FailingCalls::FillDisk) {
        return false;
    }
    if (fault.mode == FailingCalls::KillHalfway && writing.bytes && writing.size > 1) {
        writeHalf(writing);
    }
    if (fault.mode != FailingCalls::Fail) {
        syscall(SYS_kill, syscall(SYS_getpid), SIGKILL);
    }
    errno = fault.error;
    return true;
}

std::array<char, PATH_MAX> pathOf(int fd)
{
    std::array<char, 32> link {};
    std::snprintf(link.data(), link.size(), "/proc/self/fd/%d", fd);
    std::array<char, PATH_MAX> path {};
    if (syscall(SYS_readlinkat, AT_FDCWD, link.data(), path.data(), path.size() - 1) < 0) {
        path[0] = '/';
    }
    return path;
}

bool failsOn(const char *name, int fd, const Writing &writing = {})
{
    return state.armed && fails(name, pathOf(fd).data(), writing);
}

/// How many of `size` bytes still fit; 0 with errno set when the disk is full.
std::size_t fitting(int fd, std::size_t size)
{
    if (!state.armed || state.fault.mode != FailingCalls::FillDisk || !isBelow(pathOf(fd).data())) {
        return size;
    }
    const std::size_t fits = std::min(size, std::size_t(std::max(state.room, 0L)));
    state.room -= long(fits);
    if (fits == 0) {
        errno = ENOSPC;
    }
    return fits;
}

/// For calls that change a folder or open a file for more than reading.
bool touches(const char *name, const char *path)
{
    if (touchHook) {
        touchHook(name, path);
    }
    return fails(name, path);
}

int openFile(const char *path, int flags, mode_t mode)
{
    const bool writes = (flags & O_ACCMODE) != O_RDONLY || (flags & (O_CREAT | O_TRUNC));
    if (writes && touches("open", path)) {
        return -1;
    }
    return int(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

mode_t modeOf(int flags, va_list list)
{
    return (flags & (O_CREAT | O_TMPFILE)) ? va_arg(list, mode_t) : 0;
}

} // namespace

void FailingCalls::arm(const QByteArray &folder, const Fault &fault)
{
    state = State();
    std::strncpy(state.folder.data(), folder.constData(), state.folder.size() - 1);
    state.fault = fault;
    state.room = fault.mode == FillDisk ? fault.at : 0;
    state.armed = true;
}

int FailingCalls::disarm()
{
    state.armed = false;
    return state.count;
}

void FailingCalls::setJournalHook(void (*hook)())
{
    journalHook = hook;
}

void FailingCalls::setTouchHook(TouchHook hook)
{
    touchHook = hook;
}

QByteArray FailingCalls::log()
{
    return { state.log.data(), qsizetype(state.logged) };
}

// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): names and types are those of the C library
extern "C" {

ssize_t write(int fd, const void *bytes, size_t size)
{
    if (failsOn("write", fd, { fd, bytes, size })) {
        return -1;
    }
    const std::size_t fits = fitting(fd, size);
    return fits == 0 && size > 0 ? -1 : ssize_t(syscall(SYS_write, fd, bytes, fits));
}

ssize_t pwrite64(int fd, const void *bytes, size_t size, off64_t at)
{
    if (failsOn("pwrite", fd, { fd, bytes, size, at })) {
        return -1;
    }
    const std::size_t fits = fitting(fd, size);
    return fits == 0 && size > 0 ? -1 : ssize_t(syscall(SYS_pwrite64, fd, bytes, fits, at));
}

ssize_t pwrite(int fd, const void *bytes, size_t size, off_t at)
{
    return pwrite64(fd, bytes, size, at);
}

int fsync(int fd)
{
    return failsOn("fsync", fd) ? -1 : int(syscall(SYS_fsync, fd));
}

int fdatasync(int fd)
{
    return failsOn("fdatasync", fd) ? -1 : int(syscall(SYS_fdatasync, fd));
}

int ftruncate64(int fd, off64_t size) noexcept
{
    return failsOn("ftruncate", fd) ? -1 : int(syscall(SYS_ftruncate, fd, size));
}

int ftruncate(int fd, off_t size) noexcept
{
    return ftruncate64(fd, size);
}

int rename(const char *from, const char *to) noexcept
{
    return touches("rename", to) ? -1 : int(syscall(SYS_renameat, AT_FDCWD, from, AT_FDCWD, to));
}

int renameat2(int fromFolder, const char *from, int toFolder, const char *to, unsigned flags) noexcept
{
    return touches("rename", to) ? -1 : int(syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
}

int link(const char *from, const char *to) noexcept
{
    return touches("link", to) ? -1 : int(syscall(SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, 0));
}

int linkat(int fromFolder, const char *from, int toFolder, const char *to, int flags) noexcept
{
    return touches("link", to) ? -1 : int(syscall(SYS_linkat, fromFolder, from, toFolder, to, flags));
}

int symlink(const char *target, const char *path) noexcept
{
    return touches("symlink", path) ? -1 : int(syscall(SYS_symlinkat, target, AT_FDCWD, path));
}

int mkdir(const char *path, mode_t mode) noexcept
{
    return touches("mkdir", path) ? -1 : int(syscall(SYS_mkdirat, AT_FDCWD, path, mode));
}

int rmdir(const char *path) noexcept
{
    return touches("rmdir", path) ? -1 : int(syscall(SYS_unlinkat, AT_FDCWD, path, AT_REMOVEDIR));
}

int unlink(const char *path) noexcept
{
    if (touches("unlink", path)) {
        return -1;
    }
    const auto result = int(syscall(SYS_unlinkat, AT_FDCWD, path, 0));
    if (journalHook && result == 0 && endsWith(path, "-journal")) {
        journalHook();
    }
    return result;
}

int open(const char *path, int flags, ...)
{
    va_list list;
    va_start(list, flags);
    const mode_t mode = modeOf(flags, list);
    va_end(list);
    return openFile(path, flags, mode);
}

int open64(const char *path, int flags, ...)
{
    va_list list;
    va_start(list, flags);
    const mode_t mode = modeOf(flags, list);
    va_end(list);
    return openFile(path, flags, mode);
}

} // extern "C"
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
