#include "search/entrysearch.h"

#include "search/searchchoice.h"

#include <QSqlQuery>

using namespace Qt::StringLiterals;

QString orderClause(const QString &sortText, bool once)
{
    if (sortText == SearchChoice::ByNumber) {
        // DESC concerns the date alone: numbers stay ascending, and the latest sighting of each comes first.
        return once ? u"ORDER BY nummer, locseendate DESC"_s : u"ORDER BY nummer, locseendate"_s;
    }
    return sortText == SearchChoice::ByPlace ? u"ORDER BY ort, locseendate"_s : u"ORDER BY locseendate"_s;
}

QString entriesStatement(const QString &orderClause, int modelId)
{
    const QString order = orderClause.isEmpty() ? u"ORDER BY locseendate"_s : orderClause;
    return u"SELECT * FROM loc_seen WHERE locseenid = %1 %2 "_s.arg(QString::number(modelId), order);
}

void entriesOfModel(QList<QSqlRecord> &list, const QString &orderClause, int modelId)
{
    QSqlQuery query;
    query.setForwardOnly(true);
    if (!query.exec(entriesStatement(orderClause, modelId))) {
        return;
    }
    while (query.next()) {
        list.append(query.record());
    }
}
