#pragma once

#include <QByteArray>

/// Lets the N-th system call on the files below a folder fail, or ends the process there. The calls of Qt and of SQLite
/// are meant alike: this file's functions stand in for those of the C library in every program that is linked with it.
namespace FailingCalls {

enum Mode {
    CountOnly,
    Kill, // ends the process in place of the call
    KillHalfway, // the same, but a write gets half of its bytes to the file first
    Fail, // the call returns the error
    FillDisk, // `at` is the number of bytes that still fit; writes beyond fail with ENOSPC
};

struct Fault
{
    Mode mode = CountOnly;
    int at = 0; // number of the call, counted from 1
    int error = 0; // an errno value
    bool forever = false; // all later calls fail too
};

/// From now on calls on files below `folder`, an absolute path, are counted.
void arm(const QByteArray &folder, const Fault &fault);

/// Lets all calls through again; returns how many were counted.
int disarm();

/// Called after each removal of a rollback journal: that is the moment of a commit. Independent of arm().
void setJournalHook(void (*hook)());

/// `path` as it was given to the call `name`: "open" (for writing), "rename", "link", "symlink", "mkdir", "rmdir" or
/// "unlink"; of two paths the new one.
using TouchHook = void (*)(const char *name, const char *path);

/// Called before each such call of the process, wherever its path points. Independent of arm().
void setTouchHook(TouchHook hook);

/// The calls counted since the last arm(), in order, as "name file".
[[nodiscard]] QByteArray log();

} // namespace FailingCalls
