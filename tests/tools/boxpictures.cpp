#include "tests/tools/boxpictures.h"

#include "browser/entryblock.h"
#include "browser/loadprogress.h"
#include "forms/locgroupform.h"
#include "forms/locmodelform.h"
#include "forms/locseenform.h"
#include "search/messagebox.h"
#include "store/statement.h"
#include "tests/support/browserwindow.h"
#include "tests/support/modalscript.h"
#include "tests/tools/album.h"

#include <QApplication>
#include <QDateEdit>
#include <QFile>
#include <QLineEdit>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

using Form = std::function<int()>; // opens it and returns when it is closed
using Use = std::function<void(QWidget *)>;

/// Takes a picture of the box that appears while the form is used.
void addBoxOf(Album &album, const QString &name, const Form &form, const Use &use)
{
    ModalScript script;
    script.then([&](QWidget *dialog) {
        script.then([&](QWidget *box) {
            album.add(box, name);
            box->close();
        });
        use(dialog);
        dialog->close();
    });
    form();
    if (!script.problems().isEmpty()) {
        qFatal("%s: %s", qPrintable(name), qPrintable(script.problems().join(u"; "_s)));
    }
}

void press(const QWidget *dialog, const QString &button)
{
    QTest::mouseClick(dialog->findChild<QWidget *>(button), Qt::LeftButton);
}

/// Marks a row and presses a button.
Use pressForRow(int row, const QString &button)
{
    return [row, button](QWidget *dialog) {
        Album::clickRow(dialog, row);
        press(dialog, button);
    };
}

void addMaintenanceBoxes(Album &album, int group)
{
    const Form groups = [] { return LocGroupForm().exec(); };
    const Form models = [group] { return LocModelForm(group).exec(); };
    addBoxOf(album, u"box-daten-vorhanden"_s, groups, pressForRow(1, u"deleteButton"_s));
    addBoxOf(album, u"box-gruppe-entfernen"_s, groups, pressForRow(0, u"deleteButton"_s));
    addBoxOf(album, u"box-baureihe-entfernen"_s, models, pressForRow(1, u"deleteButton"_s));
    addBoxOf(album, u"box-bilddatei-fehlt"_s, groups, pressForRow(1, u"showPictureButton"_s));
    (void)executeWrite(u"CREATE TEMP TRIGGER full BEFORE INSERT ON loc_model BEGIN "
                       "SELECT RAISE(ABORT, 'database or disk is full'); END"_s);
    addBoxOf(album, u"box-db-insert"_s, models, [](QWidget *dialog) {
        QTest::keyClicks(dialog->findChild<QLineEdit *>(u"nameEdit"_s), u"Re 6/6"_s);
        press(dialog, u"saveButton"_s);
    });
}

void addEntryBoxes(Album &album, int entry)
{
    const Form edit = [entry] { return LocseenForm(entry, -1).exec(); };
    addBoxOf(album, u"box-bild-entfernen"_s, edit, pressForRow(0, u"removePictureButton"_s));
    addBoxOf(album, u"box-hoechstzahl"_s, edit, [](QWidget *dialog) { press(dialog, u"newPictureButton"_s); });
    ModalScript script;
    script.then([&](QWidget *dialog) {
        auto *date = dialog->findChild<QDateEdit *>(u"seenDateEdit"_s);
        QTest::mouseClick(date, Qt::LeftButton, {}, QPoint(date->width() - 8, date->height() / 2));
        if (QWidget *calendar = QApplication::activePopupWidget()) {
            album.add(calendar, u"kalender"_s);
            calendar->close();
        } else {
            qFatal("no calendar");
        }
        dialog->close();
    });
    edit();
}

} // namespace

void addBoxes(Album &album)
{
    album.addModal(u"box-keine-daten"_s, [] {
        MessageBox::warning(
            nullptr, u"Keine Daten"_s, u"Es wurden noch keine Baureihen unter dieser Gruppe erfasst!"_s);
    });
    album.addModal(u"box-eintrag-entfernen"_s, [] {
        (void)MessageBox::confirm(nullptr, u"Eintrag Entfernen"_s,
            u"Eintrag 32 mit der Lok-Nummer 11604 und alle dazugehörenden Bilder löschen?"_s);
    });
    album.addModal(u"box-datei-info"_s,
        [] { MessageBox::information(nullptr, u"File-Info"_s, u"Die Datei ist kein lesbares Bild!"_s); });
    LoadProgress progress(u"Weitere 40 von 4711 Einträge laden..."_s, 4711, nullptr, 0);
    (void)progress.advance(1500);
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (widget->inherits("QProgressDialog")) {
            album.add(widget, u"fortschritt"_s);
        }
    }
}

void addBoxesOfForms(Album &album)
{
    TestCatalogue catalogue;
    catalogue.addGroup(u"Akkutriebwagen"_s);
    const int group = catalogue.addGroup(u"Krokodile"_s, u"./Data/Pictures/AuxFolder/fehlt.jpg"_s);
    const int model = catalogue.addModel(u"Be 6/8 II"_s, group);
    catalogue.addModel(u"Ce 6/8 III"_s, group);
    const int entry = catalogue.addEntry(u"13254"_s, model, u"Erstfeld"_s, QDate(1999, 9, 9));
    for (int i = 0; i < 6; ++i) {
        catalogue.addPicture(entry);
    }
    addMaintenanceBoxes(album, group);
    addEntryBoxes(album, entry);
    QFile::remove(catalogue.path(u"source1.jpg"_s));
    BrowserWindow browser;
    if (!browser.search(group).isEmpty()) {
        qFatal("the search found nothing");
    }
    album.addModal(u"box-datei-fehler"_s, [&] { browser.doubleClick(browser.photos(browser.block(0)).constFirst()); });
}
