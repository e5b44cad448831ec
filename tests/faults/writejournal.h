#pragma once

#include "tests/faults/belief.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

// What several programs have written into one catalogue, noted apart from it, so that the file can be held against it.

/// The values of each row by its table and id, as a list in JSON. Without the settings, which belong to the window that
/// is closed last.
using Rows = QMap<QString, QString>;

struct Write
{
    QString row;
    QString values; // empty when the row was deleted
};

/// Each write has the number that it got, inside its transaction, from a counter in the file: so the writes of all
/// programs have one order, and a transaction that is lost as a whole leaves a number missing, or given twice.
using Writes = QMap<int, Write>;

/// Adds the counter to the catalogue in `folder`, before any program keeps a journal.
void makeCounter(const QString &folder);
[[nodiscard]] int counterOf(const QString &folder);
[[nodiscard]] Rows rowsOf(const QString &folder);

/// Has this program's own connection note what it writes. A rollback takes its notes back, too.
void keepJournal();

/// Holds the notes since the last call against what the user believes of that time. Returns the beliefs that were not
/// stored like that, and new rows and moves that nobody has saved.
[[nodiscard]] QStringList disappointments(const QList<Belief> &beliefs);

/// The notes, for the test.
[[nodiscard]] QStringList journal();

/// Adds what a program has reported; returns what cannot be.
[[nodiscard]] QStringList addWrites(Writes &writes, const QStringList &journal);

/// How many of each kind it has: "20 INSERT loc_seen".
[[nodiscard]] QStringList kindsOf(const QStringList &journal);

/// Does the writes in their order: who has written last has the row.
void follow(Rows &rows, const Writes &writes);

/// The texts and days that are again what they were before somebody else has changed them. `before` is what all began
/// with.
[[nodiscard]] QStringList takenBack(const Rows &before, const Writes &writes);
