#pragma once

#include "browser/picture.h"

#include <QDate>
#include <QHash>
#include <QList>
#include <QSqlRecord>
#include <QString>

/// What a card or the start view shows of one entry.
struct EntryCard
{
    int id = 0;
    QString number;
    QString place;
    QDate seen;
    QString comment;
    QList<PicturePaths> pictures;
};

[[nodiscard]] EntryCard entryCard(const QSqlRecord &entry, const QList<QSqlRecord> &pictures);

[[nodiscard]] PicturePaths picturePaths(const QSqlRecord &picture);

/// "11108, Erstfeld, 17.05.1987, 3 Bilder": the whole card in one sentence, for screen readers.
[[nodiscard]] QString summary(const EntryCard &card);
