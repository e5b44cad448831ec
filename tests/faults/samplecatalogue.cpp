#include "tests/faults/samplecatalogue.h"

#include "app/startup.h"
#include "store/statement.h"
#include "tests/support/testpictures.h"

#include <QDate>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QVariant>

using namespace Qt::StringLiterals;

namespace {

int inserted(const QString &statement, const QList<BoundValue> &values = {})
{
    const WriteOutcome outcome = executeWrite(statement, values);
    if (!outcome.done) {
        qFatal("%s", qUtf8Printable(outcome.errorText));
    }
    return outcome.newId;
}

QString addedCopy(const QString &folder, int number, int entryId)
{
    QString copy = u"./Data/Pictures/%1/%2.jpg"_s.arg(folder, QString::number(number));
    writeTestJpeg(copy, { 75, 50 });
    inserted(u"INSERT INTO loc_picture (pictAuxPath, pictOrigPath, pictHeight, pictWidth, locpictureid) "
             "VALUES (:copy, :source, 50, 75, :entry)"_s,
        { { u":copy"_s, copy }, { u":source"_s, u"/media/fotos/%1.jpg"_s.arg(number) }, { u":entry"_s, entryId } });
    return copy;
}

void addEntry(const QString &number, int modelId, int pictures)
{
    const int id = inserted(u"INSERT INTO loc_seen (nummer, locseenid, ort, kommentar, startdate, locseendate) "
                            "VALUES (:number, :model, 'Erstfeld', 'Kommentar', '2001-05-17', '2001-05-17')"_s,
        { { u":number"_s, number }, { u":model"_s, modelId } });
    for (int i = 0; i < pictures; ++i) {
        addedCopy(u"Folder001"_s, number.toInt() * 10 + i, id);
    }
}

void writePhotograph(const QString &path, const QImage &picture, const char *format)
{
    if (!picture.save(path, format)) {
        qFatal("cannot write %s", qUtf8Printable(path));
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite)
        || !file.setFileTime(QDateTime(QDate(2001, 5, 17), QTime(12, 0)), QFileDevice::FileModificationTime)) {
        qFatal("cannot date %s", qUtf8Printable(path));
    }
}

} // namespace

void makeSampleCatalogue(const QString &folder)
{
    const QString formerFolder = QDir::currentPath();
    QDir().mkpath(folder);
    QDir::setCurrent(folder);
    Startup::makeDataFolders();
    if (!Startup::openCatalogue()) {
        qFatal("no catalogue");
    }
    const QString group = u"INSERT INTO locomotive (name, pictPath) VALUES (:name, :path)"_s;
    const QString model = u"INSERT INTO loc_model (modelname, locid) VALUES (:name, 1)"_s;
    inserted(group, { { u":name"_s, u"Krokodile"_s }, { u":path"_s, addedCopy(u"AuxFolder"_s, 1, -1) } });
    inserted(group, { { u":name"_s, u"Leere Gruppe"_s }, { u":path"_s, addedCopy(u"AuxFolder"_s, 2, -1) } });
    const int modelId = inserted(model, { { u":name"_s, u"Ce 6/8 II"_s } });
    inserted(model, { { u":name"_s, u"Leer"_s } });
    addEntry(u"14201"_s, modelId, 2);
    addEntry(u"14202"_s, modelId, 1);
    addEntry(u"14203"_s, modelId, 0);
    QSqlDatabase::removeDatabase(QLatin1StringView(QSqlDatabase::defaultConnection));
    QDir::setCurrent(formerFolder);
}

void makeSamplePhotographs(const QString &folder)
{
    QDir().mkpath(folder);
    writePhotograph(folder + u"/klein.jpg"_s, testImage({ 120, 80 }), "JPEG");
    writePhotograph(folder + u"/gross.jpg"_s, detailedImage({ 1500, 1000 }), "JPEG");
    writePhotograph(folder + u"/bild.png"_s, testImage({ 200, 160 }), "PNG");
}
