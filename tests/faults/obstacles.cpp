#include "tests/faults/obstacles.h"

#include <QDirIterator>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <grp.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

OtherProgram::OtherProgram(const QString &folder, int holds, const QString &statement)
    : m_run([folder, holds, statement] {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"other"_s);
        database.setDatabaseName(folder + u"/Data/bahnakte.dat"_s);
        QSqlQuery query(database.open() ? database : QSqlDatabase());
        ForkedRun::report(query.exec(statement) ? u"locked"_s : query.lastError().text());
        usleep(1000U * quint32(holds));
    })
{
    if (!m_run.waitForLine(10000)) {
        qFatal("the other program does not start");
    }
}

StatementWatch::StatementWatch()
    : m_connection(*static_cast<sqlite3 *const *>(QSqlDatabase::database().driver()->handle().constData()))
{
    sqlite3_trace_v2(m_connection, SQLITE_TRACE_PROFILE, &StatementWatch::note, this);
}

StatementWatch::~StatementWatch()
{
    sqlite3_trace_v2(m_connection, 0, nullptr, nullptr);
}

int StatementWatch::note(unsigned, void *watch, void *statement, void *nanoseconds)
{
    auto *self = static_cast<StatementWatch *>(watch);
    const qint64 time = *static_cast<qint64 *>(nanoseconds) / 1000000;
    if (time > self->m_longest) {
        self->m_longest = time;
        self->m_slowest = QString::fromUtf8(sqlite3_sql(static_cast<sqlite3_stmt *>(statement)));
    }
    return 0;
}

void giveUpRights(const QString &folder)
{
    constexpr uid_t Nobody = 65534;
    if (geteuid() != 0) {
        return;
    }
    QStringList paths { folder };
    QDirIterator entries(
        folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        paths.append(entries.next());
    }
    bool isGiven = true;
    for (const QString &path : std::as_const(paths)) {
        isGiven = isGiven && lchown(QFile::encodeName(path).constData(), Nobody, Nobody) == 0;
    }
    if (!isGiven || setgroups(0, nullptr) != 0 || setgid(Nobody) != 0 || setuid(Nobody) != 0) {
        qFatal("the rights could not be given up");
    }
}

void setWritable(const QString &path, bool isWritable)
{
    struct stat state
    { };
    const QByteArray name = QFile::encodeName(path);
    const bool isKnown = stat(name.constData(), &state) == 0;
    const mode_t mode = isWritable ? state.st_mode | S_IWUSR : state.st_mode & ~mode_t(S_IWUSR | S_IWGRP | S_IWOTH);
    if (!isKnown || chmod(name.constData(), mode) != 0) {
        qFatal("the rights of %s could not be changed", name.constData());
    }
}

void setFoldersWritable(const QString &folder, bool isWritable)
{
    setWritable(folder, isWritable);
    QDirIterator folders(folder, QDir::Dirs | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (folders.hasNext()) {
        setWritable(folders.next(), isWritable);
    }
}
