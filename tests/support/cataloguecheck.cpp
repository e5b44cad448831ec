#include "tests/support/cataloguecheck.h"

#include <QDate>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QHash>
#include <QImage>
#include <QImageReader>
#include <QSet>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

using namespace Qt::StringLiterals;

namespace {

const QString ConnectionName = u"catalogue check"_s;

/// Whether the JPEG file has its end mark, behind which the program's writer leaves nothing. A file without it is cut,
/// though it is decoded into a picture of the full size with a grey lower part.
bool hasItsEnd(const QString &path)
{
    constexpr qint64 MarkSize = 2; // bytes
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.seek(file.size() - MarkSize) && file.readAll() == "\xFF\xD9";
}

/// The checks of one catalogue. Everything it reads, it reads through `m_database`, never through the program's own
/// connection or classes: an error there must not hide itself here.
class CatalogueCheck final
{
public:
    CatalogueCheck(const QString &folder, const QSqlDatabase &database)
        : m_folder(folder)
        , m_store(QDir(folder).filePath(u"Data/Pictures"_s))
        , m_database(database)
    { }

    [[nodiscard]] QStringList findings();

private:
    template <typename Take> void read(const QString &statement, Take take);
    void checkDatabase();
    void checkParents();
    void checkEntryPictures();
    void checkGroupPictures();
    void checkDates(const QString &column);
    void checkFiles();
    void checkOwner(const QString &owner, const QString &path);
    QSize checkCopy(const QString &owner, const QString &path);
    void add(const QString &finding) { m_findings.append(finding); }

    QDir m_folder;
    QDir m_store;
    QSqlDatabase m_database;
    QStringList m_findings;
    QSet<QString> m_copies; // absolute paths that rows name
    QHash<QString, QString> m_owners; // of each of them the first row in loc_picture
};

QStringList CatalogueCheck::findings()
{
    checkDatabase();
    checkParents();
    checkEntryPictures();
    checkGroupPictures();
    checkDates(u"startdate"_s);
    checkDates(u"locseendate"_s);
    checkFiles();
    return m_findings;
}

template <typename Take> void CatalogueCheck::read(const QString &statement, Take take)
{
    QSqlQuery query(m_database);
    if (!query.exec(statement)) {
        add(u"Anweisung \"%1\": %2"_s.arg(statement, query.lastError().text()));
        return;
    }
    while (query.next()) {
        take(query);
    }
}

void CatalogueCheck::checkDatabase()
{
    read(u"PRAGMA integrity_check"_s, [this](const QSqlQuery &row) {
        if (row.value(0).toString() != u"ok"_s) {
            add(u"Datenbank: "_s + row.value(0).toString());
        }
    });
}

void CatalogueCheck::checkParents()
{
    // A group's picture belongs to no entry: its row carries -1.
    read(u"SELECT f.\"table\", f.rowid, f.parent FROM pragma_foreign_key_check AS f WHERE NOT (f.\"table\" = "
         "'loc_picture' AND EXISTS (SELECT 1 FROM loc_picture AS p WHERE p.id = f.rowid AND p.locpictureid = -1 AND "
         "p.pictAuxPath LIKE './Data/Pictures/AuxFolder/%'))"_s,
        [this](const QSqlQuery &row) {
            add(u"%1 %2: die Zeile in %3 fehlt"_s.arg(
                row.value(0).toString(), row.value(1).toString(), row.value(2).toString()));
        });
}

void CatalogueCheck::checkEntryPictures()
{
    read(u"SELECT id, pictAuxPath, pictHeight, pictWidth FROM loc_picture"_s, [this](const QSqlQuery &row) {
        const QString owner = u"loc_picture "_s + row.value(0).toString();
        const QString path = row.value(1).toString();
        checkOwner(owner, path);
        const QSize size = checkCopy(owner, path);
        if (size.isValid() && size != QSize(row.value(3).toInt(), row.value(2).toInt())) {
            add(u"%1: Größe in der Datenbank stimmt nicht mit \"%2\" überein"_s.arg(owner, path));
        }
    });
}

void CatalogueCheck::checkGroupPictures()
{
    read(u"SELECT id, pictPath FROM locomotive WHERE pictPath <> ''"_s, [this](const QSqlQuery &row) {
        checkCopy(u"locomotive "_s + row.value(0).toString(), row.value(1).toString());
    });
}

void CatalogueCheck::checkDates(const QString &column)
{
    read(u"SELECT id, %1 FROM loc_seen WHERE %1 IS NOT NULL"_s.arg(column), [this, &column](const QSqlQuery &row) {
        const QString text = row.value(1).toString();
        if (text.size() != 10 || !QDate::fromString(text, u"yyyy-MM-dd"_s).isValid()) {
            add(u"loc_seen %1: %2 \"%3\" ist kein Datum"_s.arg(row.value(0).toString(), column, text));
        }
    });
}

void CatalogueCheck::checkFiles()
{
    QDirIterator files(m_store.path(), QDir::Files | QDir::System | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = QDir::cleanPath(files.next());
        if (!m_copies.contains(path)) {
            add(u"\"%1\" gehört zu keiner Zeile"_s.arg(m_folder.relativeFilePath(path)));
        }
    }
}

/// Each picture has a copy of its own: of one that two rows name, one row's picture was overwritten, or goes with the
/// other's.
void CatalogueCheck::checkOwner(const QString &owner, const QString &path)
{
    QString &first = m_owners[QDir::cleanPath(m_folder.absoluteFilePath(path))];
    if (first.isEmpty()) {
        first = owner;
    } else if (!path.isEmpty()) {
        add(u"%1: \"%2\" gehört auch zu %3"_s.arg(owner, path, first));
    }
}

/// The copy's size in pixels; invalid when something is wrong with it.
QSize CatalogueCheck::checkCopy(const QString &owner, const QString &path)
{
    const QString full = QDir::cleanPath(m_folder.absoluteFilePath(path));
    m_copies.insert(full);
    const QFileInfo file(full);
    const bool isInside = path.startsWith(u"./Data/Pictures/"_s) && !path.contains(u".."_s)
        && QFileInfo(file.path()).path() == m_store.path()
        && QFileInfo(file.canonicalPath()).path() == m_store.canonicalPath();
    if (!file.isFile()) {
        add(u"%1: \"%2\" fehlt"_s.arg(owner, path));
        return {};
    }
    if (!isInside) {
        add(u"%1: \"%2\" liegt nicht im Bilder-Ordner"_s.arg(owner, path));
        return {};
    }
    const QImage picture = QImageReader(full).read();
    if (picture.isNull()) {
        add(u"%1: \"%2\" ist kein lesbares Bild"_s.arg(owner, path));
        return {};
    }
    if (!hasItsEnd(full)) {
        add(u"%1: \"%2\" ist abgeschnitten"_s.arg(owner, path));
    }
    return picture.size();
}

} // namespace

QStringList catalogueFindings(const QString &folder)
{
    const QString file = QDir(folder).absoluteFilePath(u"Data/bahnakte.dat"_s);
    if (!QFile::exists(file)) {
        return { u"Keine Datenbank \"%1\""_s.arg(file) };
    }
    QStringList findings;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, ConnectionName);
        database.setConnectOptions(u"QSQLITE_OPEN_READONLY"_s);
        database.setDatabaseName(file);
        findings = database.open() ? CatalogueCheck(QDir(folder).absolutePath(), database).findings()
                                   : QStringList(u"Datenbank: "_s + database.lastError().text());
    }
    QSqlDatabase::removeDatabase(ConnectionName);
    return findings;
}
