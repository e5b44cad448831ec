#include "store/catalogquery.h"
#include "store/database.h"
#include "store/statement.h"
#include "tests/support/modalscript.h"
#include "tests/support/testcatalogue.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMessageBox>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

class TestDatabase final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_catalogue = std::make_unique<TestCatalogue>(TestCatalogue::FoldersOnly); }
    void cleanup() { m_catalogue.reset(); }

    void connectionIsTheDefaultOneOnTheFixedFile();
    void connectionIsTunedWithoutChangingTheFile();
    void viewsAndTriggersOfTheFileAreNotFollowed();
    void failedConnectionShowsTheDriversText();
    void newCatalogueHasExactlyTheseTables_data();
    void newCatalogueHasExactlyTheseTables();
    void newCatalogueHoldsFourSettingsRowsAndNothingElse();
    void makingTheTablesAgainStartsAfresh();
    void tablesOfAnotherProgramAreKept();
    void tablesAreMadeWhereDropsFail();
    void nothingIsLeftOpenAfterTheTablesAreMade();
    void idsOfDeletedRowsAreNeverReused();
    void entryOfAMissingClassStillLoads();
    void computedColumnsAreNotComputed_data();
    void computedColumnsAreNotComputed();
    void emptinessIsProvedNotAssumed();

private:
    [[nodiscard]] QVariant value(const QString &statement) const { return m_catalogue->value(statement); }
    void openWithTables();

    std::unique_ptr<TestCatalogue> m_catalogue;
};

void TestDatabase::openWithTables()
{
    QVERIFY(connectDatabase());
    createTables();
}

void TestDatabase::connectionIsTheDefaultOneOnTheFixedFile()
{
    QVERIFY(connectDatabase());
    const QSqlDatabase database = QSqlDatabase::database();
    QVERIFY(database.isOpen());
    QCOMPARE(database.driverName(), u"QSQLITE"_s);
    QCOMPARE(database.databaseName(), u"./Data/bahnakte.dat"_s);
    QCOMPARE(databasePath(), u"./Data/bahnakte.dat"_s);
    QVERIFY(QFile::exists(m_catalogue->path(u"Data/bahnakte.dat"_s)));
}

void TestDatabase::connectionIsTunedWithoutChangingTheFile()
{
    QVERIFY(connectDatabase());
    QCOMPARE(value(u"PRAGMA busy_timeout"_s).toInt(), 1000);
    QCOMPARE(value(u"PRAGMA synchronous"_s).toInt(), 3);
    QCOMPARE(value(u"PRAGMA trusted_schema"_s).toInt(), 0);
    QCOMPARE(value(u"PRAGMA cell_size_check"_s).toInt(), 1);
    QCOMPARE(value(u"PRAGMA foreign_keys"_s).toInt(), 0);
    QCOMPARE(value(u"PRAGMA journal_mode"_s).toString(), u"delete"_s);
    QCOMPARE(QFile(databasePath()).size(), 0);
}

void TestDatabase::viewsAndTriggersOfTheFileAreNotFollowed()
{
    openWithTables();
    m_catalogue->addGroup(u"Krokodile"_s);
    QSqlQuery query;
    QVERIFY(query.exec(u"CREATE TRIGGER t AFTER UPDATE ON settings BEGIN DELETE FROM locomotive; END"_s));
    QVERIFY(query.exec(u"UPDATE settings SET value = 1"_s));
    QCOMPARE(value(u"SELECT COUNT(*) FROM locomotive"_s).toInt(), 1);
    QVERIFY(query.exec(u"CREATE VIEW groups AS SELECT * FROM locomotive"_s));
    QVERIFY(!query.exec(u"SELECT * FROM groups"_s));
    QVERIFY2(query.lastError().text().contains(u"groups"_s), qUtf8Printable(query.lastError().text()));
}

void TestDatabase::failedConnectionShowsTheDriversText()
{
    QVERIFY(QDir().mkdir(databasePath())); // no file can be opened under the name of a folder
    ModalScript script;
    QString text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    bool hasParent = true;
    script.then([&](QWidget *widget) {
        auto *box = qobject_cast<QMessageBox *>(widget);
        QVERIFY(box != nullptr);
        QCOMPARE(box->windowTitle(), u"Database Error"_s);
        QCOMPARE(box->standardButtons(), QMessageBox::Ok);
        text = box->text();
        icon = box->icon();
        hasParent = box->parentWidget() != nullptr;
        script.click(box, u"OK"_s);
    });
    QVERIFY(!connectDatabase());
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(
        text, QSqlDatabase::database(QLatin1StringView(QSqlDatabase::defaultConnection), false).lastError().text());
    QVERIFY(text.contains(u"unable to open"_s));
    QCOMPARE(icon, QMessageBox::Warning);
    QVERIFY(!hasParent);
}

void TestDatabase::newCatalogueHasExactlyTheseTables_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("statement");
    const auto row = [](const char *table, const QString &statement) {
        QTest::newRow(table) << QString::fromLatin1(table) << statement;
    };
    row("locomotive",
        u"CREATE TABLE locomotive (id INTEGER PRIMARY KEY AUTOINCREMENT, name VARCHAR(40) NOT NULL, pictPath "
        "VARCHAR(80))"_s);
    row("loc_model",
        u"CREATE TABLE loc_model (id INTEGER PRIMARY KEY AUTOINCREMENT, modelname VARCHAR(40) NOT NULL, locid INTEGER "
        "NOT NULL, FOREIGN KEY (locid) REFERENCES locomotive)"_s);
    row("loc_seen",
        u"CREATE TABLE loc_seen (id INTEGER PRIMARY KEY AUTOINCREMENT, nummer VARCHAR(20) NOT NULL, locseenid INTEGER "
        "NOT NULL, ort VARCHAR(40) NOT NULL, kommentar VARCHAR(200) NOT NULL, startdate DATE, locseendate DATE, anlass "
        "VARCHAR(80), orignummer VARCHAR(20), reserveint1 INTEGER, reserveint2 INTEGER, reservestr1 VARCHAR(80), "
        "reservestr2 VARCHAR(120), FOREIGN KEY (locseenid) REFERENCES loc_model)"_s);
    row("loc_picture",
        u"CREATE TABLE loc_picture (id INTEGER PRIMARY KEY AUTOINCREMENT, pictAuxPath VARCHAR(80), pictOrigPath "
        "VARCHAR(80), pictHeight INTEGER,pictWidth INTEGER,locpictureid INTEGER NOT NULL, FOREIGN KEY (locpictureid) "
        "REFERENCES loc_seen)"_s);
    row("settings",
        u"CREATE TABLE settings (id INTEGER PRIMARY KEY AUTOINCREMENT, category VARCHAR(40) NOT NULL, name VARCHAR(40) "
        "NOT NULL, value INTEGER)"_s);
}

void TestDatabase::newCatalogueHasExactlyTheseTables()
{
    QFETCH(const QString, table);
    QFETCH(const QString, statement);
    openWithTables();
    QCOMPARE(value(u"SELECT sql FROM sqlite_master WHERE name = '%1'"_s.arg(table)).toString(), statement);
    QCOMPARE(value(u"SELECT COUNT(*) FROM sqlite_master WHERE name NOT LIKE 'sqlite_%'"_s).toInt(), 5);
}

void TestDatabase::newCatalogueHoldsFourSettingsRowsAndNothingElse()
{
    openWithTables();
    QCOMPARE(
        value(u"SELECT group_concat(id || category || '/' || name || '=' || value, ' ') FROM settings"_s).toString(),
        u"1COLOR-SETTING/BG_COLOR=0 2QUERY-Type/SingleOrMulti=0 3QUERY-Type/InclPictures=0 4QUERY-Type/Sort=0"_s);
    for (const QString &table : { u"locomotive"_s, u"loc_model"_s, u"loc_seen"_s, u"loc_picture"_s }) {
        QCOMPARE(value(u"SELECT COUNT(*) FROM "_s + table).toInt(), 0);
    }
}

void TestDatabase::makingTheTablesAgainStartsAfresh()
{
    openWithTables();
    m_catalogue->addGroup(u"Krokodile"_s);
    QVERIFY(executeWrite(u"UPDATE settings SET value = 3"_s).done);
    createTables();
    QCOMPARE(value(u"SELECT COUNT(*) FROM locomotive"_s).toInt(), 0);
    QCOMPARE(value(u"SELECT COUNT(*) || '/' || SUM(value) FROM settings"_s).toString(), u"4/0"_s);
}

void TestDatabase::tablesOfAnotherProgramAreKept()
{
    QVERIFY(connectDatabase());
    createTables(Existing::Keep);
    QCOMPARE(value(u"SELECT COUNT(*) FROM settings"_s).toInt(), 4);
    m_catalogue->addGroup(u"Krokodile"_s);
    createTables(Existing::Keep);
    QCOMPARE(value(u"SELECT COUNT(*) FROM locomotive"_s).toInt(), 1);
    m_catalogue->addGroup(u"Köfferli"_s); // no transaction is left open
}

void TestDatabase::tablesAreMadeWhereDropsFail()
{
    QVERIFY(connectDatabase());
    QVERIFY(QSqlQuery().exec(u"CREATE VIEW loc_seen AS SELECT 1 AS id"_s)); // DROP TABLE fails, CREATE TABLE as well
    createTables();
    for (const QString &table : { u"locomotive"_s, u"loc_model"_s, u"loc_picture"_s }) {
        QCOMPARE(value(u"SELECT COUNT(*) FROM "_s + table).toString(), u"0"_s);
    }
    QCOMPARE(value(u"SELECT COUNT(*) FROM settings"_s).toInt(), 4);
}

void TestDatabase::nothingIsLeftOpenAfterTheTablesAreMade()
{
    openWithTables();
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"other"_s);
        other.setDatabaseName(databasePath());
        QVERIFY(other.open());
        QSqlQuery query(other);
        QVERIFY(query.exec(u"SELECT COUNT(*) FROM settings"_s) && query.next());
        QCOMPARE(query.value(0).toInt(), 4);
        query.finish();
        QVERIFY(query.exec(u"INSERT INTO locomotive (name) VALUES ('x')"_s));
    }
    QSqlDatabase::removeDatabase(u"other"_s);
}

void TestDatabase::idsOfDeletedRowsAreNeverReused()
{
    openWithTables();
    m_catalogue->addGroup(u"Krokodile"_s);
    const int newest = m_catalogue->addGroup(u"Köfferli"_s);
    QVERIFY(executeWrite(u"DELETE FROM locomotive WHERE id = %1"_s.arg(newest)).done);
    QVERIFY(m_catalogue->addGroup(u"Bo-Bo"_s) > newest);
}

void TestDatabase::entryOfAMissingClassStillLoads()
{
    openWithTables();
    const int model = m_catalogue->addModel(u"Ae 6/6"_s, m_catalogue->addGroup(u"Gotthard"_s));
    const int entry = m_catalogue->addEntry(u"11407"_s, model);
    QVERIFY(executeWrite(u"DELETE FROM loc_model"_s).done);
    QList<QSqlRecord> rows;
    CatalogQuery::instance().entryById(rows, entry);
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows.first().value(u"nummer"_s).toString(), u"11407"_s);
}

void TestDatabase::computedColumnsAreNotComputed_data()
{
    QTest::addColumn<QString>("expression");
    QTest::newRow("memory") << u"hex(zeroblob(400000000))"_s;
    QTest::newRow("work") << u"printf('%.*c', 2000000000, x)"_s;
}

/// A file of a few kilobytes could bring gigabytes with them.
void TestDatabase::computedColumnsAreNotComputed()
{
    QFETCH(const QString, expression);
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"other"_s);
        other.setDatabaseName(databasePath());
        QVERIFY(other.open());
        QSqlQuery query(other);
        QVERIFY(query.exec(u"CREATE TABLE Locomotive (id INTEGER PRIMARY KEY, x, pictPath)"_s));
        QVERIFY(query.exec(u"INSERT INTO locomotive (x, pictPath) VALUES ('a', 'b')"_s));
        QVERIFY(query.exec(u"ALTER TABLE Locomotive ADD COLUMN name AS (%1)"_s.arg(expression)));
        // Two names for one table, as only a forger makes them.
        QVERIFY(query.exec(u"PRAGMA writable_schema=ON"_s));
        QVERIFY(query.exec(u"UPDATE sqlite_master SET name = 'LOCOMOTIVE', tbl_name = 'LOCOMOTIVE'"_s));
    }
    QSqlDatabase::removeDatabase(u"other"_s);
    QVERIFY(connectDatabase());
    QList<QSqlRecord> rows;
    CatalogQuery::instance().groups(rows, 0);
    QCOMPARE(rows.size(), 1);
    QVERIFY(rows.first().value(u"name"_s).isNull());
    QCOMPARE(rows.first().value(u"pictPath"_s).toString(), u"b"_s);
    QVERIFY(!executeWrite(u"UPDATE locomotive SET x = 'c'"_s).done); // which would compute them, too
    QVERIFY(!executeWrite(u"INSERT INTO locomotive (x) VALUES ('d')"_s).done);
    QVERIFY(executeWrite(u"DELETE FROM locomotive"_s).done);
}

void TestDatabase::emptinessIsProvedNotAssumed()
{
    QVERIFY(connectDatabase());
    QVERIFY(isDatabaseEmpty());
    createTables();
    QVERIFY(!isDatabaseEmpty());
    QSqlDatabase::database().close();
    QFile file(databasePath());
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QVERIFY(file.write(QByteArray(4096, 'x')) == 4096);
    file.close();
    QVERIFY(connectDatabase());
    QVERIFY(!isDatabaseEmpty()); // unreadable is not empty
}

BAHNITO_TEST_MAIN(TestDatabase)
#include "tst_database.moc"
