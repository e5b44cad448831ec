#pragma once

#include <QDate>
#include <QString>
#include <QStringList>

#include <optional>

class QDateEdit;

/// Dates are typed as people write them: "5.6.2020", "05.06.2020", "05062020", "5.6.20".
namespace DateTyping {

[[nodiscard]] bool isDigit(QChar character);

/// Whether the character may stand between the parts of a date.
[[nodiscard]] bool isBetween(QChar character);

/// Day, month and year as far as they are typed, at least one; a day or a month is full with two digits.
[[nodiscard]] QStringList partsOf(const QString &typed);

/// Whether `typed` can become a date: day, month and year, with or without something between them.
[[nodiscard]] bool isBeginning(const QString &typed);

/// What was typed as a date. What is not there yet comes from `base`; a year of two digits is the last one up to
/// `thisYear` that ends in them. None when there is no such day, and for three, four, five or seven digits alone: they
/// may be a year as well.
[[nodiscard]] std::optional<QDate> typedDate(const QString &typed, const QDate &base, int thisYear);

/// Lets the field take a date that is typed or pasted. By itself it leaves the day after two digits, and the point that
/// follows then skips the month: "05.06.2020" would become the 5th of another month and year. Where a month or a year
/// is marked, what is typed goes on from there. What is no day leaves the date as it was, and a tip below the field
/// says so.
void install(QDateEdit *edit);

} // namespace DateTyping
