#include "tests/faults/mutations.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int PageSize = 4096;

/// Most columns refuse NULL otherwise.
const QString AllowNull = u"PRAGMA writable_schema = ON; UPDATE sqlite_master SET sql = replace(sql, ' NOT NULL', '') "
                          "WHERE name = '%1'; PRAGMA writable_schema = RESET; "_s;

QString pick(const QStringList &list, QRandomGenerator &random)
{
    return list.at(random.bounded(list.size()));
}

/// "table.column" of a column that may hold anything.
QStringList pickColumn(QRandomGenerator &random)
{
    return pick({ u"locomotive.name"_s, u"locomotive.pictPath"_s, u"loc_model.modelname"_s, u"loc_model.locid"_s,
                    u"loc_seen.nummer"_s, u"loc_seen.locseenid"_s, u"loc_seen.ort"_s, u"loc_seen.kommentar"_s,
                    u"loc_seen.startdate"_s, u"loc_seen.locseendate"_s, u"loc_picture.pictAuxPath"_s,
                    u"loc_picture.pictOrigPath"_s, u"loc_picture.pictHeight"_s, u"loc_picture.pictWidth"_s,
                    u"loc_picture.locpictureid"_s, u"settings.value"_s, u"settings.name"_s },
        random)
        .split(u'.');
}

QString strangeValue(const QString &foreign, bool hugeTexts, QRandomGenerator &random)
{
    QStringList values { u"4294967297"_s, u"-1"_s, u"9223372036854775807"_s, u"-9223372036854775808"_s, u"1e300"_s,
        u"0"_s, u"x'00ff41'"_s, u"zeroblob(3000)"_s, u"NULL"_s, u"NULL"_s, u"NULL"_s, u"''"_s, u"'gestern'"_s,
        u"'9999-99-99'"_s, u"'2001-02-30'"_s, u"'0000-00-00'"_s, u"'<b>x</b><img src=\"file:///etc/passwd\">'"_s,
        u"'7''8'"_s, u"'7%2%1'"_s, u"'a&b\"c'"_s, u"char(0)"_s, u"'a'||char(0)||'b'"_s, u"char(55296)"_s,
        u"char(128169)"_s, u"char(10)||char(9)||char(8233)"_s, u"replace(hex(zeroblob(500)),'0','W')"_s, u"'../../'"_s,
        u"'..'"_s, u"'./Data/bahnakte.dat'"_s, u"'./Data/Pictures/../notiz.txt'"_s,
        u"'./Data/Pictures/Folder001/../../notiz.txt'"_s, u"'./Data/Pictures/Folder001/link.jpg'"_s,
        u"'./Data/Pictures/linked/foto.jpg'"_s, u"'./Data/Pictures/Folder001'"_s,
        u"'./Data/Pictures/Folder001/142010.jpg'"_s, u"'file://%1'"_s.arg(foreign), u"'%1'"_s.arg(foreign),
        u"'/dev/zero'"_s, u"'/proc/self/mem'"_s, u"'./Data/Pictures/Folder001/pipe.jpg'"_s };
    if (hugeTexts) {
        values += { u"replace(hex(zeroblob(2500000)),'00','wort ')"_s, u"hex(zeroblob(5000000))"_s };
    }
    return pick(values, random);
}

QString strangeStatement(const QString &foreign, bool hugeTexts, QRandomGenerator &random)
{
    const QString table
        = pick({ u"locomotive"_s, u"loc_model"_s, u"loc_seen"_s, u"loc_picture"_s, u"settings"_s }, random);
    const int kind = random.bounded(100);
    if (kind < 70) {
        const QStringList column = pickColumn(random);
        const QString where = random.bounded(2) == 0 ? QString() : u" WHERE id = %1"_s.arg(random.bounded(1, 4));
        const QString value = strangeValue(foreign, hugeTexts, random);
        return (value == u"NULL"_s ? AllowNull.arg(column.first()) : QString())
            + u"UPDATE %1 SET %2 = %3%4"_s.arg(column.first(), column.last(), value, where);
    }
    const QString id
        = pick({ u"4294967297"_s, u"-5"_s, u"-1"_s, u"0"_s, u"2147483648"_s, u"9223372036854775807"_s }, random);
    return pick(
        { u"UPDATE %1 SET id = %2 WHERE id = 1"_s.arg(table, id), u"DELETE FROM %1"_s.arg(table),
            u"DROP TABLE %1"_s.arg(table),
            u"CREATE TABLE t AS SELECT * FROM %1; DROP TABLE %1; "
            "ALTER TABLE t RENAME TO %1; UPDATE %1 SET id = NULL"_s.arg(table),
            u"CREATE TABLE t (id, x); INSERT INTO t VALUES (1, 2); DROP TABLE %1; ALTER TABLE t RENAME TO %1"_s.arg(
                table),
            u"ALTER TABLE %1 RENAME TO hidden; CREATE VIEW %1 AS SELECT * FROM hidden"_s.arg(table),
            u"ALTER TABLE %1 RENAME TO hidden; CREATE VIEW %1 AS SELECT * FROM hidden UNION ALL SELECT * FROM "
            "hidden"_s.arg(table),
            u"ALTER TABLE %1 RENAME TO hidden; CREATE VIEW %1 AS WITH RECURSIVE c(id) AS "
            "(SELECT 1 UNION ALL SELECT id + 1 FROM c) SELECT * FROM c"_s.arg(table),
            u"CREATE TRIGGER t0 BEFORE UPDATE ON %1 BEGIN INSERT INTO settings (category, name) "
            "WITH RECURSIVE c(id) AS (SELECT 1 UNION ALL SELECT id + 1 FROM c) SELECT id, id FROM c; END"_s.arg(table),
            u"CREATE TRIGGER t1 BEFORE DELETE ON %1 BEGIN SELECT RAISE(ABORT, '<b>nein</b>'); END"_s.arg(table),
            u"CREATE TRIGGER t2 AFTER DELETE ON %1 BEGIN DELETE FROM loc_seen; END"_s.arg(table),
            u"CREATE TRIGGER t3 AFTER UPDATE ON %1 BEGIN UPDATE loc_picture SET pictAuxPath = '%2'; END"_s.arg(
                table, foreign),
            u"CREATE TRIGGER t4 AFTER INSERT ON %1 BEGIN SELECT RAISE(ROLLBACK, 'zurück'); END"_s.arg(table),
            u"UPDATE loc_picture SET pictOrigPath = pictAuxPath"_s,
            u"UPDATE loc_picture SET pictAuxPath = pictOrigPath"_s,
            u"UPDATE loc_picture SET pictOrigPath = '%1', pictAuxPath = '%1'"_s.arg(foreign),
            u"PRAGMA user_version = 2147483647"_s,
            u"PRAGMA writable_schema = ON; UPDATE sqlite_master SET "
            "rootpage = 2 WHERE name = '%1'"_s.arg(table) },
        random);
}

void writeAt(QFile &file, qint64 at, const QByteArray &bytes)
{
    file.seek(at);
    file.write(bytes);
}

} // namespace

void Mutations::spoilBytes(const QString &path, QRandomGenerator &random)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite)) {
        qFatal("cannot open %s", qUtf8Printable(path));
    }
    const auto pages = int(std::max<qint64>(1, file.size() / PageSize));
    switch (random.bounded(8)) {
    case 0:
        file.resize(random.bounded(int(file.size()) + 1));
        break;
    case 1: { // one page in place of another
        file.seek(qint64(PageSize) * random.bounded(pages));
        const QByteArray page = file.read(PageSize);
        writeAt(file, qint64(PageSize) * random.bounded(pages), page);
        break;
    }
    case 2:
        writeAt(file, random.bounded(100), QByteArray(1, char(random.bounded(256)))); // the header
        break;
    default: // the start of a page, where its structure is, or anywhere
        for (int i = random.bounded(1, 12); i > 0; --i) {
            const int page = PageSize * random.bounded(pages);
            const int inPage = random.bounded(random.bounded(2) == 0 ? 40 : PageSize);
            writeAt(file, page + inPage, QByteArray(1, char(random.bounded(256))));
        }
    }
}

void Mutations::falsifyRows(const QString &file, const QString &foreign, bool hugeTexts, QRandomGenerator &random)
{
    QStringList all;
    for (int i = random.bounded(1, 5); i > 0; --i) {
        const QString strange = strangeStatement(foreign, hugeTexts, random);
        const bool isTrigger = strange.startsWith(u"CREATE TRIGGER"_s);
        all += isTrigger ? QStringList(strange) : strange.split(u"; "_s);
        if (strange.contains(u"RECURSIVE"_s)) {
            break; // without end: what came next would not come back
        }
    }
    run(file, all);
}

void Mutations::run(const QString &file, const QStringList &statements)
{
    const QString name = u"mutation"_s;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, name);
        database.setDatabaseName(file);
        if (!database.open()) {
            qFatal("cannot open %s", qUtf8Printable(file));
        }
        QSqlQuery(u"PRAGMA synchronous=OFF"_s, database);
        for (const QString &statement : statements) {
            QSqlQuery(statement, database);
        }
    }
    QSqlDatabase::removeDatabase(name);
}
