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

    /// What is wrong with the boxes shown, one list for each saving click and one for what came afterwards: a click
    /// that failed tells so once, in known words, and so does each further try. Empty when all is well.
    [[nodiscard]] QString wrongTelling(const QList<QStringList> &boxes, bool forever, bool isStored) const;

private:
    [[nodiscard]] QStringList tellings(bool forever, bool isStored) const;
};

/// What is left after a fault and, where the session went on, after the same thing was done once more.
struct Outcome
{
    QByteArray log = {}; // of the calls
    QString state = {};
    QList<QStringList> boxes = {}; // as wrongTelling() takes them
    QStringList damages = {};
    bool lostCopies = false; // of an entry that may lose them
    bool isPressedAgain = false; // in the form that had stayed open
    QString stateAfterwards = {};
    QStringList boxesAfterwards = {};
    QStringList damagesAfterwards = {};
};

/// Called inside a ForkedRun, in the working folder: does the step with the fault, which counts its calls over all
/// clicks that save, and a second time without it if the program lives on.
[[nodiscard]] Outcome outcomeOfFault(const Trial &trial, const FailingCalls::Fault &fault);

/// The same for a fault that ends the process.
void runIntoKill(const Trial &trial, const FailingCalls::Fault &fault);

/// Called inside a ForkedRun: what the next start finds in `folder`. `deleted` is the number of an entry that may have
/// lost its copies.
[[nodiscard]] Outcome outcomeOfStart(const QString &folder, const QString &deleted = {});

/// The number of the first call in a log that begins with `call`; 0 when there is none.
[[nodiscard]] int callNumber(const QByteArray &log, const QByteArray &call);

/// The number of the call that removes the first copy of the entry that a step deletes; 0 when there is none.
[[nodiscard]] int firstRemoval(const QByteArray &log);

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
