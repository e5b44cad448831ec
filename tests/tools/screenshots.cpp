#include "app/startup.h"
#include "browser/canvasview.h"
#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "browser/viewholder.h"
#include "forms/locgroupform.h"
#include "forms/locmodelform.h"
#include "forms/locpictureform.h"
#include "forms/locseenform.h"
#include "search/clock.h"
#include "store/statement.h"
#include "tests/support/browserwindow.h"
#include "tests/support/modalscript.h"
#include "tests/tools/album.h"
#include "tests/tools/boxpictures.h"

#include <QApplication>
#include <QCursor>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QMenu>
#include <QSqlQuery>
#include <QTest>
#include <QTextStream>
#include <QToolButton>
#include <QTreeView>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize WindowSize(1280, 850); // the window's own, which the platform may have changed
constexpr int LoadingTime = 600; // ms, of a folder or a picture in the file dialog
constexpr int Group = 2; // of the sample catalogue, with the class that is searched
const QString SearchedClass = u"Re 460"_s;

/// First column of the statement's first row.
QVariant found(const QString &statement)
{
    QSqlQuery query;
    if (!query.exec(statement) || !query.next()) {
        qFatal("not in the sample: %s", qUtf8Printable(statement));
    }
    return query.value(0);
}

int richestEntry()
{
    return found(u"SELECT locpictureid FROM loc_picture WHERE locpictureid > 0 GROUP BY locpictureid "
                 "ORDER BY COUNT(*) DESC, id LIMIT 1"_s)
        .toInt();
}

/// A picture in the middle of the searched class.
QString someCopy()
{
    return found(u"SELECT pictAuxPath FROM loc_picture JOIN loc_seen ON loc_seen.id = locpictureid "
                 "JOIN loc_model ON loc_model.id = locseenid WHERE modelname = '%1' "
                 "ORDER BY locseendate LIMIT 1 OFFSET 2"_s.arg(SearchedClass))
        .toString();
}

void search(BrowserWindow &browser, const SearchWish &wish)
{
    const QStringList problems = browser.search(Group, wish);
    if (!problems.isEmpty()) {
        qFatal("%s", qUtf8Printable(problems.join(u"; "_s)));
    }
}

/// The canvas in all its states on the background of that name. One photograph's copy is missing.
void addCanvas(Album &album, const QString &color)
{
    BrowserWindow browser;
    browser.window().resize(WindowSize);
    browser.pickColor(color);
    CanvasView *view = browser.window().viewHolder().view();
    album.add(&browser.window(), u"hauptfenster-start-%1"_s.arg(color));
    search(browser, { SearchedClass });
    album.add(&browser.window(), u"hauptfenster-liste-%1"_s.arg(color));
    QTest::keyClick(view, Qt::Key_PageDown);
    view->setFocus();
    for (int i = 0; i < 3; ++i) {
        QTest::keyClick(view, Qt::Key_Tab);
    }
    album.add(&browser.window(), u"hauptfenster-tastatur-%1"_s.arg(color));
    QTest::keyClick(view, Qt::Key_End);
    album.add(&browser.window(), u"hauptfenster-listenende-%1"_s.arg(color));
    search(browser, { SearchedClass, u"nur einmal"_s, u"ja"_s, u"Nummer"_s });
    album.add(&browser.window(), u"hauptfenster-nur-einmal-%1"_s.arg(color));
    browser.click(browser.button(ButtonKind::Count, browser.block(0)));
    album.add(&browser.window(), u"hauptfenster-nummer-%1"_s.arg(color));
}

void addBackgrounds(Album &album)
{
    BrowserWindow browser;
    browser.window().resize(WindowSize);
    search(browser, { SearchedClass });
    for (const QString &color : { u"grau"_s, u"blau"_s, u"gelb"_s, u"grün"_s }) {
        browser.pickColor(color);
        album.add(&browser.window(), u"hauptfenster-liste-%1"_s.arg(color));
    }
}

void addEmptyCatalogue(Album &album)
{
    const TestCatalogue catalogue;
    BrowserWindow browser;
    browser.window().resize(WindowSize);
    album.add(&browser.window(), u"hauptfenster-leer"_s);
    album.addModal(u"gruppen-leer"_s, [&] { browser.window().locGroup(); });
}

/// Texts that other programs stumble over, and a picture that is none.
void addForeignTexts(Album &album)
{
    TestCatalogue catalogue;
    const int group = catalogue.addGroup(u"<b>Krokodile</b> & Söhne 🚂"_s);
    const int model = catalogue.addModel(u"<i>Ce 6/8</i> %1 🐊"_s, group);
    const auto add = [&](const QString &number, const QString &place, const QString &comment) {
        return catalogue.addEntry(number, model, place, QDate(1999, 9, 9), comment);
    };
    catalogue.addPicture(add(u"<u>14253</u>"_s, u"<h1>Erstfeld</h1> &amp; <br>"_s,
        u"<b>fett</b><img src='x.jpg'><a href='file:///etc/passwd'>hier</a> <table><tr><td>%1 %2 \\n"_s));
    add(u"٤٦٠ ١٢٣"_s, u"ירושלים – תל אביב"_s, u"هذا تعليق طويل باللغة العربية عن القاطرة رقم 460 في محطة Brig"_s);
    const int broken = add(u"🚂 4️⃣6️⃣0️⃣"_s, u"𝔅𝔢𝔯𝔫 𠀀𠀁 👩‍👩‍👧‍👦"_s,
        u"Zug 🚆🚇🚈, Berg ⛰️, zo̶̶͈r̷̈́͂̚nig é, 日本の鉄道 – Ελλάδα – Кавказ"_s);
    catalogue.addPicture(broken);
    QFile::remove(catalogue.value(u"SELECT pictAuxPath FROM loc_picture ORDER BY id DESC"_s).toString());
    add(QString(18, u'W'), QString(38, u'W'), QString(198, u'W'));
    BrowserWindow browser;
    browser.window().resize(WindowSize);
    album.add(&browser.window(), u"fremde-texte-start"_s);
    if (!browser.search(group).isEmpty()) {
        qFatal("the search found nothing");
    }
    album.add(&browser.window(), u"fremde-texte-liste"_s);
    album.addModal(u"fremde-texte-suche"_s, [&] { browser.clickGroup(group); });
    album.addModal(u"fremde-texte-eintrag"_s, [&] { LocseenForm(broken, -1).exec(); });
}

/// The sample's folder names would tell on whose machine the pictures were taken.
void hideOwnFolders()
{
    const QString own = QDir::current().absoluteFilePath(u"Originale"_s);
    (void)executeWrite(
        u"UPDATE loc_picture SET pictOrigPath = replace(pictOrigPath, '%1', '/home/heidi/Bilder/Bahn')"_s.arg(own));
}

void addWindowParts(Album &album)
{
    BrowserWindow browser;
    browser.window().resize(WindowSize);
    QMenu *menu = browser.window().findChild<QToolButton *>(u"colorButton"_s)->menu();
    menu->popup(browser.window().mapToGlobal(QPoint(80, 50)));
    album.add(menu, u"farbmenue"_s);
    menu->close();
    browser.window().resize(600, 500);
    album.add(&browser.window(), u"hauptfenster-klein"_s);
    browser.window().setWindowIcon(QIcon(u":/images/Lok.png"_s));
    album.addModal(u"info"_s, [&] { browser.window().aboutApplication(); });
    album.addModal(u"suche"_s, [&] { browser.clickGroup(Group); });
}

void addEntryForms(Album &album)
{
    album.addModal(u"eintrag-neu"_s, [] { LocseenForm(-1, 6).exec(); });
    album.addModal(
        u"eintrag-bearbeiten"_s, [] { LocseenForm(richestEntry(), -1).exec(); },
        [](QWidget *dialog) {
            Album::clickRow(dialog, 0);
            QTest::mouseClick(dialog->findChild<QAbstractButton *>(u"showPictureButton"_s), Qt::LeftButton);
        });
    album.addModal(u"bild-neu"_s, [] { LocPictureForm(richestEntry(), -1).exec(); });
    album.addModal(u"bild-zeigen"_s, [] { LocPictureForm(richestEntry(), 10).exec(); });
}

void addFileDialog(Album &album)
{
    ModalScript script;
    script.then([&](QWidget *form) {
        script.then([&](QWidget *dialog) {
            auto *files = qobject_cast<QFileDialog *>(dialog);
            files->setDirectory(files->directory().filePath(u"Ce 6-8 III"_s));
            QTest::qWait(LoadingTime);
            QTest::keyClick(files->findChild<QTreeView *>(u"treeView"_s), Qt::Key_Down);
            QTest::qWait(LoadingTime);
            album.add(dialog, u"dateiauswahl"_s);
            dialog->close();
        });
        script.click(form, u"Bild auswählen"_s);
        form->close();
    });
    LocPictureForm(richestEntry(), -1).exec();
}

void addMaintenanceForms(Album &album)
{
    album.addModal(u"gruppen"_s, [] { LocGroupForm().exec(); });
    album.addModal(
        u"gruppen-gewaehlt"_s, [] { LocGroupForm().exec(); },
        [](QWidget *dialog) {
            Album::clickRow(dialog, 1);
            QTest::mouseClick(dialog->findChild<QAbstractButton *>(u"showPictureButton"_s), Qt::LeftButton);
        });
    album.addModal(u"baureihen"_s, [] { LocModelForm(Group).exec(); });
    album.addModal(u"baureihe-verschieben"_s, [] { LocGroupForm(6, u"Re 4/4 II"_s, nullptr).exec(); });
}

} // namespace

/// screenshots FOLDER: takes a picture of every window, dialog and box on the sample catalogue in the working folder.
int main(int argc, char *argv[])
{
    Startup::registerResources();
    QApplication application(argc, argv);
    if (argc != 2 || !QDir().mkpath(QString::fromLocal8Bit(argv[1]))) {
        QTextStream(stderr) << "Aufruf: screenshots ORDNER\n";
        return 2;
    }
    Startup::setLibraryPaths();
    Startup::speakGerman(application);
    Startup::dress();
    Startup::makeDataFolders();
    if (!Startup::openCatalogue()) {
        return 1;
    }
    Clock::setSource([] { return QDateTime(QDate(2024, 5, 17), QTime(14, 0, 30, 501)); }); // chooses the start picture
    QCursor::setPos(0, 0); // else something may light up under the mouse
    hideOwnFolders();
    QFile::remove(someCopy());
    Album album(QDir(QString::fromLocal8Bit(argv[1])).absolutePath());
    addCanvas(album, u"weiss"_s);
    addCanvas(album, u"schwarz"_s);
    addBackgrounds(album);
    addWindowParts(album);
    addEntryForms(album);
    addFileDialog(album);
    addMaintenanceForms(album);
    addBoxes(album);
    addBoxesOfForms(album);
    addForeignTexts(album);
    addEmptyCatalogue(album);
    return 0;
}
