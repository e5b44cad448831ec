#include "tests/support/testcatalogue.h"

#include "search/folderlister.h"
#include "store/catalogquery.h"
#include "store/database.h"
#include "store/statement.h"
#include "tests/support/testpictures.h"

#include <QDir>
#include <QSqlDatabase>
#include <QSqlQuery>

using namespace Qt::StringLiterals;

namespace {

int inserted(const QString &statement, const QList<BoundValue> &values)
{
    const WriteOutcome outcome = executeWrite(statement, values);
    if (!outcome.done) {
        qFatal("%s", qUtf8Printable(outcome.errorText));
    }
    return outcome.newId;
}

} // namespace

TestCatalogue::TestCatalogue(Content content)
    : m_formerFolder(QDir::currentPath())
{
    QDir::setCurrent(m_folder.path());
    for (const QString &folder : { u"AuxFolder"_s, u"Folder001"_s, u"Folder002"_s }) {
        QDir().mkpath(u"Data/Pictures/"_s + folder);
    }
    if (content == Tables) {
        if (!connectDatabase()) {
            qFatal("no database");
        }
        createTables();
        CatalogQuery::instance().reloadModels();
    }
}

TestCatalogue::~TestCatalogue()
{
    QSqlDatabase::removeDatabase(QLatin1StringView(QSqlDatabase::defaultConnection));
    QDir::setCurrent(m_formerFolder);
}

int TestCatalogue::addGroup(const QString &name, const QString &picturePath)
{
    return inserted(u"INSERT INTO locomotive (name, pictPath) VALUES (:name, :path)"_s,
        { { u":name"_s, name }, { u":path"_s, picturePath } });
}

int TestCatalogue::addModel(const QString &name, int groupId)
{
    return inserted(u"INSERT INTO loc_model (modelname, locid) VALUES (:name, :group)"_s,
        { { u":name"_s, name }, { u":group"_s, groupId } });
}

int TestCatalogue::addEntry(
    const QString &number, int modelId, const QString &place, const QDate &seen, const QString &comment)
{
    return inserted(u"INSERT INTO loc_seen (nummer, locseenid, ort, kommentar, startdate, locseendate) "
                    "VALUES (:number, :model, :place, :comment, :start, :seen)"_s,
        { { u":number"_s, number }, { u":model"_s, modelId }, { u":place"_s, place }, { u":comment"_s, comment },
            { u":start"_s, seen }, { u":seen"_s, seen } });
}

int TestCatalogue::addPicture(int entryId)
{
    ++m_pictures;
    const QString copy = u"./Data/Pictures/Folder001/copy%1.jpg"_s.arg(m_pictures);
    const QString source = path(u"source%1.jpg"_s.arg(m_pictures));
    writeTestJpeg(copy, { 75, 50 });
    writeTestJpeg(source, { 150, 100 });
    return inserted(u"INSERT INTO loc_picture (pictAuxPath, pictOrigPath, pictHeight, pictWidth, locpictureid) "
                    "VALUES (:copy, :source, 50, 75, :entry)"_s,
        { { u":copy"_s, copy }, { u":source"_s, source }, { u":entry"_s, entryId } });
}

QVariant TestCatalogue::value(const QString &statement) const
{
    QSqlQuery query;
    if (!query.exec(statement) || !query.next()) {
        return {};
    }
    return query.value(0);
}
