#pragma once

#include "tests/faults/failingcalls.h"
#include "tests/faults/forkedrun.h"
#include "tests/faults/savingsteps.h"

/// A step, the catalogue before it, and the states that its commits lead to, beginning with the one before it.
struct Trial
{
    SavingStep step;
    QString snapshot;
    QStringList states;

    /// The number of the entry whose copies may go before its rows.
    [[nodiscard]] QString deleted() const;

    /// A group's picture is stored by a commit of its own.
    [[nodiscard]] bool storesPictureFirst() const;

    /// How often the step tries to write, each time with a box of its own, when it never succeeds.
    [[nodiscard]] int attempts() const;
};

/// What is left after a fault and, where the session went on, after the same thing was done once more.
struct Outcome
{
    QByteArray log; // of the calls
    QString state;
    QStringList boxes;
    QStringList damages;
    QString stateAfterwards;
    QStringList boxesAfterwards;
    QStringList damagesAfterwards;
};

/// Whether every line of `wanted` is in `state`.
[[nodiscard]] bool hasAllLines(const QString &state, const QString &wanted);

/// Called inside a ForkedRun: hands the outcome to the test, which gets it by outcomeOf().
void reportOutcome(const Outcome &outcome);
[[nodiscard]] Outcome outcomeOf(const ForkedRun::End &end);

/// For a failed check; valid until the next call.
[[nodiscard]] const char *description(const FailingCalls::Fault &fault, const Outcome &outcome);

/// Fills the numbered folders in the sample catalogue `folder`, so that the next choice opens new ones.
void fillStore(const QString &folder);

/// The tenth picture of a session, after which the folder is chosen anew. Done again, it is the first in a new one.
[[nodiscard]] SavingStep stepIntoNewFolder(const QString &photographs);
