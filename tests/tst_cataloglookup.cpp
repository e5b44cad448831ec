#include "store/catalogquery.h"
#include "tests/support/testcatalogue.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QSqlQuery>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

class TestCatalogLookup final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_catalogue.reset(); }

    void hostileNumbersAreFoundOrNothingIs_data();
    void hostileNumbersAreFoundOrNothingIs();
    void modelIdIsFoundByNumberAndByEntry();
    void modelNamesComeFromCacheAndTable();
    void entryNumberOfAMissingEntryIsThreeZeros();
    void modelIsFoundByItsExactName();
    void addedModelIsCutToItsLimit_data();
    void addedModelIsCutToItsLimit();
    void addedModelIsNotInTheCacheYet();
    void failedAdditionIsOnlyLogged();
    void idsBeyondThirtyTwoBitsNameNoOtherRow();

private:
    [[nodiscard]] static QStringList column(const QList<QSqlRecord> &rows, const QString &name);
    static void write(const QString &statement) { QVERIFY(QSqlQuery().exec(statement)); }

    std::unique_ptr<TestCatalogue> m_catalogue;
    CatalogQuery *m_query = nullptr;
};

void TestCatalogLookup::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    m_query = &CatalogQuery::instance();
}

QStringList TestCatalogLookup::column(const QList<QSqlRecord> &rows, const QString &name)
{
    QStringList texts;
    for (const QSqlRecord &row : rows) {
        texts.append(row.value(name).toString());
    }
    return texts;
}

void TestCatalogLookup::hostileNumbersAreFoundOrNothingIs_data()
{
    QTest::addColumn<QString>("number");
    QTest::addColumn<bool>("found");
    QTest::newRow("placeholder of the class") << u"7%2"_s << true;
    QTest::newRow("placeholder of itself") << u"%1"_s << true;
    QTest::newRow("localised placeholder") << u"%L1"_s << true;
    QTest::newRow("percent and double quote") << u"100% \"x\""_s << true;
    QTest::newRow("tag") << u"<b>x</b>"_s << true;
    QTest::newRow("emoji") << u"🚂 7"_s << true;
    QTest::newRow("empty") << u""_s << true;
    QTest::newRow("very long") << QString(10000, u'7') << true;
    QTest::newRow("quote") << u"7'8"_s << false;
    QTest::newRow("two quotes would be read as one") << u"7''8"_s << false;
    QTest::newRow("quote that would match every row") << u"x' OR '1' = '1"_s << false;
}

void TestCatalogLookup::hostileNumbersAreFoundOrNothingIs()
{
    QFETCH(const QString, number);
    QFETCH(const bool, found);
    m_catalogue->addEntry(u"7'8"_s, 2);
    m_catalogue->addEntry(u"72"_s, 2);
    m_catalogue->addEntry(number, 2);
    QList<QSqlRecord> rows;
    m_query->entriesByNumber(rows, number, 2);
    QCOMPARE(column(rows, u"nummer"_s), found ? QStringList(number) : QStringList());
    QCOMPARE(m_query->countEntriesByNumber(number, 2), found ? 1 : 0);
    QCOMPARE(m_query->modelIdOfNumber(number), found ? 2 : 0);
    QCOMPARE(m_query->entryNumber(3), number); // looked up by id, every number comes back whole
}

void TestCatalogLookup::modelIdIsFoundByNumberAndByEntry()
{
    const int entry = m_catalogue->addEntry(u"11407"_s, 5);
    m_catalogue->addEntry(u"11407"_s, 6);
    QCOMPARE(m_query->modelIdOfNumber(u"11407"_s), 5);
    QCOMPARE(m_query->modelIdOfNumber(u"1"_s), 0);
    QCOMPARE(m_query->modelIdOfEntry(entry), 5);
    QCOMPARE(m_query->modelIdOfEntry(99), 0);
}

void TestCatalogLookup::modelNamesComeFromCacheAndTable()
{
    const int model = m_catalogue->addModel(u"Ae 6/6"_s, 1);
    QCOMPARE(m_query->modelName(model), u"Ae 6/6"_s);
    QCOMPARE(m_query->modelName(99), QString());
    QCOMPARE(m_query->modelNameCached(model), QString()); // read before the class was there
    m_query->reloadModels();
    QCOMPARE(m_query->modelNameCached(model), u"Ae 6/6"_s);
    write(u"DELETE FROM loc_model"_s);
    QCOMPARE(m_query->modelNameCached(model), u"Ae 6/6"_s);
    m_query->reloadModels();
    QCOMPARE(m_query->modelNameCached(model), QString());
}

void TestCatalogLookup::entryNumberOfAMissingEntryIsThreeZeros()
{
    QCOMPARE(m_query->entryNumber(1), u"000"_s);
    QCOMPARE(m_query->entryNumber(m_catalogue->addEntry(u"0"_s, 1)), u"0"_s);
}

void TestCatalogLookup::modelIsFoundByItsExactName()
{
    m_catalogue->addModel(u"ae 6/6"_s, 1);
    const int model = m_catalogue->addModel(u"Ae 6/6"_s, 1);
    m_catalogue->addModel(u"Ae 6/6"_s, 1);
    const int other = m_catalogue->addModel(u"Ae 6/6"_s, 2);
    QCOMPARE(m_query->modelIdByName(u"Ae 6/6"_s, 1), model);
    QCOMPARE(m_query->modelIdByName(u"Ae 6/6"_s, 2), other);
    QCOMPARE(m_query->modelIdByName(u"AE 6/6"_s, 1), 0);
    QCOMPARE(m_query->modelIdByName(u"Ae 6/6"_s, 3), 0);
}

void TestCatalogLookup::addedModelIsCutToItsLimit_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("stored");
    QTest::newRow("38 characters") << QString(38, u'x') << QString(38, u'x');
    QTest::newRow("39 characters") << QString(38, u'x') + u'y' << QString(38, u'x');
    QTest::newRow("10,000 characters") << QString(10000, u'x') << QString(38, u'x');
    QTest::newRow("pair at the limit") << QString(37, u'x') + u"🚂"_s << QString(37, u'x');
    QTest::newRow("hostile") << u"<b>'7%2"_s << u"<b>'7%2"_s;
    QTest::newRow("no text at all") << QString() << u""_s;
}

void TestCatalogLookup::addedModelIsCutToItsLimit()
{
    QFETCH(const QString, name);
    m_query->AddLocModel(name, 4);
    QTEST(m_catalogue->value(u"SELECT modelname FROM loc_model WHERE locid = 4"_s).toString(), "stored");
    QCOMPARE(m_query->countModels(4), 1);
}

void TestCatalogLookup::addedModelIsNotInTheCacheYet()
{
    m_query->AddLocModel(u"Ae 6/6"_s, 1);
    QCOMPARE(m_query->modelNameCached(1), QString());
    m_query->reloadModels();
    QCOMPARE(m_query->modelNameCached(1), u"Ae 6/6"_s);
}

void TestCatalogLookup::failedAdditionIsOnlyLogged()
{
    write(u"DROP TABLE loc_model"_s);
    QTest::ignoreMessage(QtDebugMsg, QRegularExpression(u"^Fehler bei AddLocModel: .*no such table"_s));
    m_query->AddLocModel(u"Ae 6/6"_s, 1);
}

void TestCatalogLookup::idsBeyondThirtyTwoBitsNameNoOtherRow()
{
    const int entry = m_catalogue->addEntry(u"11407"_s, 1);
    write(u"INSERT INTO locomotive (id, name) VALUES ('4294967297', 'far')"_s); // 1 when cut to 32 bits
    write(u"INSERT INTO loc_model (id, modelname, locid) VALUES ('4294967298', 'far', '4294967297')"_s);
    write(u"INSERT INTO loc_model (modelname, locid) VALUES ('strange', 'x')"_s);
    write(u"INSERT INTO loc_picture (pictAuxPath, locpictureid) VALUES ('x', 4294967297)"_s);
    write(u"UPDATE loc_seen SET locseenid = '4294967297'"_s);
    m_query->reloadModels();

    QList<QSqlRecord> rows;
    m_query->groups(rows, 1);
    m_query->modelsOfGroup(rows, 1);
    m_query->picturesOfEntry(rows, 1);
    QVERIFY(rows.isEmpty());
    QCOMPARE(m_query->modelNameCached(2), QString());
    QCOMPARE(m_query->modelIdOfEntry(entry), 0);
    QCOMPARE(m_query->modelIdOfNumber(u"11407"_s), 0);
    QCOMPARE(m_query->countModels(1), 0);
    m_query->modelsOfGroup(rows, 0);
    QCOMPARE(rows.size(), 2);
}

BAHNITO_TEST_MAIN(TestCatalogLookup)
#include "tst_cataloglookup.moc"
