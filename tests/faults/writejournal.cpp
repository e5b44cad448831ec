#include "tests/faults/writejournal.h"

#include "tests/faults/forkedrun.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

struct Table
{
    QString name;
    QStringList columns; // beside the id; those that the user types in come first
    QList<int> fullAt = {}; // for each of these the length from which on letters behind it are cut off
};

const QList<Table> Tables {
    { u"locomotive"_s, { u"name"_s, u"pictPath"_s } },
    { u"loc_model"_s, { u"modelname"_s, u"locid"_s } },
    { u"loc_seen"_s, { u"nummer"_s, u"ort"_s, u"kommentar"_s, u"locseenid"_s, u"startdate"_s, u"locseendate"_s },
        { 18, 38, 1000 } },
    { u"loc_picture"_s, { u"pictAuxPath"_s, u"pictOrigPath"_s, u"pictHeight"_s, u"pictWidth"_s, u"locpictureid"_s } },
};

QChar separator()
{
    return u'\t'; // JSON has it only as an escape
}

QString valuesOf(const Table &table, const QString &prefix = {})
{
    return u"json_array("_s + prefix + table.columns.join(u',' + prefix) + u')';
}

void run(const QString &statement, const QSqlDatabase &database = QSqlDatabase::database())
{
    QSqlQuery query(database);
    if (!query.exec(statement)) {
        qFatal("%s: %s", qUtf8Printable(statement), qUtf8Printable(query.lastError().text()));
    }
}

/// Calls `use` with a connection of its own to the catalogue in `folder`.
void withDatabase(const QString &folder, const std::function<void(const QSqlDatabase &)> &use)
{
    const QString name = u"rows"_s;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, name);
        database.setDatabaseName(folder + u"/Data/bahnakte.dat"_s);
        if (!database.open()) {
            qFatal("the catalogue could not be opened");
        }
        use(database);
    }
    QSqlDatabase::removeDatabase(name);
}

} // namespace

void keepJournal()
{
    run(u"CREATE TEMP TABLE journal (number INTEGER, line TEXT, fields TEXT)"_s);
    const QString trigger = u"CREATE TEMP TRIGGER %1_%2 AFTER %2 ON main.%1 BEGIN "
                            "UPDATE counter SET number = number + 1; "
                            "INSERT INTO journal SELECT number, '%1 '||%3.id, %4 FROM counter; END"_s;
    for (const Table &table : Tables) {
        const QString values = valuesOf(table, u"NEW."_s);
        run(trigger.arg(table.name, u"INSERT"_s, u"NEW"_s, values));
        run(trigger.arg(table.name, u"UPDATE"_s, u"NEW"_s, values));
        run(trigger.arg(table.name, u"DELETE"_s, u"OLD"_s, u"NULL"_s));
    }
}

void reportJournal()
{
    QSqlQuery query(u"SELECT number, line, fields FROM journal"_s);
    while (query.next()) {
        ForkedRun::report(
            QStringList({ query.value(0).toString(), query.value(1).toString(), query.value(2).toString() })
                .join(separator()));
    }
}

QStringList addWrites(Writes &writes, const QStringList &journal)
{
    QStringList findings;
    for (const QString &line : journal) {
        const QStringList fields = line.split(separator());
        const int number = fields.value(0).toInt();
        if (writes.contains(number)) {
            findings.append(u"%1 is the number of two writes: "_s.arg(number) + line);
        }
        writes.insert(number, { fields.value(1), fields.value(2) });
    }
    return findings;
}

void follow(Rows &rows, const Writes &writes)
{
    for (const Write &write : writes) {
        if (write.values.isEmpty()) {
            rows.remove(write.row);
        } else {
            rows.insert(write.row, write.values);
        }
    }
}

/// Users only ever add to a text here. So a text that comes back after another has taken its place was typed by nobody:
/// a window has written what it had read before, over what the other had stored meanwhile. Not so where letters are
/// typed behind a text that is as long as it may be: all of them are cut off again, and that is an edit all the same.
QStringList takenBack(const Rows &before, const Writes &writes)
{
    QStringList findings;
    QMap<QString, QStringList> texts; // of each field, in order
    const auto add = [&](const QString &row, const QString &values) {
        const auto table = std::find_if(Tables.cbegin(), Tables.cend(),
            [&row](const Table &candidate) { return candidate.name == row.section(u' ', 0, 0); });
        const QJsonArray fields = QJsonDocument::fromJson(values.toUtf8()).array();
        for (int i = 0; i < table->fullAt.size() && i < fields.size(); ++i) {
            QStringList &former = texts[row + u' ' + table->columns.at(i)];
            const QString text = fields.at(i).toString();
            const bool isFull = text.size() >= table->fullAt.at(i);
            if (former.contains(text) && former.last() != text && !isFull) {
                findings.append(row + u' ' + table->columns.at(i) + u" is again "_s + text);
            }
            former.append(text);
        }
    };
    for (auto row = before.cbegin(); row != before.cend(); ++row) {
        add(row.key(), row.value());
    }
    for (const Write &write : writes) {
        add(write.row, write.values);
    }
    return findings;
}

Rows rowsOf(const QString &folder)
{
    Rows rows;
    withDatabase(folder, [&rows](const QSqlDatabase &database) {
        for (const Table &table : Tables) {
            QSqlQuery query(u"SELECT id, %1 FROM %2"_s.arg(valuesOf(table), table.name), database);
            while (query.next()) {
                rows.insert(table.name + u' ' + query.value(0).toString(), query.value(1).toString());
            }
        }
    });
    return rows;
}

void makeCounter(const QString &folder)
{
    withDatabase(folder, [](const QSqlDatabase &database) {
        run(u"CREATE TABLE counter (number INTEGER)"_s, database);
        run(u"INSERT INTO counter VALUES (0)"_s, database);
    });
}

int counterOf(const QString &folder)
{
    int number = -1;
    withDatabase(folder, [&number](const QSqlDatabase &database) {
        QSqlQuery query(u"SELECT number FROM counter"_s, database);
        number = query.next() ? query.value(0).toInt() : -1;
    });
    return number;
}
