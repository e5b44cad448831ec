#include "app/backgroundchooser.h"
#include "app/pictureitem.h"
#include "app/picturescrolllist.h"
#include "app/startpicture.h"
#include "browser/canvasview.h"
#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "browser/textitem.h"
#include "browser/viewholder.h"
#include "search/clock.h"
#include "store/colorsetting.h"
#include "store/statement.h"
#include "tests/support/browserwindow.h"
#include "tests/support/modalscript.h"
#include "tests/support/otherconnection.h"
#include "tests/support/testmain.h"
#include "tests/support/testpictures.h"

#include <QApplication>
#include <QFile>
#include <QGridLayout>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QScrollArea>
#include <QSignalSpy>
#include <QSqlQuery>
#include <QTest>
#include <QToolBar>
#include <QToolButton>

#include <memory>

using namespace Qt::StringLiterals;

class TestApplWindow final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void randomPictureNumber_data();
    void randomPictureNumber();
    void windowHasItsTitleAndSize();
    void toolBarsHoldTheActionsInOrder();
    void ctrlQClosesTheWindow();
    void aboutBoxShowsItsText();
    void emptyCatalogueLeavesTheCanvasEmpty();
    void groupPictureAloneIsNoStartPicture();
    void theOnlyPictureIsTheStartPicture();
    void startViewShowsEntryAndStatistics();
    void unreadableStartPictureStillShowsItsEntry();
    void colourMenuHasItsEntries();
    void colourButtonDoesNothingBeforeAColourWasPicked();
    void pickingTheStoredColourChangesOnlyTheIcon();
    void pickedColourReplacesAnUnreadOne();
    void pickedColourIsKeptAcrossRuns();
    void colourChangeShowsANewStartPicture();
    void colourChangeWithoutASearchListsClassFive();
    void colourChangeLoadsTheResultFromItsFirstPage();
    void displayFontsAreRegisteredInOrder();
    void groupColumnIsOrderedByName();
    void groupColumnKeepsItsWidth();
    void groupIconSizes_data();
    void groupIconSizes();
    void unreadableGroupPictureGivesAnEmptyIcon();
    void groupFormRebuildsTheColumn();
    void unreadableGroupsKeepTheirButtons();
    void unreadableGroupsAreToldAtTheStart();
    void updateActionsDoesNothing();

private:
    [[nodiscard]] static QColor barColor(const ApplWindow &window);

    std::unique_ptr<TestCatalogue> m_catalogue;
};

void TestApplWindow::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
}

void TestApplWindow::cleanup()
{
    Clock::setSource({});
    ColorSetting::saveAndRelease();
    m_catalogue.reset();
}

QColor TestApplWindow::barColor(const ApplWindow &window)
{
    const auto *button = window.findChild<QToolButton *>(u"colorButton"_s);
    return button->icon().pixmap(120, 80).toImage().pixelColor(80, 75);
}

void TestApplWindow::randomPictureNumber_data()
{
    QTest::addColumn<QTime>("time");
    QTest::addColumn<int>("pictures");
    QTest::addColumn<int>("number");
    QTest::newRow("no picture") << QTime(12, 0, 30, 500) << 0 << 0;
    QTest::newRow("one picture") << QTime(12, 0, 30, 500) << 1 << 1;
    QTest::newRow("plain product") << QTime(12, 0, 30, 501) << 1000 << 30;
    QTest::newRow("few milliseconds get 100 more") << QTime(12, 0, 30, 7) << 100000 << 30 * 107;
    QTest::newRow("few seconds get 10 more") << QTime(12, 0, 3, 500) << 100000 << 13 * 500;
    QTest::newRow("row 0 is never drawn") << QTime(12, 0, 30, 500) << 100 << 1;
}

void TestApplWindow::randomPictureNumber()
{
    QFETCH(QTime, time);
    QFETCH(int, pictures);
    QTEST(::randomPictureNumber(time, pictures), "number");
}

void TestApplWindow::windowHasItsTitleAndSize()
{
    const BrowserWindow browser;
    const ApplWindow &window = browser.window();
    QCOMPARE(window.windowTitle(), u"Bahnito App"_s);
    QCOMPARE(window.minimumWidth(), 600);
    QCOMPARE(window.maximumWidth(), 1300);
    ApplWindow fresh;
    QCOMPARE(fresh.size(), QSize(1280, 850));
    QCOMPARE(fresh.viewHolder().view()->alignment(), Qt::AlignLeft | Qt::AlignTop);
}

void TestApplWindow::toolBarsHoldTheActionsInOrder()
{
    const BrowserWindow browser;
    const QList<QToolBar *> bars = browser.window().findChildren<QToolBar *>();
    QCOMPARE(bars.size(), 2);
    QCOMPARE(bars.at(0)->windowTitle(), u"Exit"_s);
    QCOMPARE(bars.at(1)->windowTitle(), u"Hintergrund"_s);
    const QList<QAction *> exits = bars.at(0)->actions();
    QCOMPARE(exits.size(), 2);
    QCOMPARE(exits.at(0)->text(), u"Beenden"_s);
    QCOMPARE(exits.at(0)->shortcut(), QKeySequence(u"Ctrl+Q"_s));
    QVERIFY(exits.at(1)->isSeparator());
    const QList<QAction *> others = bars.at(1)->actions();
    QCOMPARE(others.size(), 6);
    QCOMPARE(bars.at(1)->widgetForAction(others.at(0))->toolTip(), u"Hintergrundfarbe"_s);
    QCOMPARE(others.at(2)->text(), u"Baureihe-Gruppen bearbeiten"_s);
    QCOMPARE(others.at(4)->text(), u"Info"_s);
    for (const int i : { 1, 3, 5 }) {
        QVERIFY(others.at(i)->isSeparator());
    }
    for (const QAction *action : { exits.at(0), others.at(2), others.at(4) }) {
        QVERIFY(!action->icon().isNull());
    }
}

void TestApplWindow::ctrlQClosesTheWindow()
{
    const BrowserWindow browser;
    browser.window().activateWindow();
    QTest::keyClick(&browser.window(), Qt::Key_Q, Qt::ControlModifier);
    QTRY_VERIFY(!browser.window().isVisible());
}

void TestApplWindow::aboutBoxShowsItsText()
{
    const BrowserWindow browser;
    ModalScript script;
    script.then([](QWidget *widget) {
        const auto *box = qobject_cast<QMessageBox *>(widget);
        QVERIFY(box);
        QCOMPARE(box->windowTitle(), u"Info zu Bahnito App"_s);
        QVERIFY(box->text().startsWith(u"Version 1.1.<p><b>Einleitung</b><p>Die Anwendung soll dazu dienen"_s));
        QVERIFY(box->text().endsWith(u"Kommentar fest, sowie max. 6 Fotos.</p> "_s));
        widget->close();
    });
    browser.window().aboutApplication();
    QCOMPARE(script.problems(), QStringList());
}

void TestApplWindow::emptyCatalogueLeavesTheCanvasEmpty()
{
    const BrowserWindow browser;
    QCOMPARE(browser.window().startPictureNumber(), 0);
    QVERIFY(browser.canvas().items().isEmpty());
    QCOMPARE(browser.canvas().backgroundBrush().color(), QColor(Qt::gray));
}

void TestApplWindow::groupPictureAloneIsNoStartPicture()
{
    QVERIFY(executeWrite(u"INSERT INTO loc_picture (pictAuxPath, locpictureid) "
                         "VALUES ('./Data/Pictures/AuxFolder/1.jpg', -1)"_s)
                .done);
    const BrowserWindow browser;
    QVERIFY(browser.canvas().items().isEmpty());
}

void TestApplWindow::theOnlyPictureIsTheStartPicture()
{
    const int model = m_catalogue->addModel(u"Ce 6/8"_s, m_catalogue->addGroup(u"Krokodile"_s));
    m_catalogue->addPicture(m_catalogue->addEntry(u"14253"_s, model));
    const BrowserWindow browser;
    QCOMPARE(browser.window().startPictureNumber(), 1);
    QVERIFY(browser.canvas().showsStartPicture());
    QCOMPARE(browser.photos(nullptr).size(), 1);
    QVERIFY(!browser.photos(nullptr).first()->isPlaceholder());
}

void TestApplWindow::startViewShowsEntryAndStatistics()
{
    const int model = m_catalogue->addModel(u"Ce 6/8"_s, m_catalogue->addGroup(u"Krokodile"_s));
    m_catalogue->addModel(u"Re 4/4"_s, 1);
    const int entry = m_catalogue->addEntry(u"14253"_s, model, u"Erstfeld"_s, QDate(1977, 8, 3), u"<b>Nebel</b>"_s);
    m_catalogue->addPicture(entry);
    m_catalogue->addPicture(entry);
    const BrowserWindow browser;
    const QStringList texts = browser.texts();
    const QString all = texts.join(u'|');
    for (const QString &part : { u"Ce 6/8"_s, u"14253"_s, u"Erstfeld"_s, u"03.08.1977"_s, u"<b>Nebel</b>"_s }) {
        QVERIFY2(all.contains(part), qPrintable(part));
    }
    QHash<QString, QPointF> places;
    const QList<QGraphicsItem *> items = browser.canvas().items();
    for (const QGraphicsItem *item : items) {
        if (const auto *text = qgraphicsitem_cast<const TextItem *>(item)) {
            places.insert(text->toPlainText(), text->scenePos());
        }
    }
    const QPointF anchor = places.value(u"Aktueller Bestand:"_s);
    QVERIFY(!anchor.isNull());
    QCOMPARE(places.value(u"2 Baureihen in 1 Gruppen"_s), anchor + QPointF(0, 18));
    QCOMPARE(places.value(u"2 Bilder in 1 Einträgen"_s), anchor + QPointF(0, 36));
}

void TestApplWindow::unreadableStartPictureStillShowsItsEntry()
{
    const int model = m_catalogue->addModel(u"Ce 6/8"_s, m_catalogue->addGroup(u"Krokodile"_s));
    m_catalogue->addPicture(m_catalogue->addEntry(u"14253"_s, model));
    QVERIFY(QFile::remove(u"./Data/Pictures/Folder001/copy1.jpg"_s));
    const BrowserWindow browser;
    QVERIFY(browser.photos(nullptr).first()->isPlaceholder());
    QVERIFY(browser.texts().join(u'|').contains(u"14253"_s));
}

void TestApplWindow::colourMenuHasItsEntries()
{
    const BrowserWindow browser;
    const auto *button = browser.window().findChild<QToolButton *>(u"colorButton"_s);
    QCOMPARE(button->popupMode(), QToolButton::MenuButtonPopup);
    const QList<QAction *> entries = button->menu()->actions();
    const QStringList names { u"grau"_s, u"weiss"_s, u"schwarz"_s, u"blau"_s, u"gelb"_s, u"grün"_s };
    const QList<QColor> colors { Qt::gray, Qt::white, Qt::black, QColor(185, 230, 255), QColor(250, 255, 175),
        QColor(145, 255, 200) };
    QCOMPARE(entries.size(), names.size());
    for (qsizetype i = 0; i < names.size(); ++i) {
        QCOMPARE(entries.at(i)->text(), names.at(i));
        QCOMPARE(entries.at(i)->data().value<QColor>(), colors.at(i));
        QCOMPARE(entries.at(i)->icon().pixmap(75, 50).toImage().pixelColor(30, 20), colors.at(i));
    }
    QCOMPARE(button->menu()->defaultAction(), entries.first());
}

void TestApplWindow::colourButtonDoesNothingBeforeAColourWasPicked()
{
    ColorSetting::instance().setBackground(Qt::white);
    const BrowserWindow browser;
    QTest::mouseClick(browser.window().findChild<QToolButton *>(u"colorButton"_s), Qt::LeftButton);
    QCOMPARE(ColorSetting::instance().scheme().background(), QColor(Qt::white)); // and not the menu's gray
    QVERIFY(browser.canvas().items().isEmpty());
}

void TestApplWindow::pickingTheStoredColourChangesOnlyTheIcon()
{
    BrowserWindow browser;
    browser.pickColor(u"grau"_s);
    QVERIFY(browser.canvas().items().isEmpty());
    QCOMPARE(barColor(browser.window()), QColor(Qt::gray));
}

/// The window shows gray for want of the stored colour; who picks gray then means it.
void TestApplWindow::pickedColourReplacesAnUnreadOne()
{
    QVERIFY(QSqlQuery().exec(u"UPDATE settings SET value = 3 WHERE name = 'BG_COLOR'"_s));
    {
        const OtherConnection other(u"BEGIN EXCLUSIVE"_s);
        QCOMPARE(ColorSetting::instance().backgroundIndex(), 0);
    }
    {
        BrowserWindow browser;
        browser.pickColor(u"grau"_s);
    }
    QCOMPARE(m_catalogue->value(u"SELECT value FROM settings WHERE name = 'BG_COLOR'"_s).toInt(), 0);
}

void TestApplWindow::pickedColourIsKeptAcrossRuns()
{
    {
        BrowserWindow browser;
        browser.pickColor(u"gelb"_s);
        QCOMPARE(browser.canvas().backgroundBrush().color(), QColor(250, 255, 175));
        QCOMPARE(ColorSetting::readSetting(u"COLOR-SETTING"_s, u"BG_COLOR"_s), 0); // until the window is gone
    }
    QCOMPARE(ColorSetting::readSetting(u"COLOR-SETTING"_s, u"BG_COLOR"_s), 4);
    const BrowserWindow again;
    QCOMPARE(again.canvas().backgroundBrush().color(), QColor(250, 255, 175));
    QCOMPARE(barColor(again.window()), QColor(250, 255, 175));
    const auto *button = again.window().findChild<QToolButton *>(u"colorButton"_s);
    QCOMPARE(button->menu()->defaultAction()->text(), u"grau"_s);
}

void TestApplWindow::colourChangeShowsANewStartPicture()
{
    const int model = m_catalogue->addModel(u"Ce 6/8"_s, m_catalogue->addGroup(u"Krokodile"_s));
    m_catalogue->addPicture(m_catalogue->addEntry(u"14253"_s, model));
    BrowserWindow browser;
    const Picture *before = browser.photos(nullptr).first();
    QSignalSpy redrawn(&browser.canvas(), &PictureScene::contentsChanged);
    browser.pickColor(u"schwarz"_s);
    QCOMPARE(redrawn.count(), 1);
    QVERIFY(before);
    QVERIFY(browser.canvas().showsStartPicture());
    QCOMPARE(browser.canvas().backgroundBrush().color(), QColor(Qt::black));
}

void TestApplWindow::colourChangeWithoutASearchListsClassFive()
{
    const int group = m_catalogue->addGroup(u"Krokodile"_s);
    for (const QString &name : { u"A"_s, u"B"_s, u"C"_s, u"D"_s, u"Fünfte"_s }) {
        m_catalogue->addModel(name, group);
    }
    m_catalogue->addEntry(u"7"_s, 5);
    BrowserWindow browser;
    browser.pickColor(u"blau"_s);
    QCOMPARE(browser.caption(), u"1 Eintrag der Baureihe Fünfte"_s);
    QCOMPARE(browser.numbers(), QStringList { u"7"_s });
}

void TestApplWindow::colourChangeLoadsTheResultFromItsFirstPage()
{
    const int group = m_catalogue->addGroup(u"Krokodile"_s);
    const int model = m_catalogue->addModel(u"Ce 6/8"_s, group);
    for (int i = 0; i < 50; ++i) {
        m_catalogue->addEntry(QString::number(100 + i), model, u"Bern"_s, QDate(1990, 1, 1).addDays(i));
    }
    BrowserWindow browser;
    QCOMPARE(browser.search(group), QStringList());
    browser.click(browser.button(ButtonKind::More));
    QCOMPARE(browser.numbers().first(), u"140"_s);
    browser.pickColor(u"weiss"_s);
    QCOMPARE(browser.numbers().first(), u"100"_s);
}

void TestApplWindow::displayFontsAreRegisteredInOrder()
{
    const BrowserWindow browser;
    const ColorSetting &setting = ColorSetting::instance();
    const QList<FontRecord> &fonts = setting.fonts();
    const QStringList styles { u"bold"_s, u"italic"_s, u"bold"_s, u"italic"_s, u"italic"_s, u"italic"_s };
    const QList<int> points { 14, 12, 10, 10, 9, 8 };
    const QList<int> pixels { 23, 20, 16, 16, 15, 13 };
    QCOMPARE(fonts.size(), 6);
    for (int i = 0; i < 6; ++i) {
        QCOMPARE(fonts.at(i).styleWord, styles.at(i));
        QCOMPARE(fonts.at(i).pointSize, points.at(i));
        QCOMPARE(fonts.at(i).pixelSize, pixels.at(i));
        QCOMPARE(fonts.at(i).divisor, 30);
        QCOMPARE(fonts.at(i).rect, QRectF(1, 1, 1, 10));
        QCOMPARE(setting.fontAt(i).pixelSize(), pixels.at(i));
        QCOMPARE(setting.fontAt(i).bold(), styles.at(i) == u"bold"_s);
        QCOMPARE(setting.fontAt(i).italic(), styles.at(i) == u"italic"_s);
    }
    QCOMPARE(setting.view(), browser.window().viewHolder().view());
}

void TestApplWindow::groupColumnIsOrderedByName()
{
    m_catalogue->addGroup(u"Dampf"_s);
    m_catalogue->addGroup(u"<b>Alpen</b>"_s);
    const BrowserWindow browser;
    const auto *column = browser.window().findChild<PictureScrollList *>();
    const auto *grid = qobject_cast<QGridLayout *>(column->layout());
    QVERIFY(grid);
    QCOMPARE(grid->sizeConstraint(), QLayout::SetFixedSize);
    const auto *first = qobject_cast<PictureItem *>(grid->itemAtPosition(0, 0)->widget());
    const auto *second = qobject_cast<PictureItem *>(grid->itemAtPosition(2, 0)->widget());
    QVERIFY(!grid->itemAtPosition(1, 0));
    QCOMPARE(first->accessibleName(), u"<b>Alpen</b>"_s);
    QVERIFY(first->toolTip().contains(u"&lt;b&gt;Alpen&lt;/b&gt;"_s)); // a tool tip would take the tags for markup
    QCOMPARE(second->accessibleName(), u"Dampf"_s);
}

void TestApplWindow::groupColumnKeepsItsWidth()
{
    const BrowserWindow browser;
    const auto *area = browser.window().findChild<QScrollArea *>();
    QCOMPARE(area->width(), 152);
    QCOMPARE(area->minimumWidth(), 152);
    QCOMPARE(area->maximumWidth(), 152);
    QCOMPARE(area->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOn);
    QCOMPARE(area->horizontalScrollBarPolicy(), Qt::ScrollBarAsNeeded);
    QCOMPARE(area->viewport()->backgroundRole(), QPalette::Dark);
    QVERIFY(area->viewport()->autoFillBackground());
}

void TestApplWindow::groupIconSizes_data()
{
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<QSize>("icon");
    QTest::newRow("landscape") << QSize(750, 500) << QSize(120, 80);
    QTest::newRow("portrait") << QSize(500, 750) << QSize(80, 120);
    QTest::newRow("square") << QSize(500, 500) << QSize(120, 120);
    QTest::newRow("small is enlarged") << QSize(30, 20) << QSize(120, 80);
    QTest::newRow("half rounds up") << QSize(240, 101) << QSize(120, 51);
    QTest::newRow("thin line keeps a pixel") << QSize(2000, 1) << QSize(120, 1);
}

void TestApplWindow::groupIconSizes()
{
    QFETCH(QSize, picture);
    QTEST(groupIconSize(picture), "icon");
}

void TestApplWindow::unreadableGroupPictureGivesAnEmptyIcon()
{
    writeTestJpeg(u"./Data/Pictures/AuxFolder/1.jpg"_s, { 75, 50 });
    const int good = m_catalogue->addGroup(u"Gut"_s, u"./Data/Pictures/AuxFolder/1.jpg"_s);
    const int bad = m_catalogue->addGroup(u"Fehlt"_s, u"./Data/Pictures/AuxFolder/2.jpg"_s);
    const BrowserWindow browser;
    const auto *goodButton = browser.window().findChild<PictureItem *>(u"group%1"_s.arg(good));
    QCOMPARE(goodButton->icon().availableSizes(), QList<QSize> { QSize(120, 80) });
    const auto *badButton = browser.window().findChild<PictureItem *>(u"group%1"_s.arg(bad));
    QVERIFY(badButton->icon().isNull());
    QCOMPARE(badButton->text(), u"Fehlt"_s);
    QCOMPARE(goodButton->iconSize(), badButton->iconSize());
}

void TestApplWindow::groupFormRebuildsTheColumn()
{
    m_catalogue->addGroup(u"Krokodile"_s);
    const BrowserWindow browser;
    const auto buttons = [&] { return browser.window().findChildren<PictureItem *>().size(); };
    QCOMPARE(buttons(), 1);
    ModalScript script;
    script.then([&](QWidget *form) {
        QCOMPARE(form->windowTitle(), u"Baureihe-Gruppen (mit Bild)"_s);
        m_catalogue->addGroup(u"Dampf"_s);
        QMetaObject::invokeMethod(form, "groupsChanged");
        script.click(form, u"Schliessen"_s);
    });
    const QList<QToolBar *> bars = browser.window().findChildren<QToolBar *>();
    auto *button = qobject_cast<QToolButton *>(bars.at(1)->widgetForAction(bars.at(1)->actions().at(2)));
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(buttons(), 2);
}

/// To the owner an empty column would look like the loss of everything.
void TestApplWindow::unreadableGroupsKeepTheirButtons()
{
    m_catalogue->addGroup(u"Krokodile"_s);
    m_catalogue->addGroup(u"Dampf"_s);
    const BrowserWindow browser;
    auto *column = browser.window().findChild<PictureScrollList *>();
    const OtherConnection other(u"BEGIN EXCLUSIVE"_s);
    QVERIFY(other.works());
    column->rebuild();
    QCOMPARE(column->findChildren<PictureItem *>().size(), 2);
    QVERIFY(!column->findChild<QLabel *>(u"hint"_s));
}

void TestApplWindow::unreadableGroupsAreToldAtTheStart()
{
    m_catalogue->addGroup(u"Krokodile"_s);
    const BrowserWindow browser;
    auto *column = browser.window().findChild<PictureScrollList *>();
    qDeleteAll(column->findChildren<PictureItem *>()); // as if the start had been during the lock
    {
        const OtherConnection other(u"BEGIN EXCLUSIVE"_s);
        column->rebuild();
        const auto *hint = column->findChild<QLabel *>(u"hint"_s);
        QVERIFY(hint);
        QCOMPARE(hint->text(), u"Die Gruppen sind gerade nicht lesbar."_s);
    }
    column->rebuild();
    QCOMPARE(column->findChildren<PictureItem *>().size(), 1);
    QVERIFY(!column->findChild<QLabel *>(u"hint"_s));
}

void TestApplWindow::updateActionsDoesNothing()
{
    const BrowserWindow browser;
    QVERIFY(browser.window().metaObject()->indexOfSlot("updateActions()") >= 0);
    browser.window().updateActions();
    QVERIFY(browser.canvas().items().isEmpty());
}

BAHNITO_TEST_MAIN(TestApplWindow)
#include "tst_applwindow.moc"
