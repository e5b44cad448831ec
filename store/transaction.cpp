#include "store/transaction.h"

#include "search/folderlister.h"
#include "store/database.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

using namespace Qt::StringLiterals;

QString synchronousStatement()
{
    static const bool canSync = canSyncFolder(QFileInfo(databasePath()).path()); // that does not change during a run
    return canSync ? u"PRAGMA synchronous=EXTRA"_s : u"PRAGMA synchronous=FULL"_s;
}

Transaction::Transaction(Kind kind)
{
    // The mode is lost when another program had the file while it was opened, and it cannot be set inside a
    // transaction.
    m_open = run(synchronousStatement());
    if (kind == Kind::Exclusive) {
        m_open = m_open && leaveWriteAheadLog() && run(u"BEGIN EXCLUSIVE"_s);
    } else {
        m_open = m_open && run(u"BEGIN IMMEDIATE"_s);
    }
}

Transaction::~Transaction()
{
    if (m_open) {
        run(u"ROLLBACK"_s);
    }
}

bool Transaction::provesWritable()
{
    QSqlQuery query;
    if (!query.exec(u"PRAGMA user_version"_s) || !query.next()) {
        m_errorText = query.lastError().text();
        return false;
    }
    const int version = query.value(0).toInt();
    query.finish();
    return run(u"PRAGMA user_version = %1"_s.arg(version));
}

bool Transaction::commit()
{
    if (!m_open) {
        return false;
    }
    m_open = false;
    if (run(u"COMMIT"_s)) {
        return true;
    }
    const QString reason = m_errorText;
    run(u"ROLLBACK"_s);
    m_errorText = reason;
    return false;
}

/// Another tool may have put the file into that mode, in which others read on, and the room on the disk is asked for
/// only by the commit.
bool Transaction::leaveWriteAheadLog()
{
    QSqlQuery query;
    if (!query.exec(u"PRAGMA journal_mode=DELETE"_s) || !query.next()) {
        m_errorText = query.lastError().text();
        return false;
    }
    if (query.value(0).toString() == u"wal"_s) {
        m_errorText = QCoreApplication::translate("Transaction", "Ein anderes Programm hat den Katalog geöffnet.");
        return false;
    }
    return true;
}

bool Transaction::run(const QString &statement)
{
    QSqlQuery query;
    if (query.exec(statement)) {
        return true;
    }
    m_errorText = query.lastError().text();
    return false;
}
