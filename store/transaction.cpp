#include "store/transaction.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

using namespace Qt::StringLiterals;

Transaction::Transaction(Kind kind)
{
    // The mode is lost when another program had the file while it was opened, and it cannot be set inside a
    // transaction.
    m_open = run(u"PRAGMA synchronous=EXTRA"_s)
        && run(kind == Kind::Exclusive ? u"BEGIN EXCLUSIVE"_s : u"BEGIN IMMEDIATE"_s);
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

bool Transaction::run(const QString &statement)
{
    QSqlQuery query;
    if (query.exec(statement)) {
        return true;
    }
    m_errorText = query.lastError().text();
    return false;
}
