#include "tests/faults/faultfolder.h"

#include "tests/support/cataloguecheck.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

using namespace Qt::StringLiterals;

namespace {

QString pattern()
{
    const QString memory = u"/dev/shm"_s;
    const bool isUsable = QFileInfo(memory).isDir() && QFileInfo(memory).isWritable();
    return (isUsable ? memory : QDir::tempPath()) + u"/bahnito-fault-XXXXXX"_s;
}

QString rowLine(const QSqlQuery &query)
{
    const QSqlRecord record = query.record();
    QStringList values;
    for (int i = 0; i < record.count(); ++i) {
        const QString name = record.fieldName(i);
        const QString value = record.value(i).toString();
        if (name == u"id"_s && record.contains(u"pictAuxPath"_s)) {
            continue; // nothing refers to it, and a picture that was given up has used one
        }
        const bool isCopy = (name == u"pictAuxPath"_s || name == u"pictPath"_s) && value.startsWith(u"./Data"_s);
        values.append(isCopy ? u"<Kopie>"_s : record.isNull(i) ? u"NULL"_s : value);
    }
    return values.join(u'|');
}

QStringList rowLines(const QString &table, const QSqlDatabase &database)
{
    QStringList lines;
    // The name of a copy says nothing, so a group's picture is known by its photograph.
    const QString source = u", (SELECT pictOrigPath FROM loc_picture WHERE pictAuxPath = pictPath) AS source"_s;
    QSqlQuery query(
        u"SELECT *%2 FROM %1 ORDER BY id"_s.arg(table, table == u"locomotive"_s ? source : QString()), database);
    if (!query.isActive()) {
        lines.append(query.lastError().text());
    }
    while (query.next()) {
        lines.append(u"  "_s + rowLine(query));
    }
    return lines;
}

/// Each value by its type and its bytes, so that 14201 is not '14201' and nothing hides behind a NUL.
QStringList exactLines(const QString &table, const QSqlDatabase &database)
{
    QStringList columns;
    const QSqlRecord record = database.record(table);
    for (int i = 0; i < record.count(); ++i) {
        const QString name = record.fieldName(i);
        if (table != u"settings"_s || name != u"value"_s) {
            columns.append(u"typeof(%1)||':'||hex(CAST(%1 AS BLOB))"_s.arg(name));
        }
    }
    QStringList lines;
    QSqlQuery query(u"SELECT %1 FROM %2 ORDER BY rowid"_s.arg(columns.join(u"||'|'||"_s), table), database);
    while (query.next()) {
        lines.append(u"  "_s + query.value(0).toString());
    }
    return lines;
}

QStringList firstColumn(const QString &statement, const QSqlDatabase &database)
{
    QStringList values;
    QSqlQuery query(statement, database);
    while (query.next()) {
        values.append(query.value(0).toString());
    }
    return values;
}

const QString OwnTables = u"SELECT name FROM sqlite_master WHERE name NOT LIKE 'sqlite%' ORDER BY rowid"_s;

QStringList allRows(const QSqlDatabase &database)
{
    QStringList lines;
    const QStringList tables = firstColumn(OwnTables, database);
    for (const QString &table : tables) {
        lines.append(table);
        lines += rowLines(table, database);
    }
    return lines;
}

QStringList rowsWithoutSettings(const QSqlDatabase &database)
{
    QStringList lines;
    const QStringList tables = firstColumn(OwnTables, database);
    for (const QString &table : tables) {
        if (table != u"settings"_s) {
            lines.append(table);
            lines += rowLines(table, database);
        }
    }
    return lines;
}

QStringList everythingButTheChoices(const QSqlDatabase &database)
{
    QStringList lines = firstColumn(u"PRAGMA user_version"_s, database)
        + firstColumn(u"SELECT type||'|'||name||'|'||tbl_name||'|'||sql FROM sqlite_master ORDER BY rowid"_s, database);
    const QStringList tables
        = firstColumn(u"SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY rowid"_s, database);
    for (const QString &table : tables) {
        lines.append(table);
        lines += exactLines(table, database);
    }
    return lines;
}

QString dump(const QString &folder, QStringList (*read)(const QSqlDatabase &database))
{
    const QString name = u"dump"_s;
    const QString file = folder + u"/Data/bahnakte.dat"_s;
    QStringList lines;
    if (QFile::exists(file)) {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, name);
        database.setDatabaseName(file);
        if (!database.open()) {
            qFatal("%s", qUtf8Printable(database.lastError().text()));
        }
        lines = read(database);
    }
    QSqlDatabase::removeDatabase(name);
    return lines.join(u'\n');
}

/// Ids of the pictures of the entry with this number, as long as the entry itself has its row.
QStringList picturesOfEntry(const QString &folder, const QString &number)
{
    const QString name = u"pictures of entry"_s;
    QStringList ids;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, name);
        database.setDatabaseName(folder + u"/Data/bahnakte.dat"_s);
        database.open();
        QSqlQuery query(database);
        query.prepare(u"SELECT p.id FROM loc_picture AS p JOIN loc_seen AS s ON s.id = p.locpictureid "
                      "WHERE s.nummer = :number"_s);
        query.bindValue(u":number"_s, number);
        query.exec();
        while (query.next()) {
            ids.append(query.value(0).toString());
        }
    }
    QSqlDatabase::removeDatabase(name);
    return ids;
}

} // namespace

FaultFolder::FaultFolder()
    : m_folder(pattern())
{
    if (!m_folder.isValid()) {
        qFatal("no folder for the test");
    }
}

void FaultFolder::copy(const QString &from, const QString &to)
{
    QDir(to).removeRecursively();
    QDir().mkpath(to);
    QDirIterator entries(
        from, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QFileInfo entry(entries.next());
        const QString target = to + u'/' + QDir(from).relativeFilePath(entry.filePath());
        if (entry.isSymLink()) {
            QFile::link(entry.symLinkTarget(), target);
        } else if (entry.isDir()) {
            QDir().mkpath(target);
        } else if (!QFile::copy(entry.filePath(), target)) {
            qFatal("cannot copy %s", qUtf8Printable(entry.filePath()));
        }
    }
}

bool isLongRun()
{
    return !qEnvironmentVariableIsEmpty("BAHNITO_TEST_LONG");
}

quint32 testSeed(quint32 quick)
{
    bool isGiven = false;
    const quint32 given = qEnvironmentVariable("BAHNITO_TEST_SEED").toUInt(&isGiven);
    const quint32 seed = isGiven ? given : isLongRun() ? QRandomGenerator::global()->generate() : quick;
    qInfo("seed %u", seed);
    return seed;
}

QString catalogueDump(const QString &folder, bool withSettings)
{
    return dump(folder, withSettings ? allRows : rowsWithoutSettings);
}

QString exactDump(const QString &folder)
{
    return dump(folder, everythingButTheChoices);
}

QStringList damages(const QString &folder, const QString &deleted)
{
    QStringList findings = catalogueFindings(folder);
    findings.removeIf([](const QString &finding) { return finding.endsWith(u"gehört zu keiner Zeile"_s); });
    for (const QString &picture : deleted.isEmpty() ? QStringList() : picturesOfEntry(folder, deleted)) {
        findings.removeIf([&picture](const QString &finding) {
            return finding.startsWith(u"loc_picture %1: "_s.arg(picture)) && finding.endsWith(u"fehlt"_s);
        });
    }
    return findings;
}

QByteArray folderDigest(const QString &folder)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    QStringList names;
    QDirIterator files(folder, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        names.append(files.next());
    }
    names.sort();
    for (const QString &name : std::as_const(names)) {
        QFile file(name);
        hash.addData(name.toUtf8());
        hash.addData(QFileInfo(file).lastModified().toString(Qt::ISODateWithMs).toUtf8());
        if (QFileInfo(file).isFile() && file.open(QIODevice::ReadOnly)) {
            hash.addData(&file);
        }
    }
    return hash.result();
}
