#include "app/startup.h"
#include "browser/canvasview.h"
#include "browser/entryblock.h"
#include "browser/loadprogress.h"
#include "browser/picturescene.h"
#include "browser/viewholder.h"
#include "forms/locgroupform.h"
#include "forms/locmodelform.h"
#include "forms/locpictureform.h"
#include "forms/locseenform.h"
#include "search/clock.h"
#include "search/messagebox.h"
#include "store/statement.h"
#include "tests/support/browserwindow.h"
#include "tests/support/modalscript.h"

#include <QApplication>
#include <QCursor>
#include <QDir>
#include <QFile>
#include <QMenu>
#include <QSqlQuery>
#include <QTableView>
#include <QTest>
#include <QTextStream>
#include <QToolButton>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize WindowSize(1280, 850); // the window's own, which the platform may have changed
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
    return found(u"SELECT locpictureid FROM loc_picture GROUP BY locpictureid ORDER BY COUNT(*) DESC, id LIMIT 1"_s)
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

/// Writes what a window shows into files.
class Album final
{
public:
    explicit Album(const QString &folder)
        : m_folder(folder)
    { }

    void add(QWidget *widget, const QString &name)
    {
        QTest::qWait(60); // fonts, icons and the focus are there only after the first events
        const QString path = m_folder.filePath(name + u".png"_s);
        if (!widget->grab().save(path)) {
            qFatal("cannot write %s", qUtf8Printable(path));
        }
        QTextStream(stdout) << path << '\n';
    }

private:
    QDir m_folder;
};

void clickRow(const QWidget *dialog, int row)
{
    const auto *table = dialog->findChild<QTableView *>();
    if (!table || !table->model()->index(row, 1).isValid()) {
        qFatal("no such row in %s", qUtf8Printable(dialog->windowTitle()));
    }
    const QRect cell = table->visualRect(table->model()->index(row, 1));
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, cell.center());
}

/// Runs `open`, which opens a modal window, and takes its picture after `prepare`; then closes it.
void addModal(Album &album, const QString &name, const std::function<void()> &open,
    const std::function<void(QWidget *)> &prepare = {})
{
    ModalScript script;
    script.then([&](QWidget *dialog) {
        if (prepare) {
            prepare(dialog);
        }
        album.add(dialog, name);
        dialog->close();
    });
    open();
    if (!script.problems().isEmpty()) {
        qFatal("%s: %s", qUtf8Printable(name), qUtf8Printable(script.problems().join(u"; "_s)));
    }
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
    addModal(album, u"gruppen-leer"_s, [&] { browser.window().locGroup(); });
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
    addModal(album, u"info"_s, [&] { browser.window().aboutApplication(); });
    addModal(album, u"suche"_s, [&] { browser.clickGroup(Group); });
}

void addEntryForms(Album &album)
{
    addModal(album, u"eintrag-neu"_s, [] { LocseenForm(-1, 6).exec(); });
    addModal(
        album, u"eintrag-bearbeiten"_s, [] { LocseenForm(richestEntry(), -1).exec(); },
        [](QWidget *dialog) {
            clickRow(dialog, 0);
            QTest::mouseClick(dialog->findChild<QAbstractButton *>(u"showPictureButton"_s), Qt::LeftButton);
        });
    addModal(album, u"bild-neu"_s, [] { LocPictureForm(richestEntry(), -1).exec(); });
    addModal(album, u"bild-zeigen"_s, [] { LocPictureForm(richestEntry(), 10).exec(); });
}

void addFileDialog(Album &album)
{
    ModalScript script;
    script.then([&](QWidget *form) {
        script.then([&](QWidget *dialog) {
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
    addModal(album, u"gruppen"_s, [] { LocGroupForm().exec(); });
    addModal(
        album, u"gruppen-gewaehlt"_s, [] { LocGroupForm().exec(); },
        [](QWidget *dialog) {
            clickRow(dialog, 1);
            QTest::mouseClick(dialog->findChild<QAbstractButton *>(u"showPictureButton"_s), Qt::LeftButton);
        });
    addModal(album, u"baureihen"_s, [] { LocModelForm(Group).exec(); });
    addModal(album, u"baureihe-verschieben"_s, [] { LocGroupForm(6, u"Re 4/4 II"_s, nullptr).exec(); });
}

void addBoxes(Album &album)
{
    addModal(album, u"box-keine-daten"_s, [] {
        MessageBox::warning(
            nullptr, u"Keine Daten"_s, u"Es wurden noch keine Baureihen unter dieser Gruppe erfasst!"_s);
    });
    addModal(album, u"box-eintrag-entfernen"_s, [] {
        (void)MessageBox::confirm(nullptr, u"Eintrag Entfernen"_s,
            u"Eintrag 32 mit der Lok-Nummer 11604 und alle dazugehörenden Bilder löschen?"_s);
    });
    addModal(album, u"box-datei-info"_s,
        [] { MessageBox::information(nullptr, u"File-Info"_s, u"Die Datei ist kein lesbares Bild!"_s); });
    LoadProgress progress(u"Weitere 40 von 4711 Einträge laden..."_s, 4711, nullptr, 0);
    (void)progress.advance(1500);
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (widget->inherits("QProgressDialog")) {
            album.add(widget, u"fortschritt"_s);
        }
    }
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
    addEmptyCatalogue(album);
    return 0;
}
