#include "store/catalogquery.h"
#include "store/statement.h"
#include "tests/support/testcatalogue.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

class TestCatalogQuery final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_catalogue.reset(); }

    void countsOfAnEmptyCatalogueAreZero();
    void entriesAndPicturesAreCounted();
    void auxiliaryPicturesAreNoStoredPictures();
    void modelsAreCountedOfOneGroupOrOfAll();
    void picturesOfEntryAreAppended();
    void picturesOfSeveralEntriesComeWithOneCall();
    void failedReadOfPicturesIsNotTakenForNone();
    void entryByIdAppendsAtMostOneRow();
    void modelsOfGroupAreOrderedByName();
    void groupsAreOrderedByName();
    void storedPictureIsPickedByItsPosition_data();
    void storedPictureIsPickedByItsPosition();
    void allEntriesStandOldestFirst();
    void entriesByNumberStandOldestFirst();
    void everyFailedReadIsAnEmptyResult();
    void noReadKeepsTheFileLocked();

private:
    [[nodiscard]] static QStringList column(const QList<QSqlRecord> &rows, const QString &name);
    static void write(const QString &statement) { QVERIFY(executeWrite(statement).done); }

    std::unique_ptr<TestCatalogue> m_catalogue;
    CatalogQuery *m_query = nullptr;
};

void TestCatalogQuery::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    m_query = &CatalogQuery::instance();
}

QStringList TestCatalogQuery::column(const QList<QSqlRecord> &rows, const QString &name)
{
    QStringList texts;
    for (const QSqlRecord &row : rows) {
        texts.append(row.value(name).toString());
    }
    return texts;
}

void TestCatalogQuery::countsOfAnEmptyCatalogueAreZero()
{
    QCOMPARE(m_query->countEntries(), 0);
    QCOMPARE(m_query->countStoredPictures(), 0);
    QCOMPARE(m_query->countPicturesOfEntry(1), 0);
    QCOMPARE(m_query->countEntriesOfModel(1), 0);
    QCOMPARE(m_query->countGroups(), 0);
    QCOMPARE(m_query->countModels(0), 0);
    QCOMPARE(m_query->countModels(1), 0);
    QCOMPARE(m_query->countEntriesByNumber(u"11407"_s, 1), 0);
}

void TestCatalogQuery::entriesAndPicturesAreCounted()
{
    const int first = m_catalogue->addEntry(u"11407"_s, 1);
    const int second = m_catalogue->addEntry(u"11408"_s, 2);
    m_catalogue->addPicture(first);
    m_catalogue->addPicture(first);
    QCOMPARE(m_query->countEntries(), 2);
    QCOMPARE(m_query->countStoredPictures(), 2);
    QCOMPARE(m_query->countPicturesOfEntry(first), 2);
    QCOMPARE(m_query->countPicturesOfEntry(second), 0);
    QCOMPARE(m_query->countEntriesOfModel(2), 1);
    QCOMPARE(m_query->countEntriesOfModel(3), 0);
}

void TestCatalogQuery::auxiliaryPicturesAreNoStoredPictures()
{
    const auto add = [](const QString &path) {
        write(u"INSERT INTO loc_picture (pictAuxPath, locpictureid) VALUES ('%1', -1)"_s.arg(path));
    };
    add(u"./Data/Pictures/AuxFolder/1.jpg"_s);
    add(u"./Data/Pictures/Folder001/xAuxFolderx.jpg"_s);
    add(u"./Data/Pictures/Folder001/2.jpg"_s);
    QCOMPARE(m_query->countStoredPictures(), 1);
    QCOMPARE(m_query->countPicturesOfEntry(-1), 3);
    QList<QSqlRecord> rows;
    m_query->storedPictureAt(rows, 0);
    QCOMPARE(column(rows, u"pictAuxPath"_s), QStringList(u"./Data/Pictures/Folder001/2.jpg"_s));
}

void TestCatalogQuery::modelsAreCountedOfOneGroupOrOfAll()
{
    const int first = m_catalogue->addGroup(u"Krokodile"_s);
    const int second = m_catalogue->addGroup(u"Gotthard"_s);
    m_catalogue->addModel(u"Ce 6/8 II"_s, first);
    m_catalogue->addModel(u"Ce 6/8 III"_s, first);
    m_catalogue->addModel(u"Ae 6/6"_s, second);
    QCOMPARE(m_query->countGroups(), 2);
    QCOMPARE(m_query->countModels(0), 3);
    QCOMPARE(m_query->countModels(first), 2);
    QCOMPARE(m_query->countModels(second), 1);
    QCOMPARE(m_query->countModels(99), 0);
}

void TestCatalogQuery::picturesOfEntryAreAppended()
{
    const int entry = m_catalogue->addEntry(u"11407"_s, 1);
    const int picture = m_catalogue->addPicture(entry);
    const int other = m_catalogue->addPicture(entry);
    m_catalogue->addPicture(entry + 1);
    QList<QSqlRecord> rows { QSqlRecord() };
    m_query->picturesOfEntry(rows, entry);
    QCOMPARE(column(rows, u"id"_s), QStringList({ QString(), QString::number(picture), QString::number(other) }));
    QCOMPARE(rows.last().value(u"pictHeight"_s).toInt(), 50);
    QCOMPARE(rows.last().value(u"pictWidth"_s).toInt(), 75);
}

void TestCatalogQuery::picturesOfSeveralEntriesComeWithOneCall()
{
    const int first = m_catalogue->addEntry(u"11407"_s, 1);
    const int second = m_catalogue->addEntry(u"11408"_s, 1);
    m_catalogue->addPicture(second);
    m_catalogue->addPicture(first);
    m_catalogue->addPicture(second);
    m_catalogue->addPicture(77);
    const QHash<int, QList<QSqlRecord>> pictures = m_query->picturesOfEntries({ first, second, 99 }).value();
    QCOMPARE(pictures.size(), 2);
    QCOMPARE(column(pictures.value(first), u"id"_s), QStringList({ u"2"_s }));
    QCOMPARE(column(pictures.value(second), u"id"_s), QStringList({ u"1"_s, u"3"_s }));
    QVERIFY(m_query->picturesOfEntries({}).value().isEmpty());
}

/// A picture row that cannot be read stands behind one that can: the statement fails when some rows have come.
void TestCatalogQuery::failedReadOfPicturesIsNotTakenForNone()
{
    const int entry = m_catalogue->addEntry(u"11407"_s, 1);
    m_catalogue->addPicture(entry);
    const int unreadable = m_catalogue->addPicture(entry + 1);
    write(u"CREATE TEMP VIEW loc_picture AS SELECT id, locpictureid, "
          "CASE id WHEN %1 THEN abs(-9223372036854775807 - 1) ELSE pictAuxPath END AS pictAuxPath "
          "FROM main.loc_picture"_s.arg(unreadable));
    QVERIFY(!m_query->picturesOfEntries({ entry, entry + 1 }).has_value());
    QCOMPARE(m_query->picturesOfEntries({ entry }).value().value(entry).size(), 1);
    write(u"DROP VIEW temp.loc_picture"_s);
    QCOMPARE(m_query->picturesOfEntries({ entry, entry + 1 }).value().size(), 2);
    write(u"DROP TABLE loc_picture"_s);
    QVERIFY(!m_query->picturesOfEntries({ entry }).has_value());
}

void TestCatalogQuery::entryByIdAppendsAtMostOneRow()
{
    m_catalogue->addEntry(u"11407"_s, 1);
    const int entry = m_catalogue->addEntry(u"11408"_s, 1, u"Bern"_s, { 1999, 12, 31 });
    QList<QSqlRecord> rows;
    m_query->entryById(rows, entry);
    QCOMPARE(column(rows, u"nummer"_s), QStringList(u"11408"_s));
    QCOMPARE(column(rows, u"locseendate"_s), QStringList(u"1999-12-31"_s));
    m_query->entryById(rows, 99);
    QCOMPARE(rows.size(), 1);
}

void TestCatalogQuery::modelsOfGroupAreOrderedByName()
{
    m_catalogue->addModel(u"Re 4/4 II"_s, 1);
    m_catalogue->addModel(u"BR 103"_s, 2);
    m_catalogue->addModel(u"Ae 6/6"_s, 1);
    QList<QSqlRecord> rows;
    m_query->modelsOfGroup(rows, 1);
    QCOMPARE(column(rows, u"modelname"_s), QStringList({ u"Ae 6/6"_s, u"Re 4/4 II"_s }));
    m_query->modelsOfGroup(rows, 0);
    QCOMPARE(column(rows, u"modelname"_s).mid(2), QStringList({ u"Ae 6/6"_s, u"BR 103"_s, u"Re 4/4 II"_s }));
    m_query->modelsOfGroup(rows, 3);
    QCOMPARE(rows.size(), 5);
}

void TestCatalogQuery::groupsAreOrderedByName()
{
    m_catalogue->addGroup(u"Krokodile"_s);
    const int gotthard = m_catalogue->addGroup(u"Gotthard"_s);
    QList<QSqlRecord> rows;
    m_query->groups(rows, 0);
    QCOMPARE(column(rows, u"name"_s), QStringList({ u"Gotthard"_s, u"Krokodile"_s }));
    rows.clear();
    m_query->groups(rows, gotthard);
    QCOMPARE(column(rows, u"name"_s), QStringList(u"Gotthard"_s));
    m_query->groups(rows, 99);
    QCOMPARE(rows.size(), 1);
}

void TestCatalogQuery::storedPictureIsPickedByItsPosition_data()
{
    QTest::addColumn<int>("pictures");
    QTest::addColumn<int>("position");
    QTest::addColumn<QStringList>("ids");
    QTest::newRow("none") << 0 << 5 << QStringList();
    QTest::newRow("first") << 3 << 0 << QStringList(u"1"_s);
    QTest::newRow("second") << 3 << 1 << QStringList(u"2"_s);
    QTest::newRow("last") << 3 << 2 << QStringList(u"3"_s);
    QTest::newRow("just beyond the end") << 3 << 3 << QStringList(u"1"_s);
    QTest::newRow("far beyond the end") << 3 << 5 << QStringList(u"1"_s);
    QTest::newRow("negative") << 3 << -1 << QStringList(u"1"_s);
}

void TestCatalogQuery::storedPictureIsPickedByItsPosition()
{
    QFETCH(const int, pictures);
    QFETCH(const int, position);
    for (int i = 0; i < pictures; ++i) {
        m_catalogue->addPicture(1);
    }
    QList<QSqlRecord> rows;
    m_query->storedPictureAt(rows, position);
    QTEST(column(rows, u"id"_s), "ids");
}

void TestCatalogQuery::allEntriesStandOldestFirst()
{
    m_catalogue->addEntry(u"b"_s, 1, u"Bern"_s, { 2001, 1, 1 });
    m_catalogue->addEntry(u"a"_s, 2, u"Bern"_s, { 1999, 12, 31 });
    m_catalogue->addEntry(u"c"_s, 1, u"Bern"_s, { 2001, 11, 1 });
    QList<QSqlRecord> rows;
    m_query->allEntries(rows);
    QCOMPARE(column(rows, u"nummer"_s), QStringList({ u"a"_s, u"b"_s, u"c"_s }));
}

void TestCatalogQuery::entriesByNumberStandOldestFirst()
{
    m_catalogue->addEntry(u"11407"_s, 1, u"Bern"_s, { 2003, 1, 1 });
    m_catalogue->addEntry(u"11407"_s, 1, u"Thun"_s, { 2002, 1, 1 });
    m_catalogue->addEntry(u"11407"_s, 2, u"Chur"_s);
    m_catalogue->addEntry(u"11408"_s, 1, u"Genf"_s);
    QList<QSqlRecord> rows;
    m_query->entriesByNumber(rows, u"11407"_s, 1);
    QCOMPARE(column(rows, u"ort"_s), QStringList({ u"Thun"_s, u"Bern"_s }));
    QCOMPARE(m_query->countEntriesByNumber(u"11407"_s, 1), 2);
    QCOMPARE(m_query->countEntriesByNumber(u"11407"_s, 2), 1);
    QCOMPARE(m_query->countEntriesByNumber(u"1140"_s, 1), 0);
}

void TestCatalogQuery::everyFailedReadIsAnEmptyResult()
{
    for (const QString &table : { u"locomotive"_s, u"loc_model"_s, u"loc_seen"_s, u"loc_picture"_s }) {
        write(u"DROP TABLE "_s + table);
    }
    countsOfAnEmptyCatalogueAreZero();
    QList<QSqlRecord> rows { QSqlRecord() };
    m_query->picturesOfEntry(rows, 1);
    m_query->entryById(rows, 1);
    m_query->modelsOfGroup(rows, 0);
    m_query->groups(rows, 0);
    m_query->allEntries(rows);
    m_query->entriesByNumber(rows, u"1"_s, 1);
    m_query->storedPictureAt(rows, 0);
    m_query->reloadModels();
    QCOMPARE(rows.size(), 1);
    QCOMPARE(m_query->modelIdOfNumber(u"1"_s), 0);
    QCOMPARE(m_query->modelIdOfEntry(1), 0);
    QCOMPARE(m_query->modelIdByName(u"x"_s, 1), 0);
    QCOMPARE(m_query->modelName(1), QString());
    QCOMPARE(m_query->modelNameCached(1), QString());
    QCOMPARE(m_query->entryNumber(1), u"000"_s);
}

void TestCatalogQuery::noReadKeepsTheFileLocked()
{
    write(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 400) "
          "INSERT INTO loc_seen (nummer, locseenid, ort, kommentar) SELECT '1', 1, '', '' FROM n"_s);
    QList<QSqlRecord> rows;
    m_query->entryById(rows, 1);
    m_query->storedPictureAt(rows, 0);
    QCOMPARE(m_query->modelIdOfNumber(u"1"_s), 1);
    QCOMPARE(m_query->entryNumber(1), u"1"_s);
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"other"_s);
        other.setConnectOptions(u"QSQLITE_BUSY_TIMEOUT=0"_s);
        other.setDatabaseName(u"./Data/bahnakte.dat"_s);
        QVERIFY(other.open());
        QVERIFY(QSqlQuery(other).exec(u"DELETE FROM loc_seen"_s));
    }
    QSqlDatabase::removeDatabase(u"other"_s);
}

BAHNITO_TEST_MAIN(TestCatalogQuery)
#include "tst_catalogquery.moc"
