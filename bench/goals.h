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
    double limit = 0; // 0 when the line is there to be read only
    enum { AtMost, AtLeast } sense = AtMost;
    QString unit = QStringLiteral("ms");
    enum { Best, Worst } figure = Best; // which of the repetitions counts
};

/// All goals, in the order of the table.
[[nodiscard]] QList<Goal> allGoals();

/// What came out for a goal.
struct Outcome
{
    Timing value;
    Timing floor;
    double measured = 0; // the figure of `value` that counts
    double compared = 0; // the ratio of the best times, or `measured` where there is no floor
    bool isMet = false;
};

/// Nothing when the case or its floor was not measured.
[[nodiscard]] std::optional<Outcome> outcomeOf(const Goal &goal, const Timings &timings);
