#pragma once

#include <QMap>
#include <QString>

/// What the program has let its user believe to be stored: after a save that showed no box.
struct Belief
{
    QString write; // "INSERT loc_seen"
    QMap<QString, QString> values = {}; // by column, as the user has given them; longer ones than are stored, too
};
