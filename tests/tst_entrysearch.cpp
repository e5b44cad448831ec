#include "search/entrysearch.h"
#include "search/startposition.h"
#include "tests/support/testcatalogue.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QSqlQuery>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

/// What the entries fetched for a class say in their comments, run together.
QString commentsOf(int modelId, const QString &clause)
{
    QList<QSqlRecord> entries;
    entriesOfModel(entries, clause, modelId);
    QString comments;
    for (const QSqlRecord &entry : entries) {
        comments += entry.value(u"kommentar"_s).toString();
    }
    return comments;
}

} // namespace

class TestEntrySearch final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_catalogue = std::make_unique<TestCatalogue>(); }
    void cleanup() { m_catalogue.reset(); }

    void sortTextSelectsTheClause_data();
    void sortTextSelectsTheClause();
    void statementKeepsItsTrailingBlank();
    void emptyClauseSortsByDate();
    void clauseOrdersTheEntries_data();
    void clauseOrdersTheEntries();
    void onlyEntriesOfTheClassAreFetched();
    void entriesAreAppended();
    void hostileTextsComeBackWhole_data();
    void hostileTextsComeBackWhole();
    void classWithoutEntriesYieldsAnEmptyList();
    void failedStatementLeavesTheListAsItIs();
    void startPositionsAreTheEndsOfPages_data();
    void startPositionsAreTheEndsOfPages();
    void searchBeginsBehindThePosition_data();
    void searchBeginsBehindThePosition();

private:
    std::unique_ptr<TestCatalogue> m_catalogue;
};

void TestEntrySearch::sortTextSelectsTheClause_data()
{
    QTest::addColumn<QString>("sortText");
    QTest::addColumn<bool>("once");
    QTest::addColumn<QString>("clause");
    const QString byDate = u"ORDER BY locseendate"_s;
    QTest::newRow("date") << u"Datum"_s << false << byDate;
    QTest::newRow("date, once: the oldest sighting comes first") << u"Datum"_s << true << byDate;
    QTest::newRow("number") << u"Nummer"_s << false << u"ORDER BY nummer, locseendate"_s;
    QTest::newRow("number, once: the latest sighting comes first")
        << u"Nummer"_s << true << u"ORDER BY nummer, locseendate DESC"_s;
    QTest::newRow("place") << u"Ort"_s << false << u"ORDER BY ort, locseendate"_s;
    QTest::newRow("place, once") << u"Ort"_s << true << u"ORDER BY ort, locseendate"_s;
    QTest::newRow("any other text") << u"nummer"_s << true << byDate;
    QTest::newRow("no text") << QString() << false << byDate;
}

void TestEntrySearch::sortTextSelectsTheClause()
{
    QFETCH(QString, sortText);
    QFETCH(bool, once);
    QTEST(orderClause(sortText, once), "clause");
}

void TestEntrySearch::statementKeepsItsTrailingBlank()
{
    QCOMPARE(entriesStatement(QString(), 7), u"SELECT * FROM loc_seen WHERE locseenid = 7 ORDER BY locseendate "_s);
    QCOMPARE(entriesStatement(u"ORDER BY ort, locseendate"_s, -12),
        u"SELECT * FROM loc_seen WHERE locseenid = -12 ORDER BY ort, locseendate "_s);
}

void TestEntrySearch::emptyClauseSortsByDate()
{
    m_catalogue->addEntry(u"1"_s, 7, u"Arth"_s, QDate(2003, 1, 1), u"a"_s);
    m_catalogue->addEntry(u"2"_s, 7, u"Bern"_s, QDate(1999, 12, 31), u"b"_s);
    QCOMPARE(commentsOf(7, QString()), u"ba"_s);
}

void TestEntrySearch::clauseOrdersTheEntries_data()
{
    QTest::addColumn<QString>("sortText");
    QTest::addColumn<bool>("once");
    QTest::addColumn<QString>("comments");
    QTest::newRow("by date") << u"Datum"_s << false << u"cdba"_s;
    QTest::newRow("by date, the oldest sighting of a number first") << u"Datum"_s << true << u"cdba"_s;
    QTest::newRow("by number as text, oldest sighting first") << u"Nummer"_s << false << u"cdba"_s;
    QTest::newRow("by number as text, latest sighting first") << u"Nummer"_s << true << u"bdca"_s;
    QTest::newRow("by place, then by date") << u"Ort"_s << false << u"dabc"_s;
}

void TestEntrySearch::clauseOrdersTheEntries()
{
    QFETCH(QString, sortText);
    QFETCH(bool, once);
    const int model = m_catalogue->addModel(u"Ae 6/6"_s, m_catalogue->addGroup(u"Ae"_s));
    m_catalogue->addEntry(u"9"_s, model, u"Arth"_s, QDate(2004, 5, 1), u"a"_s);
    m_catalogue->addEntry(u"10"_s, model, u"Bern"_s, QDate(2003, 5, 1), u"b"_s);
    m_catalogue->addEntry(u"10"_s, model, u"Chur"_s, QDate(2001, 5, 1), u"c"_s);
    m_catalogue->addEntry(u"10"_s, model, u"Arth"_s, QDate(2002, 5, 1), u"d"_s);
    QTEST(commentsOf(model, orderClause(sortText, once)), "comments");
}

void TestEntrySearch::onlyEntriesOfTheClassAreFetched()
{
    m_catalogue->addEntry(u"1"_s, 1, u"Bern"_s, QDate(2001, 1, 1), u"a"_s);
    m_catalogue->addEntry(u"1"_s, 11, u"Bern"_s, QDate(2001, 1, 1), u"b"_s);
    QCOMPARE(commentsOf(1, QString()), u"a"_s);
}

void TestEntrySearch::entriesAreAppended()
{
    m_catalogue->addEntry(u"1"_s, 1);
    m_catalogue->addEntry(u"2"_s, 2);
    QList<QSqlRecord> entries;
    entriesOfModel(entries, QString(), 1);
    entriesOfModel(entries, QString(), 2);
    QCOMPARE(entries.size(), 2);
    QCOMPARE(entries.last().value(u"nummer"_s).toString(), u"2"_s);
}

void TestEntrySearch::hostileTextsComeBackWhole_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("markup") << u"<b>x</b>"_s;
    QTest::newRow("quote") << u"7'8"_s;
    QTest::newRow("placeholder") << u"7%2"_s;
    QTest::newRow("emoji") << u"\U0001F682"_s;
    QTest::newRow("very long") << QString(10'000, u'W');
}

void TestEntrySearch::hostileTextsComeBackWhole()
{
    QFETCH(QString, text);
    m_catalogue->addEntry(text, 1, text, QDate(2001, 1, 1), text);
    QList<QSqlRecord> entries;
    entriesOfModel(entries, orderClause(u"Nummer"_s, true), 1);
    QCOMPARE(entries.size(), 1);
    for (const QString &column : { u"nummer"_s, u"ort"_s, u"kommentar"_s }) {
        QCOMPARE(entries.first().value(column).toString(), text);
    }
    QCOMPARE(entries.first().value(u"locseendate"_s).toString(), u"2001-01-01"_s);
    QCOMPARE(entries.first().count(), 13);
}

void TestEntrySearch::classWithoutEntriesYieldsAnEmptyList()
{
    m_catalogue->addEntry(u"1"_s, 1);
    QList<QSqlRecord> entries;
    entriesOfModel(entries, QString(), 2);
    QVERIFY(entries.isEmpty());
}

void TestEntrySearch::failedStatementLeavesTheListAsItIs()
{
    m_catalogue->addEntry(u"1"_s, 1);
    QList<QSqlRecord> entries;
    entriesOfModel(entries, u"ORDER BY gibtesnicht"_s, 1);
    QVERIFY(entries.isEmpty());
    QVERIFY(QSqlQuery().exec(u"DROP TABLE loc_seen"_s));
    entriesOfModel(entries, QString(), 1);
    QVERIFY(entries.isEmpty());
}

void TestEntrySearch::startPositionsAreTheEndsOfPages_data()
{
    QTest::addColumn<int>("entries");
    QTest::addColumn<QString>("positions");
    QTest::newRow("none") << 0 << u"1"_s;
    QTest::newRow("a short class starts at its beginning") << 60 << u"1"_s;
    QTest::newRow("one more offers the second page") << 61 << u"1 40"_s;
    QTest::newRow("not yet a third page") << 79 << u"1 40"_s;
    QTest::newRow("the last position may be the last entry") << 80 << u"1 40 80"_s;
    QTest::newRow("a hundred") << 100 << u"1 40 80"_s;
    QTest::newRow("three pages") << 120 << u"1 40 80 120"_s;
}

void TestEntrySearch::startPositionsAreTheEndsOfPages()
{
    QFETCH(int, entries);
    QTEST(startPositions(entries).join(u' '), "positions");
}

void TestEntrySearch::searchBeginsBehindThePosition_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("entry");
    QTest::newRow("nothing") << 0 << 0;
    QTest::newRow("the first is meant itself") << 1 << 1;
    QTest::newRow("two") << 2 << 3;
    QTest::newRow("second page") << 40 << 41;
    QTest::newRow("third page") << 80 << 81;
}

void TestEntrySearch::searchBeginsBehindThePosition()
{
    QFETCH(int, position);
    QTEST(firstEntryFor(position), "entry");
}

BAHNITO_TEST_MAIN(TestEntrySearch)
#include "tst_entrysearch.moc"
