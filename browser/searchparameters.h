#pragma once

#include <QList>
#include <QSqlRecord>
#include <QString>

class OptionDialog;

/// What a search lists and how. The defaults are those of a canvas on which nothing was searched yet.
struct SearchParameters
{
    int modelId = 5;
    bool once = false; // each running number is shown once
    bool picturesOnly = false;
    QString modelName;
    QString orderClause;
};

/// Reads the choices of an accepted dialog that was opened with `classes`; this also stores the three search options.
[[nodiscard]] SearchParameters chosenParameters(OptionDialog &dialog, const QList<QSqlRecord> &classes);
