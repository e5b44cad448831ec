#pragma once

#include <QSqlRecord>
#include <QString>
#include <QVariant>

#include <limits>

/// The row id in `value`. An id that does not fit 32 bits reads as 0, which no row has: cut down it would name
/// another row. 0 also for anything that is no number.
[[nodiscard]] inline int rowId(const QVariant &value)
{
    bool isNumber = false;
    const qlonglong number = value.toLongLong(&isNumber);
    const bool fits = number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max();
    return isNumber && fits ? int(number) : 0;
}

[[nodiscard]] inline int rowId(const QSqlRecord &row, const QString &column)
{
    return rowId(row.value(column));
}

[[nodiscard]] inline QString rowText(const QSqlRecord &row, const QString &column)
{
    return row.value(column).toString();
}
