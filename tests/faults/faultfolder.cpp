#include "tests/faults/faultfolder.h"

#include "tests/support/cataloguecheck.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QDirIterator>
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
    QSqlQuery query(u"SELECT * FROM %1 ORDER BY id"_s.arg(table), database);
    if (!query.isActive()) {
        lines.append(query.lastError().text());
    }
    while (query.next()) {
        lines.append(u"  "_s + rowLine(query));
    }
    return lines;
}

/// Each value as SQLite itself would write it into a statement, which tells a text from a number and from a blob.
QStringList exactLines(const QString &table, const QSqlDatabase &database)
{
    QStringList columns;
    const QSqlRecord record = database.record(table);
    for (int i = 0; i < record.count(); ++i) {
        columns.append(u"quote(%1)"_s.arg(record.fieldName(i)));
    }
    QStringList lines;
    QSqlQuery query(u"SELECT %1 FROM %2 ORDER BY id"_s.arg(columns.join(u"||'|'||"_s), table), database);
    while (query.next()) {
        lines.append(u"  "_s + query.value(0).toString());
    }
    return lines;
}

using LinesOfTable = QStringList (*)(const QString &table, const QSqlDatabase &database);

QString dump(const QString &folder, bool withSettings, LinesOfTable linesOf)
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
        QSqlQuery tables(u"SELECT name FROM sqlite_master WHERE name NOT LIKE 'sqlite%' ORDER BY rowid"_s, database);
        while (tables.next()) {
            const QString table = tables.value(0).toString();
            if (withSettings || table != u"settings"_s) {
                lines.append(table);
                lines += linesOf(table, database);
            }
        }
    }
    QSqlDatabase::removeDatabase(name);
    return lines.join(u'\n');
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
    return qEnvironmentVariableIsSet("BAHNITO_TEST_LONG");
}

QString catalogueDump(const QString &folder, bool withSettings)
{
    return dump(folder, withSettings, rowLines);
}

QString exactDump(const QString &folder)
{
    return dump(folder, false, exactLines);
}

QStringList damages(const QString &folder)
{
    QStringList findings = catalogueFindings(folder);
    findings.removeIf([](const QString &finding) { return finding.endsWith(u"gehört zu keiner Zeile"_s); });
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
