#include "app/startup.h"
#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "store/colorsetting.h"
#include "store/statement.h"
#include "tests/support/browserwindow.h"
#include "tests/support/cataloguecheck.h"
#include "tests/support/formfields.h"
#include "tests/support/modalscript.h"
#include "tests/support/testmain.h"
#include "tests/support/testpictures.h"

#include <QApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QLineEdit>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QToolBar>
#include <QToolButton>

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

int count(const QString &statement)
{
    QSqlQuery query(statement);
    return query.next() ? query.value(0).toInt() : -1;
}

} // namespace

/// A collector's first evening with the program, from an empty folder on. The steps build on each other.
class TestFirstEvening final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void cleanup();

    void makesTwoGroupsWithPictures();
    void makesThreeClasses();
    void capturesTenEntriesWithPhotographs();
    void copiesAreUprightReducedAndOnWhite();
    void searchesWithAllChoices();
    void pagesOverFortyOneAndAHundredEntries();
    void listsTheSightingsOfANumber();
    void editsAnEntry();
    void movesAClass();
    void deletesAPicture();
    void deletesAnEntry();
    void keepsAGroupThatHasClasses();
    void deletesAClassAndAGroup();
    void findsEverythingAgainAfterARestart();

private:
    void startProgram();
    void quitProgram();
    void openGroupForm();
    void addGroup(QWidget *form, const QString &name, const QString &picture, ModalScript &script);
    void addClass(const QString &group, const QString &name);
    void captureEntry(const QString &number, const QString &place, const QString &comment, const QStringList &photos);
    [[nodiscard]] QByteArray sourcesDigest() const;
    [[nodiscard]] QString source(const QString &name) const { return m_sources.filePath(name); }

    QString m_formerFolder;
    QTemporaryDir m_folder;
    QTemporaryDir m_sources;
    QByteArray m_digest;
    std::unique_ptr<BrowserWindow> m_browser;
};

void TestFirstEvening::initTestCase()
{
    writeTestJpeg(source(u"gruppe1.jpg"_s), { 1200, 900 });
    writeTestJpeg(source(u"gruppe2.jpg"_s), { 900, 1200 });
    writeTestJpeg(source(u"zwoelf.jpg"_s), { 4000, 3000 });
    writeTestJpeg(source(u"vierundzwanzig.jpg"_s), { 6000, 4000 });
    writeTestJpeg(source(u"hochkant.jpg"_s), { 4500, 3000 }, 6);
    writeTransparentPng(source(u"durchsichtig.png"_s), { 1500, 1000 });
    m_digest = sourcesDigest();
    m_formerFolder = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_folder.path()));
    startProgram();
}

void TestFirstEvening::cleanupTestCase()
{
    quitProgram();
    QDir::setCurrent(m_formerFolder);
}

void TestFirstEvening::init()
{
    QVERIFY(m_browser);
}

void TestFirstEvening::cleanup()
{
    QCOMPARE(catalogueFindings(m_folder.path()), QStringList());
    QCOMPARE(sourcesDigest(), m_digest); // not a byte of the user's own photographs has changed
}

void TestFirstEvening::startProgram()
{
    Startup::makeDataFolders();
    QVERIFY(Startup::openCatalogue());
    m_browser = std::make_unique<BrowserWindow>();
}

void TestFirstEvening::quitProgram()
{
    m_browser->window().activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&m_browser->window()));
    QTest::keyClick(&m_browser->window(), Qt::Key_Q, Qt::ControlModifier);
    QTRY_VERIFY(!m_browser->window().isVisible());
    m_browser.reset();
    QSqlDatabase::removeDatabase(QLatin1StringView(QSqlDatabase::defaultConnection));
}

QByteArray TestFirstEvening::sourcesDigest() const
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    const QStringList names = QDir(m_sources.path()).entryList(QDir::Files);
    for (const QString &name : names) {
        QFile file(source(name));
        hash.addData(name.toUtf8());
        if (file.open(QIODevice::ReadOnly)) {
            hash.addData(&file);
        }
    }
    return hash.result();
}

void TestFirstEvening::openGroupForm()
{
    const QList<QToolBar *> bars = m_browser->window().findChildren<QToolBar *>();
    for (const QToolBar *bar : bars) {
        const QList<QAction *> actions = bar->actions();
        for (QAction *action : actions) {
            if (action->text() == u"Baureihe-Gruppen bearbeiten"_s) {
                QTest::mouseClick(bar->widgetForAction(action), Qt::LeftButton);
            }
        }
    }
}

void TestFirstEvening::addGroup(QWidget *form, const QString &name, const QString &picture, ModalScript &script)
{
    QVERIFY(typeInto(form, u"Name der neuen Gruppe:"_s, name));
    script.then([&script](QWidget *pictureForm) {
        QCOMPARE(pictureForm->windowTitle(), u"Edit Bahnito-Bild"_s);
        script.click(pictureForm, u"Bild auswählen"_s);
        script.click(pictureForm, u"Schliessen"_s);
    });
    script.chooseFile(picture);
    script.click(form, u"Bild zuweisen"_s);
    script.click(form, u"Speichern"_s);
}

void TestFirstEvening::makesTwoGroupsWithPictures()
{
    for (const auto &[name, picture] :
        { std::pair(u"Krokodile"_s, u"gruppe1.jpg"_s), std::pair(u"Schnellzugloks"_s, u"gruppe2.jpg"_s) }) {
        ModalScript script;
        script.then([&](QWidget *form) {
            addGroup(form, name, source(picture), script);
            script.click(form, u"Schliessen"_s);
        });
        openGroupForm();
        QCOMPARE(script.problems().join(u'\n'), QString());
    }
    QCOMPARE(count(u"SELECT COUNT(*) FROM locomotive"_s), 2);
    QVERIFY(m_browser->window().findChild<QToolButton *>(u"group2"_s));
    QCOMPARE(QDir(u"./Data/Pictures/AuxFolder"_s).entryList(QDir::Files).size(), 2);
}

void TestFirstEvening::addClass(const QString &group, const QString &name)
{
    ModalScript script;
    script.then([&](QWidget *groups) {
        QVERIFY(clickRow(groups, group));
        script.click(groups, u"Baureihen"_s);
        script.click(groups, u"Schliessen"_s);
    });
    script.then([&](QWidget *classes) {
        QVERIFY(typeInto(classes, u"Name der neuen Baureihe:"_s, name));
        script.click(classes, u"Speichern"_s);
        script.click(classes, u"Schliessen"_s);
    });
    openGroupForm();
    QCOMPARE(script.problems().join(u'\n'), QString());
}

void TestFirstEvening::makesThreeClasses()
{
    addClass(u"Krokodile"_s, u"Ce 6/8 II"_s);
    addClass(u"Krokodile"_s, u"Be 6/8 III"_s);
    addClass(u"Schnellzugloks"_s, u"Re 4/4 I"_s);
    QCOMPARE(count(u"SELECT COUNT(*) FROM loc_model WHERE locid = 1"_s), 2);
    QCOMPARE(count(u"SELECT COUNT(*) FROM loc_model WHERE locid = 2"_s), 1);
}

void TestFirstEvening::captureEntry(
    const QString &number, const QString &place, const QString &comment, const QStringList &photos)
{
    ModalScript script;
    script.then([&](QWidget *options) {
        script.click(options, u"Neue Lok"_s);
        script.click(options, u"Schliessen"_s);
    });
    script.then([&](QWidget *entry) {
        QVERIFY(typeInto(entry, u"Nummer:"_s, number));
        QVERIFY(typeInto(entry, u"Ort:"_s, place));
        QVERIFY(typeInto(entry, u"Kommentar:"_s, comment));
        script.click(entry, u"Speichern"_s);
        for (const QString &photo : photos) {
            script.then([&script](QWidget *pictureForm) {
                script.click(pictureForm, u"Bild auswählen"_s);
                script.click(pictureForm, u"Bild speichern"_s);
                script.click(pictureForm, u"Schliessen"_s);
            });
            script.chooseFile(source(photo));
            script.click(entry, u"Neues Bild"_s);
        }
        script.click(entry, u"Schliessen"_s);
    });
    m_browser->clickGroup(1);
    QCOMPARE(script.problems().join(u'\n'), QString());
}

void TestFirstEvening::capturesTenEntriesWithPhotographs()
{
    captureEntry(u"14253"_s, u"Erstfeld"_s, u"Vor dem Depot"_s, { u"zwoelf.jpg"_s, u"hochkant.jpg"_s });
    captureEntry(u"14253"_s, u"Wassen"_s, u"An der Kirche"_s, { u"vierundzwanzig.jpg"_s });
    captureEntry(u"14270"_s, u"Airolo"_s, u"<b>Schnee</b> und 7%2"_s, { u"durchsichtig.png"_s });
    for (int i = 0; i < 7; ++i) {
        captureEntry(QString::number(14280 + i), u"Biasca"_s, u"Ohne Bild"_s, {});
    }
    QCOMPARE(count(u"SELECT COUNT(*) FROM loc_seen"_s), 10);
    QCOMPARE(count(u"SELECT COUNT(*) FROM loc_picture WHERE locpictureid > 0"_s), 4);
}

void TestFirstEvening::copiesAreUprightReducedAndOnWhite()
{
    QSqlQuery query(
        u"SELECT pictAuxPath, pictWidth, pictHeight, pictOrigPath FROM loc_picture WHERE locpictureid > 0"_s);
    while (query.next()) {
        const QImage copy(query.value(0).toString());
        QCOMPARE(copy.size(), QSize(query.value(1).toInt(), query.value(2).toInt()));
        const QString original = query.value(3).toString();
        if (original.endsWith(u"hochkant.jpg"_s)) {
            QCOMPARE(copy.size(), QSize(333, 500));
            QVERIFY(copy.pixelColor(20, 20).blue() > 200); // the stored bottom left corner stands at the top left
        } else if (original.endsWith(u"durchsichtig.png"_s)) {
            QCOMPARE(copy.size(), QSize(750, 500));
            QVERIFY(copy.pixelColor(600, 250).lightness() > 250);
        } else {
            QVERIFY(copy.width() == 750 || copy.height() == 500);
        }
    }
}

void TestFirstEvening::searchesWithAllChoices()
{
    QHash<QString, int> found;
    for (const QString &repeat : { u"immer"_s, u"nur einmal"_s }) {
        for (const QString &pictures : { u"nein alle"_s, u"ja"_s }) {
            for (const QString &sort : { u"Datum"_s, u"Nummer"_s, u"Ort"_s }) {
                QCOMPARE(m_browser->search(1, { u"Ce 6/8 II"_s, repeat, pictures, sort }), QStringList());
                QCOMPARE(m_browser->caption(), u"0 Einträge der Baureihe Ce 6/8 II"_s);
                QCOMPARE(m_browser->search(1, { u"Be 6/8 III"_s, repeat, pictures, sort }), QStringList());
                QCOMPARE(m_browser->caption(), u"10 Einträge der Baureihe Be 6/8 III"_s);
                found[repeat + u'/' + pictures] = int(m_browser->numbers().size());
            }
        }
    }
    QCOMPARE(found.value(u"immer/nein alle"_s), 10);
    QCOMPARE(found.value(u"immer/ja"_s), 3);
    QCOMPARE(found.value(u"nur einmal/nein alle"_s), 9);
    QCOMPARE(found.value(u"nur einmal/ja"_s), 2);
}

void TestFirstEvening::pagesOverFortyOneAndAHundredEntries()
{
    const auto fillUpTo = [](int entries) {
        for (int i = count(u"SELECT COUNT(*) FROM loc_seen WHERE locseenid = 3"_s); i < entries; ++i) {
            QVERIFY(executeWrite(u"INSERT INTO loc_seen (nummer, locseenid, ort, kommentar, locseendate) "
                                 "VALUES (:num, 3, 'Bern', '', '1980-01-01')"_s,
                { { u":num"_s, QString::number(10001 + i) } })
                        .done);
        }
    };
    fillUpTo(41);
    QCOMPARE(m_browser->search(2), QStringList());
    QCOMPARE(m_browser->numbers().size(), 40);
    m_browser->click(m_browser->button(ButtonKind::More));
    QCOMPARE(m_browser->numbers(), QStringList { u"10041"_s });
    fillUpTo(100);
    QCOMPARE(m_browser->search(2), QStringList());
    for (const int shown : { 40, 40, 20 }) {
        QCOMPARE(m_browser->numbers().size(), shown);
        if (ButtonItem *more = m_browser->button(ButtonKind::More)) {
            m_browser->click(more);
        }
    }
    QVERIFY(!m_browser->button(ButtonKind::More));
}

void TestFirstEvening::listsTheSightingsOfANumber()
{
    QCOMPARE(m_browser->search(1, { u"Be 6/8 III"_s, u"nur einmal"_s, u"nein alle"_s, u"Nummer"_s }), QStringList());
    m_browser->click(m_browser->button(ButtonKind::Count, m_browser->block(0)));
    QCOMPARE(m_browser->caption(), u"2 Einträge der Be 6/8 III 14253"_s);
    QCOMPARE(m_browser->numbers().size(), 2);
    m_browser->click(m_browser->button(ButtonKind::Back));
    QCOMPARE(m_browser->caption(), u"10 Einträge der Baureihe Be 6/8 III"_s);
}

void TestFirstEvening::editsAnEntry()
{
    QCOMPARE(m_browser->search(1, { u"Be 6/8 III"_s, u"immer"_s, u"nein alle"_s, u"Nummer"_s }), QStringList());
    const QString before = m_browser->block(2)->card().place;
    QCOMPARE(before, u"Airolo"_s);
    ModalScript script;
    script.then([&](QWidget *form) {
        QVERIFY(typeInto(form, u"Ort:"_s, u" Nord"_s));
        script.click(form, u"Schliessen"_s);
    });
    m_browser->click(m_browser->button(ButtonKind::Edit, m_browser->block(2)));
    QCOMPARE(script.problems().join(u'\n'), QString());
    QCOMPARE(m_browser->block(2)->card().place, u"Airolo Nord"_s);
}

void TestFirstEvening::movesAClass()
{
    ModalScript script;
    script.then([&](QWidget *groups) {
        QVERIFY(clickRow(groups, u"Krokodile"_s));
        script.click(groups, u"Baureihen"_s);
        script.click(groups, u"Schliessen"_s);
    });
    script.then([&](QWidget *classes) {
        QVERIFY(clickRow(classes, u"Ce 6/8 II"_s));
        script.click(classes, u"Baureihe verschieben"_s);
        script.click(classes, u"Schliessen"_s);
    });
    script.then([&](QWidget *move) {
        QVERIFY(clickRow(move, u"Schnellzugloks"_s));
        script.click(move, u"Speichern"_s);
        script.click(move, u"Schliessen"_s);
    });
    openGroupForm();
    QCOMPARE(script.problems().join(u'\n'), QString());
    QCOMPARE(count(u"SELECT locid FROM loc_model WHERE modelname = 'Ce 6/8 II'"_s), 2);
}

void TestFirstEvening::deletesAPicture()
{
    QCOMPARE(m_browser->search(1, { u"Be 6/8 III"_s, u"immer"_s, u"ja"_s, u"Nummer"_s }), QStringList());
    const QList<EntryBlock *> blocks = m_browser->canvas().blocks();
    const auto found = std::find_if(
        blocks.cbegin(), blocks.cend(), [](const EntryBlock *block) { return block->card().pictures.size() == 2; });
    QVERIFY(found != blocks.cend());
    const auto position = int(found - blocks.cbegin());
    ModalScript script;
    script.then([&](QWidget *form) {
        auto *table = form->findChild<QTableView *>();
        QCOMPARE(table->model()->rowCount(), 2);
        QVERIFY(clickRow(form, table->model()->index(0, 1).data().toString()));
        script.click(form, u"Bild entfernen"_s);
        script.click(form, u"Schliessen"_s);
    });
    script.box(u"Bild Entfernen"_s, u"Soll das gewählte Bild gelöscht werden?"_s, u"Ja"_s);
    m_browser->click(m_browser->button(ButtonKind::Edit, *found));
    QCOMPARE(script.problems().join(u'\n'), QString());
    QCOMPARE(m_browser->block(position)->card().pictures.size(), 1);
}

void TestFirstEvening::deletesAnEntry()
{
    QCOMPARE(m_browser->search(1, { u"Be 6/8 III"_s, u"immer"_s, u"nein alle"_s, u"Nummer"_s }), QStringList());
    const EntryBlock *block = m_browser->block(0);
    ModalScript script;
    script.box(u"Eintrag Entfernen"_s,
        u"Eintrag %1 mit der Lok-Nummer 14253 und alle dazugehörenden Bilder löschen?"_s.arg(block->card().id),
        u"Ja"_s);
    m_browser->click(m_browser->button(ButtonKind::Delete, block));
    QCOMPARE(script.problems().join(u'\n'), QString());
    QCOMPARE(m_browser->numbers().size(), 9);
}

void TestFirstEvening::keepsAGroupThatHasClasses()
{
    ModalScript groupInUse;
    groupInUse.then([&](QWidget *groups) {
        QVERIFY(clickRow(groups, u"Krokodile"_s));
        groupInUse.click(groups, u"Gruppe entfernen"_s);
        groupInUse.click(groups, u"Schliessen"_s);
    });
    groupInUse.box(
        u"Daten vorhanden"_s, u"Die Gruppe kann nicht entfernt werden, da sich noch Baureihen darunter befinden!"_s);
    openGroupForm();
    QCOMPARE(groupInUse.problems().join(u'\n'), QString());
}

void TestFirstEvening::deletesAClassAndAGroup()
{
    ModalScript script;
    script.then([&](QWidget *groups) {
        addGroup(groups, u"Irrtum"_s, source(u"gruppe1.jpg"_s), script);
        script.box(u"Gruppe entfernen"_s, u"Soll die gewählte Gruppe gelöscht werden?"_s, u"Ja"_s);
        QVERIFY(clickRow(groups, u"Irrtum"_s));
        script.click(groups, u"Gruppe entfernen"_s);
        script.then([&](QWidget *classes) {
            QVERIFY(clickRow(classes, u"Ce 6/8 II"_s));
            script.click(classes, u"Baureihe entfernen"_s);
            script.click(classes, u"Schliessen"_s);
        });
        script.box(u"Baureihe entfernen"_s, u"Soll die gewählte Baureihe gelöscht werden?"_s, u"Ja"_s);
        QVERIFY(clickRow(groups, u"Schnellzugloks"_s));
        script.click(groups, u"Baureihen"_s);
        script.click(groups, u"Schliessen"_s);
    });
    openGroupForm();
    QCOMPARE(script.problems().join(u'\n'), QString());
    QCOMPARE(count(u"SELECT COUNT(*) FROM locomotive"_s), 2);
    QCOMPARE(count(u"SELECT COUNT(*) FROM loc_model"_s), 2);
}

void TestFirstEvening::findsEverythingAgainAfterARestart()
{
    QCOMPARE(m_browser->search(1, { u"Be 6/8 III"_s, u"nur einmal"_s, u"nein alle"_s, u"Ort"_s }), QStringList());
    const QStringList before = m_browser->texts();
    m_browser->pickColor(u"schwarz"_s);
    quitProgram();
    startProgram();
    QCOMPARE(m_browser->canvas().backgroundBrush().color(), QColor(Qt::black));
    QVERIFY(m_browser->canvas().showsStartPicture());
    ModalScript script;
    script.then([&](QWidget *options) {
        script.click(options, u"Suchen"_s); // the choices of the last evening are preset
    });
    m_browser->clickGroup(1);
    QCOMPARE(script.problems().join(u'\n'), QString());
    QCOMPARE(m_browser->texts(), before);
}

BAHNITO_TEST_MAIN(TestFirstEvening)
#include "tst_firstevening.moc"
