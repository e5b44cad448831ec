#include "app/pictureitem.h"
#include "browser/canvasview.h"
#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "browser/textitem.h"
#include "browser/viewholder.h"
#include "store/colorsetting.h"
#include "store/statement.h"
#include "tests/support/browserwindow.h"
#include "tests/support/layoutcheck.h"
#include "tests/support/modalscript.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScrollBar>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

/// A key press, the first one or one that comes from holding the key down; and what it sets off.
void sendKey(QWidget *widget, Qt::Key key, bool isRepeated)
{
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, {}, isRepeated);
    QApplication::sendEvent(widget, &event);
    QApplication::processEvents();
}

} // namespace

/// What is overlooked on a canvas until it goes wrong: emptied pages, places to return to, letters without room, keys
/// that are held down.
class TestCanvasDetails final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void lonelyEntryDeletedShowsThePageBefore();
    void lonelyEntryDeletedInOnceModeShowsTheFirstPage();
    void lastEntryOfAllDeletedLeavesTheCaption();
    void backIsExactlyWhereTheListingWasAskedFor_data();
    void backIsExactlyWhereTheListingWasAskedFor();
    void letterWiderThanItsColumnStaysInside_data();
    void letterWiderThanItsColumnStaysInside();
    void startViewOfAnEntryWithoutAClassBeginsWithItsNumber();
    void heldKeyActsOnce_data();
    void heldKeyActsOnce();
    void heldKeyDoesNotAnswerTheQuestion();
    void heldKeyOnAGroupOpensNoSearch_data();
    void heldKeyOnAGroupOpensNoSearch();

private:
    void addEntries(int count);
    void search(const SearchWish &wish = {});
    void deleteFirstBlock();
    [[nodiscard]] CanvasView *view() const { return m_browser->window().viewHolder().view(); }

    std::unique_ptr<TestCatalogue> m_catalogue;
    std::unique_ptr<BrowserWindow> m_browser;
    int m_group = 0;
    int m_model = 0;
};

void TestCanvasDetails::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    m_group = m_catalogue->addGroup(u"Krokodile"_s);
    m_model = m_catalogue->addModel(u"Ce 6/8"_s, m_group);
}

void TestCanvasDetails::cleanup()
{
    m_browser.reset();
    ColorSetting::saveAndRelease();
    m_catalogue.reset();
}

void TestCanvasDetails::addEntries(int count)
{
    for (int i = 0; i < count; ++i) {
        m_catalogue->addEntry(QString::number(1000 + i), m_model, u"Bern"_s, QDate(1990, 1, 1).addDays(i));
    }
}

void TestCanvasDetails::search(const SearchWish &wish)
{
    m_browser = std::make_unique<BrowserWindow>();
    QCOMPARE(m_browser->search(m_group, wish), QStringList());
}

void TestCanvasDetails::deleteFirstBlock()
{
    const EntryCard &card = m_browser->block(0)->card();
    ModalScript script;
    script.box(u"Eintrag Entfernen"_s,
        u"Eintrag %1 mit der Lok-Nummer %2 und alle dazugehörenden Bilder löschen?"_s.arg(
            QString::number(card.id), card.number),
        u"Ja"_s);
    m_browser->click(m_browser->button(ButtonKind::Delete, m_browser->block(0)));
    QCOMPARE(script.problems(), QStringList());
}

void TestCanvasDetails::lonelyEntryDeletedShowsThePageBefore()
{
    addEntries(41);
    search();
    m_browser->click(m_browser->button(ButtonKind::More));
    QCOMPARE(m_browser->numbers(), QStringList { u"1040"_s });
    deleteFirstBlock();
    QCOMPARE(m_browser->caption(), u"40 Einträge der Baureihe Ce 6/8"_s);
    QCOMPARE(m_browser->numbers().size(), 40);
    QCOMPARE(m_browser->numbers().first(), u"1000"_s);
    QVERIFY(!m_browser->button(ButtonKind::More));
    deleteFirstBlock(); // the page before is a page like any other
    QCOMPARE(m_browser->numbers().size(), 39);
}

void TestCanvasDetails::lonelyEntryDeletedInOnceModeShowsTheFirstPage()
{
    addEntries(41);
    search({ {}, u"nur einmal"_s });
    m_browser->click(m_browser->button(ButtonKind::More));
    QCOMPARE(m_browser->numbers(), QStringList { u"1040"_s });
    deleteFirstBlock();
    QCOMPARE(m_browser->numbers().size(), 40);
    QCOMPARE(m_browser->numbers().first(), u"1000"_s);
    deleteFirstBlock(); // no number of the former pages is kept
    QCOMPARE(m_browser->numbers().size(), 39);
}

void TestCanvasDetails::lastEntryOfAllDeletedLeavesTheCaption()
{
    addEntries(1);
    search();
    deleteFirstBlock();
    QCOMPARE(m_browser->numbers(), QStringList());
    QCOMPARE(m_browser->caption(), u"0 Einträge der Baureihe Ce 6/8"_s);
}

void TestCanvasDetails::backIsExactlyWhereTheListingWasAskedFor_data()
{
    QTest::addColumn<int>("height");
    QTest::newRow("even") << 700;
    QTest::newRow("odd") << 701;
}

void TestCanvasDetails::backIsExactlyWhereTheListingWasAskedFor()
{
    QFETCH(int, height);
    addEntries(30);
    search({ {}, u"nur einmal"_s });
    m_browser->window().resize(1280, height);
    QScrollBar *bar = view()->verticalScrollBar();
    view()->ensureVisible(m_browser->button(ButtonKind::Count, m_browser->block(15)));
    const int scrolled = bar->value();
    QVERIFY(scrolled > 0 && scrolled < bar->maximum());
    for (int times = 0; times < 3; ++times) {
        m_browser->click(m_browser->button(ButtonKind::Count, m_browser->block(15)));
        QVERIFY(m_browser->window().viewHolder().showsListing());
        m_browser->click(m_browser->button(ButtonKind::Back));
        QCOMPARE(bar->value(), scrolled);
    }
}

void TestCanvasDetails::letterWiderThanItsColumnStaysInside_data()
{
    QTest::addColumn<double>("width");
    QTest::addColumn<bool>("fits"); // in smaller letters
    QTest::newRow("a little too wide") << 20.0 << true;
    QTest::newRow("much too wide") << 6.0 << false;
}

void TestCanvasDetails::letterWiderThanItsColumnStaysInside()
{
    QFETCH(double, width);
    QFETCH(bool, fits);
    m_browser = std::make_unique<BrowserWindow>();
    const QFont font = ColorSetting::instance().fontAt(0);
    TextItem item(u"WWW"_s, font, Qt::black, width);
    QVERIFY(QFontMetricsF(font).horizontalAdvance(u'W') > width);
    QCOMPARE(QFontMetricsF(item.font()).horizontalAdvance(u'W') <= width, fits);
    QVERIFY(item.font().pixelSize() >= 13);
    QCOMPARE(item.boundingRect().width(), width);
    QCOMPARE(LayoutCheck::inkFault(&item), QString());
}

void TestCanvasDetails::startViewOfAnEntryWithoutAClassBeginsWithItsNumber()
{
    const int entry = m_catalogue->addEntry(u"14253"_s, 4711);
    m_catalogue->addPicture(entry);
    m_browser = std::make_unique<BrowserWindow>();
    QVERIFY(m_browser->canvas().showsStartPicture());
    QVERIFY(m_browser->texts().contains(u"14253"_s));
    QCOMPARE(m_browser->photos(nullptr).first()->name(), u"Foto von 14253"_s);
    QVERIFY(executeWrite(u"UPDATE loc_seen SET locseenid = %1"_s.arg(m_model)).done);
    m_browser.reset();
    m_browser = std::make_unique<BrowserWindow>();
    QVERIFY(m_browser->texts().contains(u"Ce 6/8  14253"_s));
}

void TestCanvasDetails::heldKeyActsOnce_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("Return") << Qt::Key_Return;
    QTest::newRow("Enter") << Qt::Key_Enter;
    QTest::newRow("Space") << Qt::Key_Space;
}

void TestCanvasDetails::heldKeyActsOnce()
{
    QFETCH(Qt::Key, key);
    const int entry = m_catalogue->addEntry(u"1"_s, m_model);
    for (int i = 0; i < 6; ++i) {
        m_catalogue->addPicture(entry);
    }
    search();
    m_browser->canvas().setFocusItem(m_browser->button(ButtonKind::Right, m_browser->block(0)));
    const auto press = [this, key](bool isRepeated) { sendKey(view(), key, isRepeated); };
    press(false);
    QCOMPARE(m_browser->block(0)->key(), u"1-2"_s);
    press(true);
    press(true);
    QCOMPARE(m_browser->block(0)->key(), u"1-2"_s);
    press(false);
    QCOMPARE(m_browser->block(0)->key(), u"1-4"_s);
}

void TestCanvasDetails::heldKeyDoesNotAnswerTheQuestion()
{
    addEntries(1);
    search();
    m_browser->canvas().setFocusItem(m_browser->button(ButtonKind::Delete, m_browser->block(0)));
    bool isOpen = false;
    bool isClosed = false;
    ModalScript script;
    script.then([&](QWidget *question) {
        for (int times = 0; times < 3; ++times) {
            sendKey(question->focusWidget(), Qt::Key_Return, true);
        }
        isOpen = question->isVisible();
        sendKey(question->focusWidget(), Qt::Key_Return, false);
        isClosed = !question->isVisible();
        question->close();
    });
    sendKey(view(), Qt::Key_Return, false);
    QTRY_VERIFY(isOpen);
    QVERIFY(isClosed);
    QCOMPARE(script.problems(), QStringList());
}

void TestCanvasDetails::heldKeyOnAGroupOpensNoSearch_data()
{
    heldKeyActsOnce_data();
}

void TestCanvasDetails::heldKeyOnAGroupOpensNoSearch()
{
    QFETCH(Qt::Key, key);
    m_browser = std::make_unique<BrowserWindow>();
    auto *group = m_browser->window().findChild<PictureItem *>();
    group->setFocus();
    ModalScript script;
    for (int times = 0; times < 3; ++times) {
        sendKey(group, key, true);
    }
    QCOMPARE(script.problems(), QStringList()); // else an unexpected dialog
}

BAHNITO_TEST_MAIN(TestCanvasDetails)
#include "tst_canvasdetails.moc"
