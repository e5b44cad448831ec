#pragma once

#include "tests/faults/randomuser.h"

#include <QMap>
#include <QStringList>

/// One user who never stops, in a forked run, and what is to be seen of the program meanwhile. It reports its findings
/// at once, under "finding".
class SoakRun final
{
public:
    /// Like RandomUser.
    SoakRun(quint32 seed, const QString &photographs);

    void act();

    /// Between two actions nothing may be open or stand about. `part` counts the hundredths of the run.
    void look(int action, int part);

    /// "deed", "box", "write" and "belief" with their counts, and "memory".
    void report() const;

private:
    static void note(void *run, int operation, const char *database, const char *table, long long row);

    QStringList m_filesAtFirst;
    QStringList m_statementsAtFirst;
    double m_secondTenth = 0; // MB
    double m_lastTenth = 0;
    QMap<QString, int> m_boxes; // by title
    QMap<QString, int> m_beliefs;
    QMap<QString, int> m_writes; // all that came to the tables, also what was rolled back again
    RandomUser m_user; // writes once more when it goes
};
