#include "store/statement.h"

#include "store/rowvalue.h"
#include "store/transaction.h"

#include <QCoreApplication>
#include <QSqlError>
#include <QSqlQuery>

using namespace Qt::StringLiterals;

namespace {

/// Half a surrogate pair, as a careless copy brings it, SQLite would read together with the letter behind it. A byte
/// order mark at the start it would take for an order and drop; a swapped one would swap the bytes of all letters.
QVariant storable(const QVariant &value)
{
    if (value.typeId() != QMetaType::QString) {
        return value;
    }
    QString text = value.toString();
    if (!text.isValidUtf16()) {
        text = QString::fromStdU32String(U'x' + text.toStdU32String()).sliced(1); // a mark at the start would go
    }
    if (text.startsWith(QChar(QChar::ByteOrderMark))) {
        text.prepend(QChar(QChar::ByteOrderMark)); // of two only the first one is dropped
    }
    if (text.startsWith(QChar(QChar::ByteOrderSwapped))) {
        text[0] = QChar::ReplacementCharacter;
    }
    return text;
}

} // namespace

QString reasonAgainst(const NeededRow &needed)
{
    QSqlQuery count;
    if (!count.exec(needed.countStatement) || !count.next()) {
        return count.lastError().text();
    }
    return count.value(0).toLongLong() == 0 ? needed.missingText : QString();
}

WriteOutcome runWrite(const QString &statement, const QList<BoundValue> &values, const QList<NeededRow> &needed)
{
    for (const NeededRow &row : needed) {
        const QString reason = reasonAgainst(row);
        if (!reason.isEmpty()) {
            return { false, reason };
        }
    }
    QSqlQuery query;
    if (!query.prepare(statement)) {
        return { false, query.lastError().text() };
    }
    for (const BoundValue &bound : values) {
        query.bindValue(bound.name, storable(bound.value));
    }
    if (!query.exec()) {
        return { false, query.lastError().text() };
    }
    const int newId = rowId(query.lastInsertId());
    if (newId < 1 && statement.startsWith(u"INSERT"_s)) { // a row with it could never be found again
        return { false,
            QCoreApplication::translate("Statement", "Die Datenbank vergibt keine lesbaren Nummern mehr.") };
    }
    return { true, {}, newId, query.numRowsAffected() };
}

WriteOutcome executeWrite(const QString &statement, const QList<BoundValue> &values, const QList<NeededRow> &needed)
{
    Transaction transaction;
    if (!transaction.isOpen()) {
        return { false, transaction.errorText() };
    }
    WriteOutcome outcome = runWrite(statement, values, needed);
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
