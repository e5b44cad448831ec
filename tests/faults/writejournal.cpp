#include "tests/faults/writejournal.h"

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
    QStringList columns; // beside the id
    QMap<QString, qsizetype> cutAt = {}; // the lengths of the texts that are typed
};

const QList<Table> Tables {
    { u"locomotive"_s, { u"name"_s, u"pictPath"_s }, { { u"name"_s, 38 } } },
    { u"loc_model"_s, { u"modelname"_s, u"locid"_s }, { { u"modelname"_s, 38 } } },
    { u"loc_seen"_s, { u"nummer"_s, u"ort"_s, u"kommentar"_s, u"locseenid"_s, u"startdate"_s, u"locseendate"_s },
        { { u"nummer"_s, 18 }, { u"ort"_s, 38 }, { u"kommentar"_s, 198 } } },
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

const Table &tableOf(const QString &row)
{
    const auto table = std::find_if(Tables.cbegin(), Tables.cend(),
        [&row](const Table &candidate) { return candidate.name == row.section(u' ', 0, 0); });
    if (table == Tables.cend()) {
        qFatal("no table of %s", qUtf8Printable(row));
    }
    return *table;
}

/// The values of a row by column.
QMap<QString, QString> parsed(const Table &table, const QString &values)
{
    QMap<QString, QString> parsed;
    const QJsonArray fields = QJsonDocument::fromJson(values.toUtf8()).array();
    for (int i = 0; i < table.columns.size() && i < fields.size(); ++i) {
        parsed.insert(table.columns.at(i), fields.at(i).toVariant().toString());
    }
    return parsed;
}

struct Note
{
    QString kind; // "INSERT loc_seen"
    Write write;
    QString formerValues; // of a row that was changed
};

bool holds(const Note &note, const Belief &belief)
{
    if (note.kind != belief.write) {
        return false;
    }
    const Table &table = tableOf(note.write.row);
    const QMap<QString, QString> stored = parsed(table, note.write.values);
    for (auto value = belief.values.cbegin(); value != belief.values.cend(); ++value) {
        const qsizetype length = table.cutAt.value(value.key(), value.value().size());
        if (stored.value(value.key()) != value.value().left(length)) {
            return false;
        }
    }
    const QMap<QString, QString> former = parsed(table, note.formerValues);
    for (const QString &column : table.columns) { // what the user has not touched stays
        const bool isChanged = former.contains(column) && former.value(column) != stored.value(column);
        if (isChanged && !belief.values.contains(column)) {
            return false;
        }
    }
    return true;
}

QList<Note> notesSince(qint64 &last)
{
    QList<Note> notes;
    QSqlQuery query(u"SELECT rowid, kind, line, fields, former FROM journal WHERE rowid > %1"_s.arg(last));
    while (query.next()) {
        last = query.value(0).toLongLong();
        notes.append({ query.value(1).toString(), { query.value(2).toString(), query.value(3).toString() },
            query.value(4).toString() });
    }
    return notes;
}

QString described(const Belief &belief)
{
    QString text = belief.write;
    for (const auto &[column, value] : belief.values.asKeyValueRange()) {
        text += u' ' + column + u'=' + value;
    }
    return text;
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
    run(u"CREATE TEMP TABLE journal (number INTEGER, line TEXT, fields TEXT, kind TEXT, former TEXT)"_s);
    const QString trigger = u"CREATE TEMP TRIGGER %1_%2 AFTER %2 ON main.%1 BEGIN "
                            "UPDATE counter SET number = number + 1; "
                            "INSERT INTO journal SELECT number, '%1 '||%3.id, %4, '%2 %1', %5 FROM counter; END"_s;
    for (const Table &table : Tables) {
        const QString values = valuesOf(table, u"NEW."_s);
        run(trigger.arg(table.name, u"INSERT"_s, u"NEW"_s, values, u"NULL"_s));
        run(trigger.arg(table.name, u"UPDATE"_s, u"NEW"_s, values, valuesOf(table, u"OLD."_s)));
        run(trigger.arg(table.name, u"DELETE"_s, u"OLD"_s, u"NULL"_s, u"NULL"_s));
    }
}

QStringList disappointments(const QList<Belief> &beliefs)
{
    // A picture is also stored without a save, and an entry has edits that the user has not made in a field.
    const QStringList savedOnly { u"INSERT locomotive"_s, u"INSERT loc_model"_s, u"UPDATE loc_model"_s,
        u"INSERT loc_seen"_s };
    static qint64 last = 0;
    QStringList findings;
    QList<Note> notes = notesSince(last);
    for (const Belief &belief : beliefs) {
        const auto held
            = std::find_if(notes.cbegin(), notes.cend(), [&belief](const Note &note) { return holds(note, belief); });
        if (held == notes.cend()) {
            findings.append(u"not stored: "_s + described(belief));
        } else {
            notes.erase(held);
        }
    }
    for (const Note &note : std::as_const(notes)) {
        if (!findings.isEmpty() || savedOnly.contains(note.kind)) {
            findings.append(u"not saved: %1 %2 %3, before %4"_s.arg(
                note.kind, note.write.row, note.write.values, note.formerValues));
        }
    }
    return findings;
}

QStringList journal()
{
    QStringList lines;
    QSqlQuery query(u"SELECT number, line, fields, kind FROM journal"_s);
    while (query.next()) {
        const QStringList fields { query.value(0).toString(), query.value(1).toString(), query.value(2).toString(),
            query.value(3).toString() };
        lines.append(fields.join(separator()));
    }
    return lines;
}

QStringList kindsOf(const QStringList &journal)
{
    QMap<QString, int> counts;
    for (const QString &line : journal) {
        ++counts[line.section(separator(), 3)];
    }
    QStringList kinds;
    for (const auto &[kind, count] : counts.asKeyValueRange()) {
        kinds.append(QString::number(count) + u' ' + kind);
    }
    return kinds;
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

/// Users only ever add to a text here, and choose each day once. So a value that comes back after another has taken its
/// place was given by nobody: a window has written what it had read before, over what the other had stored meanwhile.
/// Not so where letters are typed behind a text that is as long as it may be: all of them are cut off again, and that
/// is an edit all the same. And the day of the photographs comes with each of them.
QStringList takenBack(const Rows &before, const Writes &writes)
{
    const QStringList watched { u"nummer"_s, u"ort"_s, u"kommentar"_s, u"locseendate"_s };
    QStringList findings;
    QMap<QString, QStringList> former; // of each field, in order
    const auto mayComeBack = [](const Table &table, const QString &column, const QString &value) {
        const bool isFull = column != u"kommentar"_s // into which is typed at its beginning
            && table.cutAt.contains(column) && value.size() >= table.cutAt.value(column);
        return isFull || (column == u"locseendate"_s && value == u"2001-05-17"_s);
    };
    const auto add = [&](const QString &row, const QString &values) {
        const Table &table = tableOf(row);
        const QMap<QString, QString> fields = parsed(table, values);
        for (const QString &column : watched) {
            if (!fields.contains(column)) {
                continue;
            }
            QStringList &formerValues = former[row + u' ' + column];
            const QString value = fields.value(column);
            if (formerValues.contains(value) && formerValues.last() != value && !mayComeBack(table, column, value)) {
                findings.append(row + u' ' + column + u" is again "_s + value);
            }
            formerValues.append(value);
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
