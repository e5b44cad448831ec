#include "forms/datetyping.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

std::optional<int> typedYear(const QString &digits, int thisYear)
{
    if (digits.size() == 2) {
        const int year = thisYear - thisYear % 100 + digits.toInt();
        return year <= thisYear ? year : year - 100;
    }
    return digits.size() == 4 ? std::optional(digits.toInt()) : std::nullopt;
}

} // namespace

bool DateTyping::isDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

bool DateTyping::isBetween(QChar character)
{
    return u".,-/ "_s.contains(character);
}

QStringList DateTyping::partsOf(const QString &typed)
{
    QStringList parts { QString() };
    for (const QChar character : typed) {
        const bool isFull = parts.size() < 3 && parts.last().size() == 2;
        if (isBetween(character) ? !parts.last().isEmpty() : isFull) {
            parts.append(QString());
        }
        if (isDigit(character)) {
            parts.last().append(character);
        }
    }
    return parts;
}

bool DateTyping::isBeginning(const QString &typed)
{
    const auto isPart = [](QChar character) { return isDigit(character) || isBetween(character); };
    const QStringList parts = partsOf(typed);
    return std::all_of(typed.begin(), typed.end(), isPart) && parts.size() <= 3 && parts.last().size() <= 4;
}

std::optional<QDate> DateTyping::typedDate(const QString &typed, const QDate &base, int thisYear)
{
    // Of digits alone, other numbers of them may as well be a year.
    const bool isDigitsOnly = std::all_of(typed.begin(), typed.end(), isDigit);
    if (isDigitsOnly && typed.size() > 2 && typed.size() != 6 && typed.size() != 8) {
        return {};
    }
    const QStringList parts = partsOf(typed);
    const QString month = parts.value(1);
    const QString year = parts.value(2);
    const std::optional<int> fullYear = year.isEmpty() ? std::optional(base.year()) : typedYear(year, thisYear);
    if (!fullYear) {
        return {};
    }
    const QDate date(*fullYear, month.isEmpty() ? base.month() : month.toInt(), parts.first().toInt());
    return date.isValid() ? std::optional(date) : std::nullopt;
}
