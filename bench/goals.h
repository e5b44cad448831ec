#pragma once

#include "bench/measure.h"

#include <QString>

#include <optional>

/// One line of the table: a case beside its floor and what their ratio is meant to be. Without a floor the goal is the
/// case's own value.
struct Goal
{
    QString title;
    QString name; // "case@entries" among the timings
    QString floor; // empty when the goal is absolute
    double limit = 0;
    enum { AtMost, AtLeast } sense = AtMost;
    QString unit = QStringLiteral("ms");
};

/// All goals, in the order of the table; those of catalogues that were not measured are left out by the report.
[[nodiscard]] QList<Goal> allGoals();

/// What came out for a goal.
struct Outcome
{
    double value = 0;
    double floor = 0; // 0 without a floor
    double compared = 0; // the ratio, or the value where there is no floor
    bool isMet = false;
};

/// Nothing when the case or its floor was not measured. Compares the best times.
[[nodiscard]] std::optional<Outcome> outcomeOf(const Goal &goal, const Timings &timings);
