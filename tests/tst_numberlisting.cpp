#include "browser/canvasview.h"
#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "browser/viewholder.h"
#include "tests/support/browserwindow.h"
#include "tests/support/modalscript.h"
#include "tests/support/testmain.h"

#include <QApplication>
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
    void editInTheListingRedrawsIt();
    void colourChangeRedrawsTheListing();
    void searchLeavesTheListing();

private:
    [[nodiscard]] ViewHolder &holder() const { return m_browser->window().viewHolder(); }
    void openListing();

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
