#include "store/statement.h"

#include "store/rowvalue.h"
#include "store/transaction.h"

#include <QSqlError>
#include <QSqlQuery>

WriteOutcome runWrite(const QString &statement, const QList<BoundValue> &values)
{
    QSqlQuery query;
    if (!query.prepare(statement)) {
        return { false, query.lastError().text() };
    }
    for (const BoundValue &bound : values) {
        query.bindValue(bound.name, bound.value);
    }
    if (!query.exec()) {
        return { false, query.lastError().text() };
    }
    return { true, {}, rowId(query.lastInsertId()), query.numRowsAffected() };
}

WriteOutcome executeWrite(const QString &statement, const QList<BoundValue> &values)
{
    Transaction transaction;
    if (!transaction.isOpen()) {
        return { false, transaction.errorText() };
    }
    WriteOutcome outcome = runWrite(statement, values);
    if (outcome.done && !transaction.commit()) {
        return { false, transaction.errorText() };
    }
    return outcome;
}

DeletionOutcome deleteUnlessUsed(const QString &countStatement, const QString &deleteStatement)
{
    Transaction transaction;
    if (!transaction.isOpen()) {
        return { DeletionResult::Failed, transaction.errorText() };
    }
    QSqlQuery count;
    if (!count.exec(countStatement) || !count.next()) {
        return { DeletionResult::Failed, count.lastError().text() };
    }
    if (count.value(0).toLongLong() != 0) {
        return { DeletionResult::StillUsed, {} };
    }
    count.finish();
    const WriteOutcome outcome = runWrite(deleteStatement);
    if (!outcome.done) {
        return { DeletionResult::Failed, outcome.errorText };
    }
    if (!transaction.commit()) {
        return { DeletionResult::Failed, transaction.errorText() };
    }
    return { DeletionResult::Deleted, {} };
}
