#include "bench/storeoperations.h"

#include "bench/benchcatalogue.h"
#include "bench/storefloor.h"
#include "search/picturestore.h"
#include "store/entryremoval.h"
#include "store/statement.h"
#include "store/transaction.h"

#include <QFile>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

using namespace Qt::StringLiterals;

namespace {

constexpr int PicturesPerEntry = 6;

QString pathOf(int picture)
{
    return u"./Data/Pictures/Folder001/messung%1.jpg"_s.arg(picture);
}

void must(bool isGood)
{
    if (!isGood) {
        qFatal("The catalogue could not be written.");
    }
}

/// Adds an entry that is deleted again at once, so that the catalogue stays the same; returns its id.
int addEntry()
{
    Transaction transaction;
    const int id = runWrite(u"INSERT INTO loc_seen (nummer, locseenid, ort, kommentar, startdate, locseendate) "
                            "VALUES ('1', %1, '', '', '2001-01-01', '2001-01-01')"_s.arg(BenchCatalogue::FullClass))
                       .newId;
    for (int picture = 0; picture < PicturesPerEntry; ++picture) {
        QFile copy(pathOf(picture));
        must(copy.open(QIODevice::WriteOnly) && copy.write(QByteArray(60000, 'x')) == 60000);
        must(runWrite(u"INSERT INTO loc_picture (pictAuxPath, pictOrigPath, pictHeight, pictWidth, locpictureid) "
                      "VALUES ('%1', '/nirgends/bild.jpg', 500, 750, %2)"_s.arg(pathOf(picture), QString::number(id)))
                 .done);
    }
    must(transaction.commit());
    return id;
}

enum class Copies { Removed, Left };

void deletePlainly(int entryId, Copies copies)
{
    const QString id = QString::number(entryId);
    QSqlQuery query;
    must(query.exec(u"BEGIN IMMEDIATE"_s));
    must(query.exec(u"SELECT * FROM loc_picture WHERE locpictureid = "_s + id));
    while (query.next()) {
        const QString path = query.record().value(u"pictAuxPath"_s).toString();
        if (copies == Copies::Removed) {
            QFile::remove(path);
        }
    }
    must(query.exec(u"DELETE FROM loc_picture WHERE locpictureid = "_s + id));
    must(query.exec(u"DELETE FROM loc_seen WHERE id = "_s + id));
    must(query.exec(u"COMMIT"_s));
}

double plainDeletion(Copies copies)
{
    const int id = addEntry(); // writes the files of the last one again
    return elapsed([=] { deletePlainly(id, copies); });
}

} // namespace

Timings measureStore(int repetitions)
{
    return measure(
        {
            { u"choice"_s, [] { return elapsed([] { must(!PictureStore().currentFolder().isEmpty()); }); } },
            { u"choice floor"_s, [] { return elapsed([] { must(StoreFloor::countFiles() > 0); }); } },
            { u"deletion"_s,
                [] {
                    const int id = addEntry();
                    return elapsed([id] { must(removeEntry(id).done); });
                } },
            { u"deletion floor"_s, [] { return plainDeletion(Copies::Left); } },
            { u"deletion floor with files"_s, [] { return plainDeletion(Copies::Removed); } },
        },
        repetitions);
}
