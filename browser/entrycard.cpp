#include "browser/entrycard.h"

#include "browser/canvastexts.h"
#include "store/rowvalue.h"

using namespace Qt::StringLiterals;

EntryCard entryCard(const QSqlRecord &entry, const QList<QSqlRecord> &pictures)
{
    EntryCard card { rowId(entry, u"id"_s), rowText(entry, u"nummer"_s), rowText(entry, u"ort"_s),
        entry.value(u"locseendate"_s).toDate(), rowText(entry, u"kommentar"_s), {} };
    for (const QSqlRecord &picture : pictures) {
        card.pictures.append(picturePaths(picture));
    }
    return card;
}

PicturePaths picturePaths(const QSqlRecord &picture)
{
    return { rowText(picture, u"pictAuxPath"_s), rowText(picture, u"pictOrigPath"_s) };
}

QString summary(const EntryCard &card)
{
    return u"%1, %2, %3, %4"_s.arg(CanvasTexts::shown(card.number), CanvasTexts::shown(card.place),
        CanvasTexts::date(card.seen), CanvasTexts::pictureCount(int(card.pictures.size())));
}
