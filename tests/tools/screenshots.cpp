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
#include "tests/support/browserwindow.h"
#include "tests/support/modalscript.h"

#include <QApplication>
#include <QDir>
#include <QMenu>
#include <QTableView>
#include <QTest>
#include <QTextStream>
#include <QToolButton>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

constexpr int Group = 2; // of the sample catalogue: four classes, entries with up to six pictures

/// Writes what a window shows into numbered files.
class Album final
{
public:
    explicit Album(const QString &folder)
        : m_folder(folder)
    {
    }

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

/// The canvas in all its states on the background of that name.
void addCanvas(Album &album, const QString &color)
{
    BrowserWindow browser;
    browser.window().resize(1280, 850);
    browser.pickColor(color);
    CanvasView *view = browser.window().viewHolder().view();
    album.add(&browser.window(), u"hauptfenster-start-%1"_s.arg(color));
    search(browser, { u"Re 6/6"_s });
    album.add(&browser.window(), u"hauptfenster-liste-%1"_s.arg(color));
    QTest::keyClick(view, Qt::Key_PageDown);
    view->setFocus();
    for (int i = 0; i < 3; ++i) {
        QTest::keyClick(view, Qt::Key_Tab);
    }
    album.add(&browser.window(), u"hauptfenster-tastatur-%1"_s.arg(color));
    QTest::keyClick(view, Qt::Key_End);
    album.add(&browser.window(), u"hauptfenster-listenende-%1"_s.arg(color));
    search(browser, { u"Re 6/6"_s, u"nur einmal"_s, u"ja"_s, u"Nummer"_s });
    album.add(&browser.window(), u"hauptfenster-nur-einmal-%1"_s.arg(color));
    browser.click(browser.button(ButtonKind::Count, browser.block(0)));
    album.add(&browser.window(), u"hauptfenster-nummer-%1"_s.arg(color));
}

void addWindowParts(Album &album)
{
    BrowserWindow browser;
    browser.window().resize(1280, 850);
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
        album, u"eintrag-bearbeiten"_s, [] { LocseenForm(2, 6).exec(); },
        [](QWidget *dialog) {
            clickRow(dialog, 0);
            QTest::mouseClick(dialog->findChild<QAbstractButton *>(u"showPictureButton"_s), Qt::LeftButton);
        });
    addModal(album, u"bild-neu"_s, [] { LocPictureForm(2, -1).exec(); });
    addModal(album, u"bild-zeigen"_s, [] { LocPictureForm(2, 10).exec(); });
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
    ModalScript script;
    script.then([&](QWidget *form) {
        script.then([&](QWidget *dialog) {
            album.add(dialog, u"dateiauswahl"_s);
            dialog->close();
        });
        script.click(form, u"Bild auswählen"_s);
        form->close();
    });
    LocPictureForm(2, -1).exec();
}

void addBoxes(Album &album)
{
    addModal(album, u"box-keine-daten"_s, [] {
        MessageBox::warning(nullptr, u"Keine Daten"_s, u"Es wurden noch keine Baureihen unter dieser Gruppe erfasst!"_s);
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
    Album album(QString::fromLocal8Bit(argv[1]));
    addCanvas(album, u"weiss"_s);
    addCanvas(album, u"schwarz"_s);
    addWindowParts(album);
    addEntryForms(album);
    addMaintenanceForms(album);
    addBoxes(album);
    return 0;
}
