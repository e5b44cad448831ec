#include "browser/canvasview.h"
#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "browser/viewholder.h"
#include "tests/support/browserwindow.h"
#include "tests/support/modalscript.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QDateEdit>
#include <QLineEdit>
#include <QScrollBar>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

class TestNumberListing final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void countButtonListsAllEntriesOfTheNumber();
    void backReturnsToTheSamePlace();
    void deletionInTheListingRedrawsBothCanvases();
    void deletionBeforeThePageKeepsItsFirstEntry();
    void backStaysOnThePageWhereverTheEditedEntryMoves_data();
    void backStaysOnThePageWhereverTheEditedEntryMoves();
    void entryThatLeavesTheRowsBeforeThePageHidesNoOther();
    void deletionOfTheWholeNumberHidesNoOther();
    void editInTheListingRedrawsIt();
    void colourChangeRedrawsTheListing();
    void searchLeavesTheListing();

private:
    [[nodiscard]] ViewHolder &holder() const { return m_browser->window().viewHolder(); }
    void openListing();
    void restart();
    void openListingOf(const QString &number);
    void changeDate(int block, const QDate &date);
    void deleteListed(int block, int entryId, const QString &number);
    void back() { m_browser->click(m_browser->button(ButtonKind::Back)); }

    std::unique_ptr<TestCatalogue> m_catalogue;
    std::unique_ptr<BrowserWindow> m_browser;
    int m_group = 0;
};

void TestNumberListing::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    m_group = m_catalogue->addGroup(u"Krokodile"_s);
    const int model = m_catalogue->addModel(u"Ce 6/8"_s, m_group);
    const int other = m_catalogue->addModel(u"Re 4/4"_s, m_group);
    for (int i = 0; i < 30; ++i) {
        m_catalogue->addEntry(QString::number(100 + i), model, u"Bern"_s, QDate(1990, 1, 1).addDays(i));
    }
    m_catalogue->addEntry(u"115"_s, model, u"Chur"_s, QDate(1995, 1, 1));
    m_catalogue->addEntry(u"115"_s, model, u"Arth"_s, QDate(1985, 1, 1));
    m_catalogue->addEntry(u"115"_s, other, u"Genf"_s, QDate(1985, 1, 1));
    m_browser = std::make_unique<BrowserWindow>();
    QCOMPARE(m_browser->search(m_group, { u"Ce 6/8"_s, u"nur einmal"_s, u"nein alle"_s, u"Nummer"_s }), QStringList());
}

void TestNumberListing::cleanup()
{
    m_browser.reset();
    m_catalogue.reset();
}

void TestNumberListing::openListing()
{
    m_browser->click(m_browser->button(ButtonKind::Count, m_browser->block(15)));
    QVERIFY(holder().showsListing());
}

/// With a button for a new group; two windows at a time would share the settings object.
void TestNumberListing::restart()
{
    m_browser.reset();
    m_browser = std::make_unique<BrowserWindow>();
}

void TestNumberListing::openListingOf(const QString &number)
{
    m_browser->click(m_browser->button(ButtonKind::Count, m_browser->block(int(m_browser->numbers().indexOf(number)))));
    QVERIFY(holder().showsListing());
}

void TestNumberListing::changeDate(int block, const QDate &date)
{
    ModalScript script;
    script.then([&](QWidget *form) {
        form->findChild<QDateEdit *>(u"seenDateEdit"_s)->setDate(date);
        script.click(form, u"Schliessen"_s);
    });
    m_browser->click(m_browser->button(ButtonKind::Edit, m_browser->block(block)));
    QCOMPARE(script.problems(), QStringList());
}

void TestNumberListing::deleteListed(int block, int entryId, const QString &number)
{
    ModalScript script;
    script.box(u"Eintrag Entfernen"_s,
        u"Eintrag %1 mit der Lok-Nummer %2 und alle dazugehörenden Bilder löschen?"_s.arg(
            QString::number(entryId), number),
        u"Ja"_s);
    m_browser->click(m_browser->button(ButtonKind::Delete, m_browser->block(block)));
    QCOMPARE(script.problems(), QStringList());
}

void TestNumberListing::countButtonListsAllEntriesOfTheNumber()
{
    openListing();
    QCOMPARE(m_browser->caption(), u"3 Einträge der Ce 6/8 115"_s);
    QCOMPARE(m_browser->numbers(), (QStringList { u"115"_s, u"115"_s, u"115"_s }));
    QCOMPARE(m_browser->block(0)->card().place, u"Arth"_s); // oldest first, only of this class
    QCOMPARE(m_browser->block(2)->card().place, u"Chur"_s);
    QCOMPARE(m_browser->block(0)->y(), 80.0);
    QCOMPARE(m_browser->block(1)->y(), 80 + m_browser->block(0)->height() + 30);
    QVERIFY(m_browser->button(ButtonKind::Back));
    QVERIFY(!m_browser->button(ButtonKind::Count, m_browser->block(0)));
    QVERIFY(!m_browser->button(ButtonKind::More));
}

void TestNumberListing::backReturnsToTheSamePlace()
{
    m_browser->window().viewHolder().view()->ensureVisible(m_browser->block(15));
    const int scrolled = holder().view()->verticalScrollBar()->value();
    QVERIFY(scrolled > 0);
    openListing();
    EntryBlock *listed = m_browser->block(0);
    QVERIFY(listed);
    m_browser->click(m_browser->button(ButtonKind::Back));
    QVERIFY(!holder().showsListing());
    QCOMPARE(m_browser->caption(), u"32 Einträge der Baureihe Ce 6/8"_s);
    QVERIFY(qAbs(holder().view()->verticalScrollBar()->value() - scrolled) <= 2);
}

void TestNumberListing::deletionInTheListingRedrawsBothCanvases()
{
    openListing();
    ModalScript script;
    script.box(u"Eintrag Entfernen"_s, u"Eintrag 32 mit der Lok-Nummer 115 und alle dazugehörenden Bilder löschen?"_s,
        u"Ja"_s);
    m_browser->click(m_browser->button(ButtonKind::Delete, m_browser->block(0)));
    QCOMPARE(script.problems(), QStringList());
    QVERIFY(holder().showsListing());
    QCOMPARE(m_browser->caption(), u"2 Einträge der Ce 6/8 115"_s);
    m_browser->click(m_browser->button(ButtonKind::Back));
    QCOMPARE(m_browser->caption(), u"31 Einträge der Baureihe Ce 6/8"_s);
}

void TestNumberListing::deletionBeforeThePageKeepsItsFirstEntry()
{
    for (int i = 0; i < 60; ++i) {
        m_catalogue->addEntry(QString::number(500 + i), 1, u"Bern"_s, QDate(1991, 1, 1).addDays(i));
    }
    QCOMPARE(m_browser->search(m_group, { u"Ce 6/8"_s, u"nur einmal"_s, u"nein alle"_s, u"Datum"_s, u"80"_s }),
        QStringList());
    const QStringList before = m_browser->numbers();
    QCOMPARE(before.last(), u"115"_s);
    m_browser->click(m_browser->button(ButtonKind::Count, m_browser->canvas().blocks().constLast()));
    ModalScript script;
    script.box(u"Eintrag Entfernen"_s, u"Eintrag 32 mit der Lok-Nummer 115 und alle dazugehörenden Bilder löschen?"_s,
        u"Ja"_s);
    m_browser->click(m_browser->button(ButtonKind::Delete, m_browser->block(0))); // the very first row of the class
    QCOMPARE(script.problems(), QStringList());
    m_browser->click(m_browser->button(ButtonKind::Back));
    QCOMPARE(m_browser->numbers(), before);
}

void TestNumberListing::backStaysOnThePageWhereverTheEditedEntryMoves_data()
{
    QTest::addColumn<bool>("secondPage");
    QTest::addColumn<QDate>("date");
    QTest::addColumn<QString>("first");
    QTest::newRow("first of all to the end") << false << QDate(2020, 1, 1) << u"1001"_s;
    QTest::newRow("first of all behind its neighbour") << false << QDate(1990, 1, 4) << u"1001"_s;
    QTest::newRow("first of the page to the end") << true << QDate(2020, 1, 1) << u"1041"_s;
    QTest::newRow("first of the page to the very front") << true << QDate(1980, 1, 1) << u"1041"_s;
}

/// Ninety numbers, each seen once: a page of them is known by its first number and its size.
void TestNumberListing::backStaysOnThePageWhereverTheEditedEntryMoves()
{
    QFETCH(bool, secondPage);
    QFETCH(QDate, date);
    const int group = m_catalogue->addGroup(u"Gotthard"_s);
    const int model = m_catalogue->addModel(u"Ae 6/6"_s, group);
    for (int i = 0; i < 90; ++i) {
        m_catalogue->addEntry(QString::number(1000 + i), model, u"Bern"_s, QDate(1990, 1, 1).addDays(Q_INT64_C(2) * i));
    }
    restart();
    QCOMPARE(m_browser->search(group, { {}, u"nur einmal"_s, u"nein alle"_s, u"Datum"_s }), QStringList());
    if (secondPage) {
        m_browser->click(m_browser->button(ButtonKind::More));
    }
    openListingOf(m_browser->numbers().constFirst());
    changeDate(0, date);
    back();
    QTEST(m_browser->numbers().value(0), "first");
    QVERIFY(m_browser->numbers().size() >= 39);
    QVERIFY(m_browser->button(ButtonKind::More));
}

/// Begun in the middle, a search can show the number of a row that stands before its page.
void TestNumberListing::entryThatLeavesTheRowsBeforeThePageHidesNoOther()
{
    for (int i = 0; i < 60; ++i) {
        m_catalogue->addEntry(QString::number(500 + i), 1, u"Bern"_s, QDate(1991, 1, 1).addDays(i));
    }
    QCOMPARE(m_browser->search(m_group, { u"Ce 6/8"_s, u"nur einmal"_s, u"nein alle"_s, u"Datum"_s, u"80"_s }),
        QStringList());
    const QStringList before = m_browser->numbers();
    openListingOf(u"115"_s);
    changeDate(0, QDate(2010, 1, 1)); // the very first row of the class becomes its last
    back();
    QCOMPARE(m_browser->numbers(), before);
}

void TestNumberListing::deletionOfTheWholeNumberHidesNoOther()
{
    const int group = m_catalogue->addGroup(u"Gotthard"_s);
    const int model = m_catalogue->addModel(u"Ae 6/6"_s, group);
    QList<int> ids;
    for (int i = 0; i < 90; ++i) {
        const bool isSame = i == 0 || i == 1 || i == 40; // the first of the page and two rows before it
        const QString number = isSame ? u"777"_s : QString::number(200 + i);
        const int id = m_catalogue->addEntry(number, model, u"Bern"_s, QDate(1990, 1, 1).addDays(i));
        if (isSame) {
            ids.append(id);
        }
    }
    restart();
    QCOMPARE(m_browser->search(group, { {}, u"nur einmal"_s, u"nein alle"_s, u"Datum"_s, u"40"_s }), QStringList());
    const QStringList before = m_browser->numbers();
    QCOMPARE(before.constFirst(), u"777"_s);
    openListingOf(u"777"_s);
    for (const int id : ids) {
        deleteListed(0, id, u"777"_s);
    }
    back();
    QStringList numbers = m_browser->numbers(); // fewer, for a page ends at a position that can be divided by 40
    QVERIFY(numbers.size() >= 20);
    m_browser->click(m_browser->button(ButtonKind::More));
    numbers += m_browser->numbers();
    QCOMPARE(numbers.mid(0, before.size() - 1), before.mid(1));
}

void TestNumberListing::editInTheListingRedrawsIt()
{
    openListing();
    ModalScript script;
    script.then([&](QWidget *form) {
        auto *place = form->findChild<QLineEdit *>(u"placeEdit"_s);
        place->selectAll();
        QTest::keyClicks(place, u"Wassen"_s);
        script.click(form, u"Schliessen"_s);
    });
    m_browser->click(m_browser->button(ButtonKind::Edit, m_browser->block(2)));
    QCOMPARE(script.problems(), QStringList());
    QVERIFY(holder().showsListing());
    QCOMPARE(m_browser->block(2)->card().place, u"Wassen"_s);
    m_browser->click(m_browser->button(ButtonKind::Back));
    QCOMPARE(m_browser->block(15)->card().place, u"Wassen"_s); // the latest sighting is the one listed
}

void TestNumberListing::colourChangeRedrawsTheListing()
{
    openListing();
    m_browser->pickColor(u"schwarz"_s);
    QVERIFY(holder().showsListing());
    QCOMPARE(m_browser->caption(), u"3 Einträge der Ce 6/8 115"_s);
    QCOMPARE(m_browser->canvas().backgroundBrush().color(), QColor(Qt::black));
    m_browser->click(m_browser->button(ButtonKind::Back));
    QCOMPARE(m_browser->canvas().backgroundBrush().color(), QColor(Qt::black));
}

void TestNumberListing::searchLeavesTheListing()
{
    openListing();
    QCOMPARE(m_browser->search(m_group, { u"Re 4/4"_s }), QStringList());
    QVERIFY(!holder().showsListing());
    QCOMPARE(m_browser->caption(), u"1 Eintrag der Baureihe Re 4/4"_s);
}

BAHNITO_TEST_MAIN(TestNumberListing)
#include "tst_numberlisting.moc"
