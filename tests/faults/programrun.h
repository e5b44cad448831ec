#pragma once

#include "tests/faults/forkedrun.h"

#include <QList>
#include <QSet>

class QRandomGenerator;

/// Replaces the process, which must be one of ForkedRun, by the real program in `folder`. Inside it a ScriptedUser
/// works with `photograph`, or only looks if that is empty; what he says becomes the lines of the run. Never returns.
[[noreturn]] void becomeProgram(const QString &folder, const QString &photograph = {});

/// What a ScriptedUser changes in the catalogue in `folder`, one line each and sorted: entries and their pictures,
/// edits, classes, groups and their pictures, and the background.
[[nodiscard]] QStringList scriptFacts(const QString &folder);

/// The facts after `action`, as the user calls it.
[[nodiscard]] QStringList factsAfter(QStringList facts, const QString &action);

/// The number of the entry that goes with `action`; empty when that is no deletion.
[[nodiscard]] QString deletedBy(const QString &action);

/// A run that was ended, or ended by itself, as far as what it has reported tells: "> x" and then "x" for each click
/// that saves.
struct ReportedSavings
{
    ReportedSavings() = default;
    explicit ReportedSavings(const QStringList &lines);

    QStringList done; // their clicks have returned
    QString interrupted; // its click has not; empty between two of them
};

/// How long a run takes that nobody disturbs, in µs since it was started or has reported its first line.
struct RunTimes
{
    QList<qint64> lines; // when each was reported
    qint64 end = 0;
    QStringList said;
    bool isGood = false;
};

[[nodiscard]] RunTimes timesOf(ForkedRun &run);

/// When to kill: at a moment of the `longest` µs after the run has reported so many lines.
struct Aim
{
    qsizetype lines = 0;
    qint64 longest = 0;
};

/// Ends the run with SIGKILL, if it has not ended by itself.
[[nodiscard]] ForkedRun::End killAt(ForkedRun &run, const Aim &aim, QRandomGenerator &random);

/// What the kills of a test have struck.
struct Tally
{
    int kills = 0;
    int tooLate = 0; // runs that had ended by themselves, which are no kills
    int savings = 0; // kills between a click that saves and its return
    int stored = 0; // kills that found a change stored but not reported
    QSet<QString> interrupted; // what was being saved

    void note(const QString &saving, bool isStored);
};
