#include "store/catalogquery.h"

#include "search/messagebox.h"
#include "search/messagedialog.h"
#include "search/textcut.h"
#include "store/entryremoval.h"
#include "store/rowvalue.h"
#include "store/statement.h"

#include <QCoreApplication>
#include <QDebug>
#include <QSqlError>
#include <QSqlQuery>

using namespace Qt::StringLiterals;

namespace {

/// Runs `statement` and hands each row to `take` until that returns false. False when the rows could not be read, or
/// not all of them.
template <typename Take> bool readRows(const QString &statement, Take take)
{
    QSqlQuery query;
    query.setForwardOnly(true);
    bool goesOn = query.exec(statement);
    while (goesOn && query.next()) {
        goesOn = take(query);
    }
    if (query.lastError().isValid()) {
        qDebug().noquote() << query.lastError().text();
        return false;
    }
    return true;
}

void appendRows(QList<QSqlRecord> &list, const QString &statement)
{
    readRows(statement, [&list](const QSqlQuery &query) {
        list.append(query.record());
        return true;
    });
}

/// First column of the first row; invalid when there is none.
QVariant firstValue(const QString &statement)
{
    QVariant value;
    readRows(statement, [&value](const QSqlQuery &query) {
        value = query.value(0);
        return false;
    });
    return value;
}

int count(const QString &statement)
{
    return rowId(firstValue(statement));
}

/// Numbers stand between single quotes in the statements; one that holds a quote itself is known to find nothing.
bool breaksQuotes(const QString &nummer)
{
    return nummer.contains(u'\'');
}

} // namespace

CatalogQuery &CatalogQuery::instance()
{
    static CatalogQuery object;
    return object;
}

CatalogQuery::CatalogQuery()
{
    reloadModels();
}

void CatalogQuery::reloadModels()
{
    m_models.clear();
    appendRows(m_models, u"SELECT * FROM loc_model "_s);
}

int CatalogQuery::countEntries() const
{
    return count(u"SELECT COUNT(*) FROM loc_seen "_s);
}

int CatalogQuery::countStoredPictures() const
{
    return count(u"SELECT COUNT(*) FROM loc_picture WHERE pictAuxPath NOT LIKE '%AuxFolder%'"_s);
}

int CatalogQuery::countPicturesOfEntry(int entryId) const
{
    return count(u"SELECT COUNT(*) FROM loc_picture WHERE locpictureid = %1"_s.arg(entryId));
}

int CatalogQuery::countEntriesOfModel(int modelId) const
{
    return count(u"SELECT COUNT(*) FROM loc_seen WHERE locseenid = '%1'"_s.arg(modelId));
}

int CatalogQuery::countGroups() const
{
    return count(u"SELECT COUNT(*) FROM locomotive"_s);
}

int CatalogQuery::countModels(int groupId) const
{
    return groupId == 0 ? count(u"SELECT COUNT(*) FROM loc_model"_s)
                        : count(u"SELECT COUNT(*) FROM loc_model WHERE locid = '%1'"_s.arg(groupId));
}

int CatalogQuery::countEntriesByNumber(const QString &nummer, int modelId) const
{
    if (breaksQuotes(nummer)) {
        return 0;
    }
    return count(u"SELECT COUNT(*) FROM loc_seen WHERE nummer = '%1' AND locseenid = %2"_s.arg(
        nummer, QString::number(modelId)));
}

void CatalogQuery::picturesOfEntry(QList<QSqlRecord> &list, int entryId) const
{
    appendRows(list, u"SELECT * FROM loc_picture WHERE locpictureid = %1"_s.arg(entryId));
}

void CatalogQuery::entryById(QList<QSqlRecord> &list, int entryId) const
{
    readRows(u"SELECT * FROM loc_seen WHERE id = %1"_s.arg(entryId), [&list](const QSqlQuery &query) {
        list.append(query.record());
        return false;
    });
}

void CatalogQuery::modelsOfGroup(QList<QSqlRecord> &list, int groupId) const
{
    readRows(u"SELECT * FROM loc_model ORDER BY modelname"_s, [&list, groupId](const QSqlQuery &query) {
        if (groupId == 0 || rowId(query.value(u"locid"_s)) == groupId) {
            list.append(query.record());
        }
        return true;
    });
}

bool CatalogQuery::groups(QList<QSqlRecord> &list, int groupId) const
{
    return readRows(u"SELECT * FROM locomotive ORDER BY name"_s, [&list, groupId](const QSqlQuery &query) {
        if (groupId == 0 || rowId(query.value(u"id"_s)) == groupId) {
            list.append(query.record());
        }
        return true;
    });
}

void CatalogQuery::allEntries(QList<QSqlRecord> &list) const
{
    appendRows(list, u"SELECT * FROM loc_seen ORDER BY locseendate"_s);
}

void CatalogQuery::entriesByNumber(QList<QSqlRecord> &list, const QString &nummer, int modelId) const
{
    if (breaksQuotes(nummer)) {
        return;
    }
    appendRows(list,
        u"SELECT * FROM loc_seen WHERE nummer = '%1' AND locseenid = %2 ORDER BY locseendate"_s.arg(
            nummer, QString::number(modelId)));
}

void CatalogQuery::storedPictureAt(QList<QSqlRecord> &list, int n) const
{
    QSqlQuery query;
    query.setForwardOnly(true);
    if (!query.exec(u"SELECT * FROM loc_picture WHERE pictAuxPath NOT LIKE '%AuxFolder%'"_s)) {
        qDebug().noquote() << query.lastError().text();
        return;
    }
    if (!query.next()) {
        return;
    }
    list.append(query.record());
    if (n == 0 || (n > 0 && query.seek(n))) { // a seek reads no values of the rows that it passes
        list = { query.record() };
    }
}

std::optional<QHash<int, QList<QSqlRecord>>> CatalogQuery::picturesOfEntries(const QList<int> &entryIds) const
{
    QHash<int, QList<QSqlRecord>> pictures;
    if (entryIds.isEmpty()) {
        return pictures;
    }
    QStringList ids;
    for (const int id : entryIds) {
        ids.append(QString::number(id));
    }
    const bool isRead = readRows(u"SELECT * FROM loc_picture WHERE locpictureid IN (%1)"_s.arg(ids.join(u',')),
        [&pictures](const QSqlQuery &query) {
            pictures[rowId(query.value(u"locpictureid"_s))].append(query.record());
            return true;
        });
    return isRead ? std::optional(pictures) : std::nullopt;
}

int CatalogQuery::modelIdOfNumber(const QString &nummer) const
{
    int modelId = 0;
    if (breaksQuotes(nummer)) {
        return modelId;
    }
    readRows(u"SELECT * FROM loc_seen WHERE nummer = '%1'"_s.arg(nummer), [&modelId](const QSqlQuery &query) {
        modelId = rowId(query.value(u"locseenid"_s));
        return false;
    });
    return modelId;
}

int CatalogQuery::modelIdOfEntry(int entryId) const
{
    return rowId(firstValue(u"SELECT locseenid FROM loc_seen WHERE id = %1"_s.arg(entryId)));
}

QString CatalogQuery::modelNameCached(int modelId) const
{
    for (const QSqlRecord &model : m_models) {
        if (rowId(model, u"id"_s) == modelId) {
            return rowText(model, u"modelname"_s);
        }
    }
    return {};
}

QString CatalogQuery::modelName(int modelId) const
{
    QString name;
    readRows(u"SELECT * FROM loc_model WHERE id = %1 "_s.arg(modelId), [&name](const QSqlQuery &query) {
        name = query.value(u"modelname"_s).toString();
        return false;
    });
    return name;
}

QString CatalogQuery::entryNumber(int entryId) const
{
    const QVariant number = firstValue(u"SELECT nummer FROM loc_seen WHERE id = %1"_s.arg(entryId));
    return number.isValid() ? number.toString() : u"000"_s;
}

int CatalogQuery::modelIdByName(const QString &name, int groupId) const
{
    int modelId = 0;
    readRows(u"SELECT * FROM loc_model WHERE locid = %1 "_s.arg(groupId), [&modelId, &name](const QSqlQuery &query) {
        if (query.value(u"modelname"_s).toString() != name) {
            return true;
        }
        modelId = rowId(query.value(u"id"_s));
        return false;
    });
    return modelId;
}

void CatalogQuery::AddLocModel(const QString &name, int groupId) const
{
    const WriteOutcome outcome = executeWrite(u"INSERT INTO loc_model (modelname, locid) VALUES (:name, :locid) "_s,
        { { u":name"_s, cutText(name, TextLimit::Name) }, { u":locid"_s, groupId } });
    if (!outcome.done) {
        qDebug().noquote().nospace() << "Fehler bei AddLocModel: " << outcome.errorText;
    }
}

bool CatalogQuery::deleteEntry(int entryId, QString &nummer, int &modelId) const
{
    QList<QSqlRecord> rows;
    if (entryId != 0 && entryId != -1) { // an id that cannot be read is 0, and the pictures of groups have -1
        entryById(rows, entryId);
    }
    if (rows.isEmpty()) {
        return true; // a missing entry counts as deleted
    }
    nummer = rowText(rows.first(), u"nummer"_s);
    modelId = rowId(rows.first(), u"locseenid"_s);
    const QString question = QCoreApplication::translate(
        "CatalogQuery", "Eintrag %1 mit der Lok-Nummer %2 und alle dazugehörenden Bilder löschen?");
    if (!MessageBox::confirm(nullptr, QCoreApplication::translate("CatalogQuery", "Eintrag Entfernen"),
            question.arg(QString::number(entryId), shortened(nummer)))) {
        return false;
    }
    const WriteOutcome outcome = removeEntry(entryId);
    if (!outcome.done) {
        const MessageDialog box(QCoreApplication::translate("CatalogQuery", "DB-Löschen"), outcome.errorText);
    }
    return outcome.done;
}
