#include "browser/canvasview.h"
#include "browser/entryblock.h"
#include "browser/loadprogress.h"
#include "browser/picturescene.h"
#include "browser/resultrows.h"
#include "browser/viewholder.h"
#include "store/catalogquery.h"
#include "store/colorsetting.h"
#include "store/statement.h"
#include "tests/support/browserwindow.h"
#include "tests/support/formfields.h"
#include "tests/support/modalscript.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QComboBox>
#include <QDesktopServices>
#include <QFile>
#include <QHelpEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QUrl>

#include <memory>

using namespace Qt::StringLiterals;

/// Receives the files that the program hands to the desktop.
class Viewer final : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void open(const QUrl &url) { opened.append(url); }

public:
    QList<QUrl> opened;
};

class TestResultList final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void groupWithoutClassesSaysSo();
    void groupWithAnUnreadableIdOffersNoClasses();
    void onlyALeftClickOpensTheSearch();
    void closedDialogLeavesTheCanvas();
    void searchChoicesAreStoredByASearchOnly();
    void fortyEntriesFitOnOnePage();
    void fortyOneEntriesBringTheMoreButton();
    void pagesOfAHundredEntries();
    void searchBeginsAtTheChosenPosition();
    void searchBehindTheLastEntryShowsTheCaptionOnly();
    void oneEntryIsAnEintrag();
    void emptyClassShowsTheCaptionOnly();
    void sortOrders_data();
    void sortOrders();
    void onceByNumberShowsTheLatestSightingWithItsCount();
    void onceByDateShowsTheOldestSighting();
    void onceByNumberAcrossTwoPages();
    void redrawInOnceModeKeepsTheNumbersOfEarlierPages();
    void numberWithAQuoteCountsNothing();
    void picturesOnlyLeavesEntriesOutButKeepsTheirPositions();
    void editRedrawsThePageInPlace();
    void unchangedEntryIsNotRedrawn();
    void entryWithAnUnreadableIdOpensNoForm_data();
    void entryWithAnUnreadableIdOpensNoForm();
    void deleteAsksAndRedrawsThePageInPlace();
    void refusedDeletionChangesNothing();
    void arrowsTurnThePairsOfPictures();
    void doubleClickOpensTheSource();
    void missingSourceIsNamed();
    void missingSampleSourceIsNamedSo();
    void pressOnAPhotographDoesNothing();
    void doubleClickOnAButtonActsOnceOnly();
    void doubleClickOnMoreOpensNoPhotographOfTheNextPage();
    void missingButtonImageTakesTheCompiledInCopy();
    void textsAreNeverMarkup();
    void progressAppearsOnlyAfterItsTime();
    void cancelledProgressStopsLoading();
    void rowsAgreeWithTheQueriesTheyReplace();

private:
    void addEntries(int count, int firstNumber = 1000);

    std::unique_ptr<TestCatalogue> m_catalogue;
    std::unique_ptr<BrowserWindow> m_browser;
    int m_group = 0;
    int m_model = 0;
};

void TestResultList::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    m_group = m_catalogue->addGroup(u"Krokodile"_s);
    m_model = m_catalogue->addModel(u"Ce 6/8"_s, m_group);
    m_browser = std::make_unique<BrowserWindow>();
}

void TestResultList::cleanup()
{
    m_browser.reset();
    m_catalogue.reset();
}

void TestResultList::addEntries(int count, int firstNumber)
{
    for (int i = 0; i < count; ++i) {
        m_catalogue->addEntry(QString::number(firstNumber + i), m_model, u"Bern"_s, QDate(1990, 1, 1).addDays(i));
    }
}

void TestResultList::groupWithoutClassesSaysSo()
{
    const int empty = m_catalogue->addGroup(u"Dampf"_s);
    m_browser.reset();
    m_browser = std::make_unique<BrowserWindow>();
    ModalScript script;
    script.box(u"Keine Daten"_s, u"Es wurden noch keine Baureihen unter dieser Gruppe erfasst!"_s);
    m_browser->clickGroup(empty);
    QCOMPARE(script.problems(), QStringList());
}

void TestResultList::groupWithAnUnreadableIdOffersNoClasses()
{
    const int group = m_catalogue->addGroup(u"Dampf"_s);
    QVERIFY(executeWrite(u"UPDATE locomotive SET id = 4294967303 WHERE id = %1"_s.arg(group)).done);
    m_browser.reset();
    m_browser = std::make_unique<BrowserWindow>();
    ModalScript script;
    script.box(u"Keine Daten"_s, u"Es wurden noch keine Baureihen unter dieser Gruppe erfasst!"_s);
    m_browser->clickGroup(0);
    QCOMPARE(script.problems(), QStringList());
    auto *button = m_browser->window().findChild<QToolButton *>(u"group0"_s);
    QHelpEvent help(QEvent::ToolTip, {}, button->mapToGlobal(QPoint()));
    QApplication::sendEvent(button, &help);
    QVERIFY2(button->toolTip().contains(u"Noch keine Baureihe"_s), qPrintable(button->toolTip()));
}

void TestResultList::onlyALeftClickOpensTheSearch()
{
    ModalScript script;
    auto *button = m_browser->window().findChild<QToolButton *>(u"group%1"_s.arg(m_group));
    QTest::mouseClick(button, Qt::RightButton);
    QTest::mouseClick(button, Qt::MiddleButton);
    QTest::qWait(50);
    QCOMPARE(script.problems(), QStringList()); // no dialog came up
}

void TestResultList::closedDialogLeavesTheCanvas()
{
    ModalScript script;
    script.then([&](QWidget *dialog) {
        QCOMPARE(dialog->windowTitle(), u"Benutzereingabe"_s);
        QVERIFY(!dialog->parentWidget());
        script.click(dialog, u"Schliessen"_s);
    });
    m_browser->clickGroup(m_group);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(m_browser->caption(), QString());
}

void TestResultList::searchChoicesAreStoredByASearchOnly()
{
    QCOMPARE(m_browser->search(m_group, { {}, u"nur einmal"_s, u"ja"_s, u"Ort"_s }), QStringList());
    const ColorSetting &setting = ColorSetting::instance();
    QCOMPARE(setting.queryValue(u"SingleOrMulti"_s), 1);
    QCOMPARE(setting.queryValue(u"InclPictures"_s), 1);
    QCOMPARE(setting.queryValue(u"Sort"_s), 2);
    QVERIFY(setting.once());
    QCOMPARE(ColorSetting::readSetting(u"QUERY-Type"_s, u"Sort"_s), 0); // written at shutdown only
    m_browser.reset();
    QCOMPARE(ColorSetting::readSetting(u"QUERY-Type"_s, u"Sort"_s), 2);
}

void TestResultList::fortyEntriesFitOnOnePage()
{
    addEntries(40);
    QCOMPARE(m_browser->search(m_group), QStringList());
    QCOMPARE(m_browser->caption(), u"40 Einträge der Baureihe Ce 6/8"_s);
    QCOMPARE(m_browser->numbers().size(), 40);
    QVERIFY(!m_browser->button(ButtonKind::More));
}

void TestResultList::fortyOneEntriesBringTheMoreButton()
{
    addEntries(41);
    QCOMPARE(m_browser->search(m_group), QStringList());
    QCOMPARE(m_browser->numbers().size(), 40);
    ButtonItem *more = m_browser->button(ButtonKind::More);
    QVERIFY(more);
    const EntryBlock *last = m_browser->block(39);
    QCOMPARE(more->pos(), QPointF(950, last->y() + last->height() + 30 - 10));
    m_browser->click(more);
    QCOMPARE(m_browser->numbers(), QStringList { u"1040"_s });
    QCOMPARE(m_browser->caption(), u"41 Einträge der Baureihe Ce 6/8"_s);
    QVERIFY(!m_browser->button(ButtonKind::More));
}

void TestResultList::pagesOfAHundredEntries()
{
    addEntries(100);
    QCOMPARE(m_browser->search(m_group), QStringList());
    QCOMPARE(m_browser->numbers().first(), u"1000"_s);
    const QList<EntryBlock *> blocks = m_browser->canvas().blocks();
    QCOMPARE(blocks.first()->y(), 80.0);
    QCOMPARE(blocks.at(1)->y(), 80 + blocks.first()->height() + 30);
    QCOMPARE(m_browser->canvas().sceneRect().topLeft(), QPointF(0, 0));
    m_browser->click(m_browser->button(ButtonKind::More));
    QCOMPARE(m_browser->numbers().first(), u"1040"_s);
    QCOMPARE(m_browser->numbers().size(), 40);
    m_browser->click(m_browser->button(ButtonKind::More));
    QCOMPARE(m_browser->numbers().first(), u"1080"_s);
    QCOMPARE(m_browser->numbers().size(), 20);
    QVERIFY(!m_browser->button(ButtonKind::More));
}

void TestResultList::searchBeginsAtTheChosenPosition()
{
    addEntries(100);
    QCOMPARE(m_browser->search(m_group, { {}, u"immer"_s, u"nein alle"_s, u"Datum"_s, u"40"_s }), QStringList());
    QCOMPARE(m_browser->numbers().first(), u"1040"_s);
    QCOMPARE(m_browser->numbers().size(), 40);
    QVERIFY(m_browser->button(ButtonKind::More));
}

void TestResultList::searchBehindTheLastEntryShowsTheCaptionOnly()
{
    addEntries(80);
    QCOMPARE(m_browser->search(m_group, { {}, u"immer"_s, u"nein alle"_s, u"Datum"_s, u"80"_s }), QStringList());
    QCOMPARE(m_browser->numbers(), QStringList());
    QCOMPARE(m_browser->caption(), u"80 Einträge der Baureihe Ce 6/8"_s);
}

void TestResultList::oneEntryIsAnEintrag()
{
    addEntries(1);
    QCOMPARE(m_browser->search(m_group), QStringList());
    QCOMPARE(m_browser->caption(), u"1 Eintrag der Baureihe Ce 6/8"_s);
}

void TestResultList::emptyClassShowsTheCaptionOnly()
{
    QCOMPARE(m_browser->search(m_group), QStringList());
    QCOMPARE(m_browser->texts(), QStringList { u"0 Einträge der Baureihe Ce 6/8"_s });
    QCOMPARE(m_browser->canvas().sceneRect().height(), 80.0);
}

void TestResultList::sortOrders_data()
{
    QTest::addColumn<QString>("sort");
    QTest::addColumn<QStringList>("numbers");
    QTest::newRow("by date") << u"Datum"_s << QStringList { u"9"_s, u"10"_s, u"8"_s };
    QTest::newRow("by number, as text") << u"Nummer"_s << QStringList { u"10"_s, u"8"_s, u"9"_s };
    QTest::newRow("by place") << u"Ort"_s << QStringList { u"8"_s, u"9"_s, u"10"_s };
}

void TestResultList::sortOrders()
{
    QFETCH(QString, sort);
    m_catalogue->addEntry(u"10"_s, m_model, u"Zug"_s, QDate(1991, 1, 1));
    m_catalogue->addEntry(u"9"_s, m_model, u"Chur"_s, QDate(1990, 1, 1));
    m_catalogue->addEntry(u"8"_s, m_model, u"Arth"_s, QDate(1992, 1, 1));
    QCOMPARE(m_browser->search(m_group, { {}, u"immer"_s, u"nein alle"_s, sort }), QStringList());
    QTEST(m_browser->numbers(), "numbers");
}

void TestResultList::onceByNumberShowsTheLatestSightingWithItsCount()
{
    for (const int year : { 1990, 1992, 1991 }) {
        m_catalogue->addEntry(u"101"_s, m_model, u"Bern"_s, QDate(year, 1, 1));
    }
    m_catalogue->addEntry(u"102"_s, m_model);
    QCOMPARE(m_browser->search(m_group, { {}, u"nur einmal"_s, u"nein alle"_s, u"Nummer"_s }), QStringList());
    QCOMPARE(m_browser->numbers(), (QStringList { u"101"_s, u"102"_s })); // ascending: DESC touches the date only
    QCOMPARE(m_browser->block(0)->card().seen, QDate(1992, 1, 1));
    QVERIFY(m_browser->button(ButtonKind::Count, m_browser->block(0)));
    QVERIFY(m_browser->texts().contains(u"3"_s));
    QVERIFY(m_browser->texts().contains(u"1"_s));
    QCOMPARE(m_browser->caption(), u"4 Einträge der Baureihe Ce 6/8"_s); // all of the class
}

void TestResultList::onceByDateShowsTheOldestSighting()
{
    for (const int year : { 1991, 1990, 1992 }) {
        m_catalogue->addEntry(u"101"_s, m_model, u"Bern"_s, QDate(year, 1, 1));
    }
    QCOMPARE(m_browser->search(m_group, { {}, u"nur einmal"_s, u"nein alle"_s, u"Datum"_s }), QStringList());
    QCOMPARE(m_browser->numbers(), QStringList { u"101"_s });
    QCOMPARE(m_browser->block(0)->card().seen, QDate(1990, 1, 1));
}

void TestResultList::onceByNumberAcrossTwoPages()
{
    // 30 numbers with three sightings each: 20 numbers fill the first page, which ends after row 60.
    for (int i = 0; i < 90; ++i) {
        m_catalogue->addEntry(QString::number(1000 + i / 3), m_model, u"Bern"_s, QDate(1990, 1, 1).addDays(i));
    }
    QCOMPARE(m_browser->search(m_group, { {}, u"nur einmal"_s, u"nein alle"_s, u"Nummer"_s }), QStringList());
    QCOMPARE(m_browser->numbers().size(), 20);
    QCOMPARE(m_browser->numbers().last(), u"1019"_s);
    m_browser->click(m_browser->button(ButtonKind::More));
    QCOMPARE(m_browser->numbers().size(), 10);
    QCOMPARE(m_browser->numbers().first(), u"1020"_s);
}

void TestResultList::redrawInOnceModeKeepsTheNumbersOfEarlierPages()
{
    // By date, the numbers of the first page come again on the second.
    for (int i = 0; i < 120; ++i) {
        m_catalogue->addEntry(
            QString::number(1000 + (i < 60 ? i % 30 : i)), m_model, u"Bern"_s, QDate(1990, 1, 1).addDays(i));
    }
    QCOMPARE(m_browser->search(m_group, { {}, u"nur einmal"_s, u"nein alle"_s, u"Datum"_s }), QStringList());
    QCOMPARE(m_browser->numbers().size(), 30); // the page ends at position 40 with the numbers 1000 to 1029
    m_browser->click(m_browser->button(ButtonKind::More));
    const QStringList secondPage = m_browser->numbers();
    QVERIFY(!secondPage.contains(u"1015"_s));
    ModalScript script;
    script.then([&](QWidget *form) {
        QVERIFY(typeInto(form, u"Ort:"_s, u" Hbf"_s));
        script.click(form, u"Speichern"_s);
        script.click(form, u"Schliessen"_s);
    });
    m_browser->click(m_browser->button(ButtonKind::Edit, m_browser->block(0)));
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(m_browser->numbers(), secondPage);
    QCOMPARE(m_browser->block(0)->card().place, u"Bern Hbf"_s);
}

void TestResultList::numberWithAQuoteCountsNothing()
{
    m_catalogue->addEntry(u"7'8"_s, m_model);
    QCOMPARE(m_browser->search(m_group, { {}, u"nur einmal"_s, u"nein alle"_s, u"Nummer"_s }), QStringList());
    QCOMPARE(m_browser->numbers(), QStringList { u"7'8"_s });
    QVERIFY(m_browser->texts().contains(u"0"_s));
}

void TestResultList::picturesOnlyLeavesEntriesOutButKeepsTheirPositions()
{
    addEntries(50);
    for (int entry = 1; entry <= 50; entry += 2) {
        m_catalogue->addPicture(entry);
    }
    QCOMPARE(m_browser->search(m_group, { {}, u"immer"_s, u"ja"_s, u"Datum"_s }), QStringList());
    QCOMPARE(m_browser->numbers().size(), 20); // 40 positions, every other one without a picture
    m_browser->click(m_browser->button(ButtonKind::More));
    QCOMPARE(m_browser->numbers().size(), 5);
}

void TestResultList::editRedrawsThePageInPlace()
{
    addEntries(90);
    QCOMPARE(m_browser->search(m_group), QStringList());
    m_browser->click(m_browser->button(ButtonKind::More));
    EntryBlock *block = m_browser->block(20);
    const QPointF position = m_browser->button(ButtonKind::Edit, block)->scenePos();
    ModalScript script;
    script.then([&](QWidget *form) {
        QCOMPARE(form->windowTitle(), u"Edit Bahnito-Eintrag"_s);
        auto *place = form->findChild<QLineEdit *>(u"placeEdit"_s);
        place->selectAll();
        QTest::keyClicks(place, u"Goeschenen"_s);
        script.click(form, u"Schliessen"_s);
    });
    m_browser->click(m_browser->button(ButtonKind::Edit, block));
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(m_browser->numbers().first(), u"1040"_s); // still the second page
    QCOMPARE(m_browser->block(20)->card().place, u"Goeschenen"_s);
    const CanvasView *view = m_browser->window().viewHolder().view();
    const QPointF centre = view->mapToScene(view->viewport()->rect().center());
    QVERIFY2(qAbs(centre.y() - position.y()) < 3, qPrintable(QString::number(centre.y() - position.y())));
}

void TestResultList::unchangedEntryIsNotRedrawn()
{
    addEntries(3);
    QCOMPARE(m_browser->search(m_group), QStringList());
    EntryBlock *block = m_browser->block(1);
    ModalScript script;
    script.then([&](QWidget *form) { script.click(form, u"Schliessen"_s); });
    m_browser->click(m_browser->button(ButtonKind::Edit, block));
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(m_browser->block(1), block); // the very same block stands
}

void TestResultList::entryWithAnUnreadableIdOpensNoForm_data()
{
    QTest::addColumn<qint64>("id");
    QTest::newRow("beyond 32 bits") << Q_INT64_C(4294967303);
    QTest::newRow("0") << Q_INT64_C(0);
    QTest::newRow("that of a new entry") << Q_INT64_C(-1);
}

void TestResultList::entryWithAnUnreadableIdOpensNoForm()
{
    QFETCH(qint64, id);
    addEntries(3);
    QVERIFY(executeWrite(u"UPDATE loc_seen SET id = %1 WHERE id = 2"_s.arg(id)).done);
    QCOMPARE(m_browser->search(m_group), QStringList());
    QSignalSpy redrawn(&m_browser->canvas(), &PictureScene::contentsChanged);
    ModalScript script; // no dialog is expected
    m_browser->click(m_browser->button(ButtonKind::Edit, m_browser->block(1)));
    QTRY_COMPARE(redrawn.size(), 1);
    QTest::qWait(50);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(m_browser->numbers().size(), 3);
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM loc_seen"_s).toInt(), 3);
}

void TestResultList::deleteAsksAndRedrawsThePageInPlace()
{
    addEntries(90);
    const int picture = m_catalogue->addPicture(43);
    QCOMPARE(picture, 1);
    QCOMPARE(m_browser->search(m_group), QStringList());
    m_browser->click(m_browser->button(ButtonKind::More));
    ModalScript script;
    script.box(u"Eintrag Entfernen"_s, u"Eintrag 43 mit der Lok-Nummer 1042 und alle dazugehörenden Bilder löschen?"_s,
        u"Ja"_s);
    m_browser->click(m_browser->button(ButtonKind::Delete, m_browser->block(2)));
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(m_browser->numbers().mid(0, 3), (QStringList { u"1040"_s, u"1041"_s, u"1043"_s }));
    QCOMPARE(m_browser->caption(), u"89 Einträge der Baureihe Ce 6/8"_s);
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM loc_picture"_s).toInt(), 0);
    QVERIFY(!QFile::exists(u"./Data/Pictures/Folder001/copy1.jpg"_s));
    QVERIFY(QFile::exists(m_catalogue->path(u"source1.jpg"_s)));
}

void TestResultList::refusedDeletionChangesNothing()
{
    addEntries(2);
    QCOMPARE(m_browser->search(m_group), QStringList());
    ModalScript script;
    script.box(u"Eintrag Entfernen"_s, u"Eintrag 1 mit der Lok-Nummer 1000 und alle dazugehörenden Bilder löschen?"_s,
        u"Nein"_s);
    m_browser->click(m_browser->button(ButtonKind::Delete, m_browser->block(0)));
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(m_browser->numbers().size(), 2);
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM loc_seen"_s).toInt(), 2);
}

void TestResultList::arrowsTurnThePairsOfPictures()
{
    addEntries(1);
    for (int i = 0; i < 5; ++i) {
        m_catalogue->addPicture(1);
    }
    QCOMPARE(m_browser->search(m_group), QStringList());
    EntryBlock *block = m_browser->block(0);
    const auto sources = [&] {
        QStringList names;
        for (const Picture *photo : m_browser->photos(block)) {
            names.append(photo->sourcePath().section(u'/', -1));
        }
        return names;
    };
    QCOMPARE(block->key(), u"1-0"_s);
    QCOMPARE(sources(), (QStringList { u"source1.jpg"_s, u"source2.jpg"_s }));
    QVERIFY(!m_browser->button(ButtonKind::Left, block));
    m_browser->click(m_browser->button(ButtonKind::Right, block));
    QCOMPARE(block->key(), u"1-2"_s);
    QCOMPARE(sources(), (QStringList { u"source3.jpg"_s, u"source4.jpg"_s }));
    m_browser->click(m_browser->button(ButtonKind::Right, block));
    QCOMPARE(sources(), QStringList { u"source5.jpg"_s });
    QVERIFY(!m_browser->button(ButtonKind::Right, block));
    m_browser->click(m_browser->button(ButtonKind::Left, block));
    QCOMPARE(sources(), (QStringList { u"source3.jpg"_s, u"source4.jpg"_s }));
}

void TestResultList::doubleClickOpensTheSource()
{
    Viewer viewer;
    QDesktopServices::setUrlHandler(u"file"_s, &viewer, "open");
    addEntries(1);
    m_catalogue->addPicture(1);
    QCOMPARE(m_browser->search(m_group), QStringList());
    m_browser->doubleClick(m_browser->photos(m_browser->block(0)).first());
    QDesktopServices::unsetUrlHandler(u"file"_s);
    QCOMPARE(viewer.opened, QList<QUrl> { QUrl::fromLocalFile(m_catalogue->path(u"source1.jpg"_s)) });
}

void TestResultList::missingSourceIsNamed()
{
    addEntries(1);
    m_catalogue->addPicture(1);
    QVERIFY(QFile::remove(m_catalogue->path(u"source1.jpg"_s)));
    QCOMPARE(m_browser->search(m_group), QStringList());
    ModalScript script;
    script.box(u"Datei-Fehler"_s, u"Bilddatei existiert nicht mehr unter diesem Verzeichnis!"_s);
    m_browser->doubleClick(m_browser->photos(m_browser->block(0)).first());
    QCOMPARE(script.problems(), QStringList());
}

void TestResultList::missingSampleSourceIsNamedSo()
{
    addEntries(1);
    m_catalogue->addPicture(1);
    QVERIFY(executeWrite(u"UPDATE loc_picture SET pictOrigPath = 'D:/xabe/Pictures/02Bahnito/1.jpg'"_s).done);
    QCOMPARE(m_browser->search(m_group), QStringList());
    ModalScript script;
    script.box(
        u"Datei-Fehler"_s, u"Bilddatei stammt aus den mitgelieferten Testdaten, das Original ist nicht vorhanden!"_s);
    m_browser->doubleClick(m_browser->photos(m_browser->block(0)).first());
    QCOMPARE(script.problems(), QStringList());
}

void TestResultList::pressOnAPhotographDoesNothing()
{
    Viewer viewer;
    QDesktopServices::setUrlHandler(u"file"_s, &viewer, "open");
    addEntries(1);
    m_catalogue->addPicture(1);
    QCOMPARE(m_browser->search(m_group), QStringList());
    ModalScript script;
    m_browser->click(m_browser->photos(m_browser->block(0)).first());
    QTest::qWait(50);
    QDesktopServices::unsetUrlHandler(u"file"_s);
    QCOMPARE(viewer.opened, QList<QUrl>());
    QCOMPARE(script.problems(), QStringList());
}

void TestResultList::doubleClickOnAButtonActsOnceOnly()
{
    addEntries(100);
    QCOMPARE(m_browser->search(m_group), QStringList());
    m_browser->doubleClick(m_browser->button(ButtonKind::More));
    QCOMPARE(m_browser->numbers().first(), u"1040"_s); // the press turned one page, the double click none
}

void TestResultList::doubleClickOnMoreOpensNoPhotographOfTheNextPage()
{
    Viewer viewer;
    QDesktopServices::setUrlHandler(u"file"_s, &viewer, "open");
    addEntries(80);
    for (int entry = 41; entry <= 80; ++entry) { // the second page is full of photographs
        m_catalogue->addPicture(entry);
        m_catalogue->addPicture(entry);
    }
    QCOMPARE(m_browser->search(m_group), QStringList());
    CanvasView *view = m_browser->window().viewHolder().view();
    ButtonItem *more = m_browser->button(ButtonKind::More);
    view->ensureVisible(more);
    const QPoint place = view->mapFromScene(more->sceneBoundingRect().center());
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, place);
    QTRY_COMPARE(m_browser->numbers().first(), u"1040"_s);
    for (int dy = -150; dy <= 150; dy += 30) { // wherever the photographs stand now
        QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, place + QPoint(-60, dy));
    }
    QTest::qWait(20);
    QDesktopServices::unsetUrlHandler(u"file"_s);
    QCOMPARE(viewer.opened, QList<QUrl>());
}

void TestResultList::missingButtonImageTakesTheCompiledInCopy()
{
    QVERIFY(!QFile::exists(u"./images/more.png"_s)); // the working folder of this test has no images at all
    addEntries(41);
    QCOMPARE(m_browser->search(m_group), QStringList());
    const QPixmap image = m_browser->button(ButtonKind::More)->pixmap();
    QCOMPARE(image.deviceIndependentSize(), QSizeF(100, 40));
    QVERIFY(image.toImage().pixelColor(image.width() / 2, image.height() / 2).alpha() == 255);
}

void TestResultList::textsAreNeverMarkup()
{
    m_catalogue->addEntry(u"<b>x</b>"_s, m_model, u"<i>Ort</i>"_s, QDate(1990, 1, 1), u"<img src='/etc/passwd'>"_s);
    QCOMPARE(m_browser->search(m_group), QStringList());
    for (const QString &text : { u"<b>x</b>"_s, u"<i>Ort</i>"_s, u"<img src='/etc/passwd'>"_s }) {
        QVERIFY(m_browser->texts().contains(text));
    }
}

void TestResultList::progressAppearsOnlyAfterItsTime()
{
    const auto visibleProgress = [] {
        const QWidgetList windows = QApplication::topLevelWidgets();
        return std::any_of(windows.cbegin(), windows.cend(),
            [](QWidget *widget) { return qobject_cast<QProgressDialog *>(widget) && widget->isVisible(); });
    };
    LoadProgress progress(u"40 von 10000 Einträge laden..."_s, 10000, &m_browser->window(), 300);
    QElapsedTimer running;
    running.start();
    for (int row = 1; running.elapsed() < 200; ++row) {
        QTest::qSleep(10); // slow rows of a long class: the dialog's own estimate would show it at once
        QVERIFY(progress.advance(row));
        QVERIFY(!visibleProgress());
    }
    QTest::qSleep(150);
    QVERIFY(progress.advance(50));
    QVERIFY(visibleProgress());
}

void TestResultList::cancelledProgressStopsLoading()
{
    LoadProgress progress(u"40 von 100 Einträge laden..."_s, 100, &m_browser->window(), 1);
    QTest::qSleep(5);
    QVERIFY(progress.advance(1));
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *widget : windows) {
        if (auto *dialog = qobject_cast<QProgressDialog *>(widget)) {
            QCOMPARE(dialog->labelText(), u"40 von 100 Einträge laden..."_s);
            QCOMPARE(dialog->windowModality(), Qt::WindowModal);
            auto *cancel = dialog->findChild<QPushButton *>();
            QCOMPARE(cancel->text(), u"abbrechen"_s);
            QTest::mouseClick(cancel, Qt::LeftButton);
        }
    }
    QVERIFY(!progress.advance(2));
}

void TestResultList::rowsAgreeWithTheQueriesTheyReplace()
{
    QRandomGenerator random(20261120);
    const QStringList numbers { u"1"_s, u"01"_s, u"a"_s, u"A"_s, u"7'8"_s, u"7%2"_s, u" 1"_s, u"ü"_s, u""_s };
    for (int i = 0; i < 150; ++i) {
        const int entry = m_catalogue->addEntry(numbers.at(random.bounded(numbers.size())), m_model);
        for (int picture = random.bounded(-3, 3); picture > 0; --picture) {
            m_catalogue->addPicture(entry);
        }
    }
    QList<QSqlRecord> list;
    CatalogQuery::instance().allEntries(list);
    ResultRows rows(list);
    for (int i = 0; i < rows.size(); ++i) {
        QList<QSqlRecord> expected;
        CatalogQuery::instance().picturesOfEntry(expected, list.at(i).value(u"id"_s).toInt());
        QCOMPARE(rows.pictures(i), expected);
        QCOMPARE(rows.entriesWithNumberOf(i), CatalogQuery::instance().countEntriesByNumber(rows.number(i), m_model));
    }
}

BAHNITO_TEST_MAIN(TestResultList)
#include "tst_resultlist.moc"
