#pragma once

#include "store/neededrow.h"

#include <QList>
#include <QString>
#include <QVariant>

struct BoundValue
{
    QString name; // with its colon, as it stands in the statement
    QVariant value;
};

/// What became of a write. Nothing was changed unless `done`.
struct WriteOutcome
{
    bool done = false;
    QString errorText; // the driver's text
    int newId = 0; // of an inserted row
    int rows = 0; // that the statement changed
};

/// Why nothing can be written under the row: its own text when it is gone, the driver's when that cannot be found out.
/// Empty when the row is there.
[[nodiscard]] QString reasonAgainst(const NeededRow &needed);

/// Prepares, binds and executes one statement without a transaction of its own. An INSERT whose id does not fit 32 bits
/// has failed, and whoever has begun the transaction must not commit it. Where something is needed and not there,
/// nothing is written and the error text says so.
[[nodiscard]] WriteOutcome runWrite(
    const QString &statement, const QList<BoundValue> &values = {}, const QList<NeededRow> &needed = {});

/// runWrite() in a transaction that ends with the statement.
[[nodiscard]] WriteOutcome executeWrite(
    const QString &statement, const QList<BoundValue> &values = {}, const QList<NeededRow> &needed = {});

enum class DeletionResult { Deleted, StillUsed, Failed };

struct DeletionOutcome
{
    DeletionResult result = DeletionResult::Failed;
    QString errorText;
};

/// Deletes only if `countStatement` yields 0 inside the deleting transaction. A count that cannot be made stops the
/// deletion: the guards that the forms show before asking read a failed count as 0.
[[nodiscard]] DeletionOutcome deleteUnlessUsed(const QString &countStatement, const QString &deleteStatement);
