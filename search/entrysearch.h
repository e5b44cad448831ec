#pragma once

#include <QList>
#include <QSqlRecord>
#include <QString>

/// The ORDER BY clause for a text of the sort box; any other text sorts by date. `once` tells that each running number
/// is shown only once: sorted by number, the entry shown is then the latest sighting.
[[nodiscard]] QString orderClause(const QString &sortText, bool once);

/// The statement that fetches the entries of a class; an empty clause sorts by date.
[[nodiscard]] QString entriesStatement(const QString &orderClause, int modelId);

/// Appends the entries of a class in the order of the clause; nothing when the statement fails.
void entriesOfModel(QList<QSqlRecord> &list, const QString &orderClause, int modelId);
