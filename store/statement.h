#pragma once

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

/// Prepares, binds and executes one statement without a transaction of its own.
[[nodiscard]] WriteOutcome runWrite(const QString &statement, const QList<BoundValue> &values = {});

/// The same in a transaction that ends with the statement.
[[nodiscard]] WriteOutcome executeWrite(const QString &statement, const QList<BoundValue> &values = {});

enum class DeletionResult { Deleted, StillUsed, Failed };

struct DeletionOutcome
{
    DeletionResult result = DeletionResult::Failed;
    QString errorText;
};

/// Deletes only if `countStatement` yields 0 inside the deleting transaction. A count that cannot be made stops the
/// deletion: the guards that the forms show before asking read a failed count as 0.
[[nodiscard]] DeletionOutcome deleteUnlessUsed(const QString &countStatement, const QString &deleteStatement);
