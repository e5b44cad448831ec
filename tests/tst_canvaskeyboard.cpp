#include "app/pictureitem.h"
#include "browser/canvasview.h"
#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "browser/viewholder.h"
#include "tests/support/browserwindow.h"
#include "tests/support/modalscript.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QFile>
#include <QLineEdit>
#include <QTest>
#include <QToolBar>

#include <memory>

using namespace Qt::StringLiterals;

/// The whole canvas by keyboard alone.
class TestCanvasKeyboard final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void tabWalksFromTheToolBarThroughEverything();
    void tabOrderHoldsAfterTheGroupsChanged();
    void backtabEntersAtTheEnd();
    void arrowsMoveTheFocus();
    void returnOnAGroupButtonSearches();
    void editKeepsThePlace();
    void editWithoutAChangeKeepsThePlace();
    void deletionMovesToTheEntryThatMovedUp();
    void deletionOfTheLastEntryMovesToTheOneBefore();
    void turningPicturesKeepsThePlace();
    void photographOpensItsSource_data();
    void photographOpensItsSource();
    void countAndBackKeepThePlace();
    void backAfterAChangeKeepsThePlace();
    void moreGoesOnAtTheTopOfTheNextPage();
    void colourChangeKeepsThePlace();
    void mousePressLeavesTheKeyboardWhereItIs();
    void keysScrollTheCanvas();
    void focusIsVisible();

private:
    [[nodiscard]] CanvasView *view() const { return m_browser->window().viewHolder().view(); }
    void openBrowser();
    void search(const SearchWish &wish = {});
    void fire(Qt::Key key = Qt::Key_Return);
    /// Puts the keyboard on that item of the block by walking there.
    void walkTo(QGraphicsItem *item);
    /// Kind and entry of the focused button, kind 0 for a photograph; "none" without focus.
    [[nodiscard]] QString place() const;

    std::unique_ptr<TestCatalogue> m_catalogue;
    std::unique_ptr<BrowserWindow> m_browser;
    int m_group = 0;
    int m_model = 0;
};

void TestCanvasKeyboard::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    m_group = m_catalogue->addGroup(u"Krokodile"_s);
    m_model = m_catalogue->addModel(u"Ce 6/8"_s, m_group);
    for (int i = 0; i < 45; ++i) {
        m_catalogue->addEntry(QString::number(100 + i), m_model, u"Bern"_s, QDate(1990, 1, 1).addDays(i));
    }
    for (int i = 0; i < 5; ++i) {
        m_catalogue->addPicture(1);
    }
    openBrowser();
}

void TestCanvasKeyboard::cleanup()
{
    m_browser.reset();
    m_catalogue.reset();
}

void TestCanvasKeyboard::openBrowser()
{
    m_browser = std::make_unique<BrowserWindow>();
    m_browser->activate();
}

void TestCanvasKeyboard::search(const SearchWish &wish)
{
    QCOMPARE(m_browser->search(m_group, wish), QStringList());
    m_browser->activate();
    QVERIFY(view()->hasFocus());
}

void TestCanvasKeyboard::fire(Qt::Key key)
{
    QTest::keyClick(view(), key);
    QApplication::processEvents(); // the press is carried out after its event
}

void TestCanvasKeyboard::walkTo(QGraphicsItem *item)
{
    const auto steps = m_browser->canvas().focusItems().size();
    for (int i = 0; i <= steps && m_browser->canvas().focusItem() != item; ++i) {
        QTest::keyClick(view(), Qt::Key_Tab);
    }
    QCOMPARE(m_browser->canvas().focusItem(), item);
}

QString TestCanvasKeyboard::place() const
{
    const QGraphicsItem *item = m_browser->canvas().focusItem();
    if (!item) {
        return u"none"_s;
    }
    const auto *button = qgraphicsitem_cast<const ButtonItem *>(item);
    const auto *block = qgraphicsitem_cast<const EntryBlock *>(item->parentItem());
    return u"%1 of %2"_s.arg(button ? int(button->kind()) : 0).arg(block ? block->card().id : 0);
}

void TestCanvasKeyboard::tabWalksFromTheToolBarThroughEverything()
{
    m_catalogue->addGroup(u"Zahnrad"_s);
    openBrowser();
    search({ u""_s, u"nur einmal"_s });
    const QList<QToolBar *> bars = m_browser->window().findChildren<QToolBar *>();
    QWidget *exit = bars.first()->widgetForAction(bars.first()->actions().first());
    exit->setFocus();
    QStringList widgets;
    for (int i = 0; i < 5; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        widgets.append(QApplication::focusWidget()->toolTip());
    }
    QCOMPARE(widgets,
        (QStringList { u"Hintergrundfarbe"_s, u"Baureihe-Gruppen bearbeiten"_s, u"Info"_s, u"<p>Krokodile</p>"_s,
            u"<p>Zahnrad</p>"_s }));
    const QList<QGraphicsItem *> items = m_browser->canvas().focusItems();
    QCOMPARE(items.size(), 3 + 3 + 39 * 3 + 1); // buttons, first pair and its arrow; the others; the more button
    for (QGraphicsItem *item : items) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QVERIFY(view()->hasFocus());
        QCOMPARE(m_browser->canvas().focusItem(), item);
        QVERIFY(view()->viewport()->rect().intersects(view()->mapFromScene(item->sceneBoundingRect()).boundingRect()));
    }
    QTest::keyClick(view(), Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), exit);
    QCOMPARE(place(), u"none"_s);
}

void TestCanvasKeyboard::tabOrderHoldsAfterTheGroupsChanged()
{
    ModalScript script;
    script.then([](QWidget *form) {
        QMetaObject::invokeMethod(form, "groupsChanged"); // the column is built anew
        form->close();
    });
    m_browser->window().locGroup();
    QCOMPARE(script.problems(), QStringList());
    m_browser->activate();
    auto *group = m_browser->window().findChild<PictureItem *>();
    group->setFocus();
    QTest::keyClick(group, Qt::Key_Tab);
    QVERIFY(view()->hasFocus());
    QTest::keyClick(view(), Qt::Key_Backtab, Qt::ShiftModifier);
    QVERIFY(group->hasFocus());
    QTest::keyClick(group, Qt::Key_Backtab, Qt::ShiftModifier);
    QCOMPARE(QApplication::focusWidget()->toolTip(), u"Info"_s);
}

void TestCanvasKeyboard::backtabEntersAtTheEnd()
{
    search();
    const QList<QToolBar *> bars = m_browser->window().findChildren<QToolBar *>();
    QWidget *exit = bars.first()->widgetForAction(bars.first()->actions().first());
    exit->setFocus();
    QTest::keyClick(exit, Qt::Key_Backtab, Qt::ShiftModifier);
    QCOMPARE(place(), u"7 of 0"_s); // the more button
}

void TestCanvasKeyboard::arrowsMoveTheFocus()
{
    search();
    QTest::keyClick(view(), Qt::Key_Tab);
    QCOMPARE(place(), u"1 of 1"_s);
    QTest::keyClick(view(), Qt::Key_Right);
    QCOMPARE(place(), u"2 of 1"_s);
    QTest::keyClick(view(), Qt::Key_Down);
    QCOMPARE(place(), u"2 of 2"_s);
    QTest::keyClick(view(), Qt::Key_Left);
    QCOMPARE(place(), u"1 of 2"_s);
    QTest::keyClick(view(), Qt::Key_Up);
    QCOMPARE(place(), u"1 of 1"_s);
}

void TestCanvasKeyboard::returnOnAGroupButtonSearches()
{
    ModalScript script;
    script.then([&](QWidget *dialog) { script.click(dialog, u"Suchen"_s); });
    auto *group = m_browser->window().findChild<PictureItem *>();
    group->setFocus();
    QTest::keyClick(group, Qt::Key_Return);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(m_browser->numbers().size(), 40);
    m_browser->activate();
    QVERIFY(view()->hasFocus());
}

void TestCanvasKeyboard::editKeepsThePlace()
{
    search();
    walkTo(m_browser->button(ButtonKind::Edit, m_browser->block(20)));
    ModalScript script;
    script.then([&](QWidget *form) {
        auto *edit = form->findChild<QLineEdit *>(u"placeEdit"_s);
        edit->selectAll();
        QTest::keyClicks(edit, u"Wassen"_s);
        script.click(form, u"Schliessen"_s);
    });
    fire();
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(m_browser->block(20)->card().place, u"Wassen"_s);
    QTRY_COMPARE(place(), u"1 of 21"_s);
    QTest::keyClick(view(), Qt::Key_Tab);
    QCOMPARE(place(), u"2 of 21"_s);
}

void TestCanvasKeyboard::editWithoutAChangeKeepsThePlace()
{
    search();
    walkTo(m_browser->button(ButtonKind::Edit, m_browser->block(2)));
    ModalScript script;
    script.then([&](QWidget *form) { script.click(form, u"Schliessen"_s); });
    fire(Qt::Key_Space);
    QCOMPARE(script.problems(), QStringList());
    QTRY_COMPARE(place(), u"1 of 3"_s);
}

void TestCanvasKeyboard::deletionMovesToTheEntryThatMovedUp()
{
    search();
    walkTo(m_browser->button(ButtonKind::Delete, m_browser->block(3)));
    ModalScript script;
    script.box(
        u"Eintrag Entfernen"_s, u"Eintrag 4 mit der Lok-Nummer 103 und alle dazugehörenden Bilder löschen?"_s, u"Ja"_s);
    fire();
    QCOMPARE(script.problems(), QStringList());
    QTRY_COMPARE(place(), u"2 of 5"_s);
}

void TestCanvasKeyboard::deletionOfTheLastEntryMovesToTheOneBefore()
{
    search();
    m_browser->click(m_browser->button(ButtonKind::More));
    QCOMPARE(m_browser->numbers().size(), 5);
    walkTo(m_browser->button(ButtonKind::Delete, m_browser->block(4)));
    ModalScript script;
    script.box(u"Eintrag Entfernen"_s, u"Eintrag 45 mit der Lok-Nummer 144 und alle dazugehörenden Bilder löschen?"_s,
        u"Ja"_s);
    fire();
    QCOMPARE(script.problems(), QStringList());
    QTRY_COMPARE(place(), u"2 of 44"_s);
}

void TestCanvasKeyboard::turningPicturesKeepsThePlace()
{
    search();
    walkTo(m_browser->button(ButtonKind::Right, m_browser->block(0)));
    fire();
    QCOMPARE(m_browser->block(0)->key(), u"1-2"_s);
    QCOMPARE(place(), u"4 of 1"_s);
    fire(Qt::Key_Space);
    QCOMPARE(m_browser->block(0)->key(), u"1-4"_s);
    QCOMPARE(place(), u"3 of 1"_s); // nothing further to the right: the way back
    fire();
    QCOMPARE(m_browser->block(0)->key(), u"1-2"_s);
    QCOMPARE(place(), u"3 of 1"_s);
}

void TestCanvasKeyboard::photographOpensItsSource_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("Return") << Qt::Key_Return;
    QTest::newRow("Enter") << Qt::Key_Enter;
    QTest::newRow("Space") << Qt::Key_Space;
}

void TestCanvasKeyboard::photographOpensItsSource()
{
    QFETCH(Qt::Key, key);
    QVERIFY(QFile::remove(m_catalogue->path(u"source2.jpg"_s)));
    search();
    walkTo(m_browser->photos(m_browser->block(0)).at(1));
    ModalScript script;
    script.box(u"Datei-Fehler"_s, u"Bilddatei existiert nicht mehr unter diesem Verzeichnis!"_s);
    fire(key);
    QCOMPARE(script.problems(), QStringList());
    QTRY_COMPARE(place(), u"0 of 1"_s);
}

void TestCanvasKeyboard::countAndBackKeepThePlace()
{
    search({ u""_s, u"nur einmal"_s });
    walkTo(m_browser->button(ButtonKind::Count, m_browser->block(7)));
    fire();
    QVERIFY(m_browser->window().viewHolder().showsListing());
    QCOMPARE(place(), u"6 of 0"_s);
    fire();
    QVERIFY(!m_browser->window().viewHolder().showsListing());
    QCOMPARE(place(), u"5 of 8"_s);
}

void TestCanvasKeyboard::backAfterAChangeKeepsThePlace()
{
    search({ u""_s, u"nur einmal"_s });
    walkTo(m_browser->button(ButtonKind::Count, m_browser->block(7)));
    fire();
    ModalScript script;
    script.box(
        u"Eintrag Entfernen"_s, u"Eintrag 8 mit der Lok-Nummer 107 und alle dazugehörenden Bilder löschen?"_s, u"Ja"_s);
    walkTo(m_browser->button(ButtonKind::Delete, m_browser->block(0)));
    fire();
    QCOMPARE(script.problems(), QStringList());
    QTRY_COMPARE(place(), u"6 of 0"_s); // nothing else is left
    fire();
    QCOMPARE(place(), u"5 of 9"_s);
}

void TestCanvasKeyboard::moreGoesOnAtTheTopOfTheNextPage()
{
    search();
    walkTo(m_browser->button(ButtonKind::More));
    fire();
    QCOMPARE(m_browser->numbers().size(), 5);
    QCOMPARE(place(), u"1 of 41"_s);
}

void TestCanvasKeyboard::colourChangeKeepsThePlace()
{
    search();
    walkTo(m_browser->button(ButtonKind::Delete, m_browser->block(1)));
    m_browser->pickColor(u"schwarz"_s);
    QCOMPARE(m_browser->canvas().backgroundBrush().color(), QColor(Qt::black));
    QCOMPARE(place(), u"2 of 2"_s);
}

void TestCanvasKeyboard::mousePressLeavesTheKeyboardWhereItIs()
{
    search();
    m_browser->click(m_browser->button(ButtonKind::Right, m_browser->block(0)));
    QCOMPARE(m_browser->block(0)->key(), u"1-2"_s);
    QCOMPARE(place(), u"none"_s);
    walkTo(m_browser->button(ButtonKind::Edit, m_browser->block(0)));
    m_browser->click(m_browser->button(ButtonKind::Left, m_browser->block(0)));
    QCOMPARE(place(), u"1 of 1"_s);
}

void TestCanvasKeyboard::keysScrollTheCanvas()
{
    search();
    const auto top = [this] { return view()->mapToScene(0, 0).y(); };
    QCOMPARE(top(), 0.0);
    QTest::keyClick(view(), Qt::Key_PageDown);
    const double page = top();
    QVERIFY(page > 300);
    QTest::keyClick(view(), Qt::Key_PageUp);
    QCOMPARE(top(), 0.0);
    QTest::keyClick(view(), Qt::Key_End);
    QVERIFY(top() > page);
    QTest::keyClick(view(), Qt::Key_Home);
    QCOMPARE(top(), 0.0);
    QTest::keyClick(view(), Qt::Key_Down); // no button has the keyboard: the arrow scrolls
    QVERIFY(top() > 0);
}

void TestCanvasKeyboard::focusIsVisible()
{
    search();
    QGraphicsItem *edit = m_browser->button(ButtonKind::Edit, m_browser->block(0));
    const QRect canvasPart = view()->mapFromScene(edit->sceneBoundingRect()).boundingRect();
    const QImage before = view()->viewport()->grab(canvasPart).toImage();
    QTest::keyClick(view(), Qt::Key_Tab);
    QVERIFY(view()->viewport()->grab(canvasPart).toImage() != before);
    auto *group = m_browser->window().findChild<PictureItem *>();
    const QImage unfocused = group->grab().toImage();
    group->setFocus(Qt::TabFocusReason);
    QVERIFY(group->grab().toImage() != unfocused);
}

BAHNITO_TEST_MAIN(TestCanvasKeyboard)
#include "tst_canvaskeyboard.moc"
