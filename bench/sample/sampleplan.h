#pragma once

#include "bench/sample/photograph.h"

#include <QDate>
#include <QList>
#include <QString>

/// A photograph and where it is shown.
struct PlannedPicture
{
    Motif motif;
    QString fileName; // below the folder of the originals
    QList<int> entries; // indexes into SamplePlan::entries
};

struct PlannedEntry
{
    int locomotiveClass = 0;
    QString number;
    QString place;
    QString comment;
    QDate seen;
};

/// Everything that a sample catalogue will hold, before a single file is written.
struct SamplePlan
{
    QList<PlannedEntry> entries;
    QList<PlannedPicture> pictures; // in the order in which an entry shows them
    QList<PlannedPicture> groupPictures; // one for each group
};

/// Invents a catalogue with this many entries. Equal arguments give equal plans.
[[nodiscard]] SamplePlan planSample(int entries, quint32 seed);
