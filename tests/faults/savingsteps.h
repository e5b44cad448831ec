#pragma once

#include "tests/faults/catalogueuser.h"

#include <QList>
#include <QString>

/// One thing that a user does in the sample catalogue and that ends with the catalogue changed.
struct SavingStep
{
    QString name;
    std::function<void(CatalogueUser &)> run; // the steps before it have been done, perhaps in an earlier session
    QString failureTitle = {}; // of the box that tells that the database refuses it; empty when nothing is told
    int furtherTries = 0; // clicks on "Schliessen" that try to store the same again
    bool mayLoseCopies = false; // when it fails: the copies of an entry are removed before its rows

    /// Whether it writes a copy, so that the file may fail as well as the row.
    [[nodiscard]] bool storesPicture() const
    {
        return name.startsWith(QStringLiteral("addP")) || name == QStringLiteral("addGroup")
            || name == QStringLiteral("changeGroupPicture");
    }
};

/// What is wrong with the boxes that a step has shown where it could not be done: `boxes` has a list for each saving
/// click and one for what came afterwards, and `reasons` what the driver may say. Empty when exactly one box told of
/// the failure, and one more each further try.
[[nodiscard]] QString wrongBoxes(const SavingStep &step, const QList<QStringList> &boxes, const QStringList &reasons);

/// All ways to change a catalogue, in an order in which they can be done one after the other. `photographs` is the
/// folder of makeSamplePhotographs(). The last one ends the session.
[[nodiscard]] QList<SavingStep> savingSteps(const QString &photographs);

/// What the steps lead to when nothing goes wrong.
struct Reference
{
    QStringList states; // the dump after each commit, beginning with the dump of the sample catalogue
    QList<int> reached; // for each step the index in `states` at its end

    /// The state before step `step`.
    [[nodiscard]] int before(int step) const { return step == 0 ? 0 : reached.at(step - 1); }
};

/// Does all steps in a copy of the sample catalogue `sample` and leaves in `snapshots` a catalogue "0", "1", … as it
/// was before each step. Forks; the clock of all runs starts at the same moment.
[[nodiscard]] Reference makeReference(const QString &sample, const QList<SavingStep> &steps, const QString &snapshots);

/// Sets the clock of the process to a fixed day; each look finds it a millisecond later.
void setSteadyClock();
