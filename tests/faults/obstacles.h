#pragma once

#include "tests/faults/forkedrun.h"

#include <QString>

struct sqlite3;

/// Another program that has the catalogue for itself, or has read a part of it, until it is told to give it back or has
/// had it long enough.
class OtherProgram final
{
public:
    /// `holds` is in ms. `statement` takes the lock: a reader's as well as a writer's.
    OtherProgram(const QString &folder, int holds, const QString &statement = QStringLiteral("BEGIN EXCLUSIVE"));

private:
    ForkedRun m_run;
};

/// Measures the statements of this process' own connection while it lives.
class StatementWatch final
{
public:
    StatementWatch();
    ~StatementWatch();
    Q_DISABLE_COPY_MOVE(StatementWatch)

    [[nodiscard]] qint64 longest() const { return m_longest; } // ms
    [[nodiscard]] QString slowest() const { return m_slowest; } // its text

private:
    static int note(unsigned event, void *watch, void *statement, void *nanoseconds);

    sqlite3 *m_connection;
    qint64 m_longest = 0;
    QString m_slowest;
};

/// Gives all files below `folder` to a user without rights, and makes this process his, for root may write everywhere.
/// Nothing happens when the process is not root's.
void giveUpRights(const QString &folder);

/// Takes the right to write from the file, or gives it back.
void setWritable(const QString &path, bool isWritable);

/// The same for `folder` and all folders below it.
void setFoldersWritable(const QString &folder, bool isWritable);
