#include "tests/faults/catalogueuser.h"

#include "app/startup.h"
#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "tests/support/formfields.h"

#include <QApplication>
#include <QComboBox>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTableView>
#include <QTest>
#include <QToolBar>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QString GroupForm = u"Baureihe-Gruppen (mit Bild)"_s;
const QString MoveForm = u"Baureihe-Gruppen"_s;
const QString ClassForm = u"Baureihen"_s;
const QString EntryForm = u"Edit Bahnito-Eintrag"_s;
const QString PictureForm = u"Edit Bahnito-Bild"_s;
const QString OptionForm = u"Benutzereingabe"_s;

/// A form whose edits could not be stored stays open the first time.
void leave(QWidget *form)
{
    for (int i = 0; i < 2 && form->isVisible(); ++i) {
        if (!DialogAnswerer::click(form, u"Schliessen"_s)) {
            form->close();
        }
    }
}

void chooseClass(const QWidget *options, const QString &model)
{
    auto *box = options->findChild<QComboBox *>(u"modelBox"_s);
    box->setCurrentIndex(std::max(0, box->findText(model)));
}

/// 0 when there is no such group.
int groupId(const QString &name)
{
    QSqlQuery query;
    query.prepare(u"SELECT id FROM locomotive WHERE name = :name"_s);
    query.bindValue(u":name"_s, name);
    return query.exec() && query.next() ? query.value(0).toInt() : 0;
}

} // namespace

CatalogueUser::CatalogueUser()
{
    Startup::makeDataFolders();
    if (Startup::openCatalogue()) {
        m_browser = std::make_unique<BrowserWindow>();
    }
}

CatalogueUser::~CatalogueUser()
{
    m_browser.reset();
    QSqlDatabase::removeDatabase(QLatin1StringView(QSqlDatabase::defaultConnection));
}

void CatalogueUser::setSavingHooks(SavingHook before, SavingHook after)
{
    m_before = std::move(before);
    m_after = std::move(after);
}

void CatalogueUser::addGroup(const QString &name, const QString &picture)
{
    m_answers.setFile(picture);
    m_answers.on(PictureForm, [this](QWidget *form) { savePicture(form); });
    openGroupForm([&](QWidget *form) {
        typeInto(form, u"Name der neuen Gruppe:"_s, name);
        DialogAnswerer::click(form, u"Bild zuweisen"_s);
        storeBy(form, u"Speichern"_s);
    });
}

void CatalogueUser::saveGroupPicture(const QString &picture)
{
    m_answers.setFile(picture);
    m_answers.on(PictureForm, [this](QWidget *form) { savePicture(form); });
    openGroupForm([](QWidget *form) {
        typeInto(form, u"Name der neuen Gruppe:"_s, u"x"_s);
        DialogAnswerer::click(form, u"Bild zuweisen"_s);
    });
}

void CatalogueUser::changeGroupPicture(const QString &name, const QString &picture)
{
    m_answers.setFile(picture);
    m_answers.on(PictureForm, [](QWidget *form) {
        DialogAnswerer::click(form, u"Bild auswählen"_s);
        leave(form); // the group form saves what was chosen
    });
    openGroupForm([&](QWidget *form) {
        if (clickRow(form, name)) {
            storeBy(form, u"Bild austauschen"_s);
        }
    });
}

void CatalogueUser::deleteGroup(const QString &name)
{
    openGroupForm([&](QWidget *form) {
        if (clickRow(form, name)) {
            storeBy(form, u"Gruppe entfernen"_s);
        }
    });
}

void CatalogueUser::addClass(const QString &group, const QString &name)
{
    openClassForm(group, [&](QWidget *form) {
        typeInto(form, u"Name der neuen Baureihe:"_s, name);
        storeBy(form, u"Speichern"_s);
    });
}

void CatalogueUser::moveClass(const QString &group, const QString &name, const QString &toGroup)
{
    m_answers.on(MoveForm, [&](QWidget *form) {
        if (clickRow(form, toGroup)) {
            storeBy(form, u"Speichern"_s);
        }
        leave(form);
    });
    openClassForm(group, [&](QWidget *form) {
        if (clickRow(form, name)) {
            DialogAnswerer::click(form, u"Baureihe verschieben"_s);
        }
    });
}

void CatalogueUser::deleteClass(const QString &group, const QString &name)
{
    openClassForm(group, [&](QWidget *form) {
        if (clickRow(form, name)) {
            storeBy(form, u"Baureihe entfernen"_s);
        }
    });
}

void CatalogueUser::addEntry(
    const QString &group, const QString &model, const QString &number, const QString &place, const QString &comment)
{
    m_answers.on(OptionForm, [&](QWidget *options) {
        chooseClass(options, model);
        DialogAnswerer::click(options, u"Neue Lok"_s);
        leave(options);
    });
    m_answers.on(EntryForm, [&](QWidget *form) {
        typeInto(form, u"Nummer:"_s, number);
        typeInto(form, u"Kommentar:"_s, comment);
        typeInto(form, u"Ort:"_s, place);
        storeBy(form, u"Speichern"_s);
        leave(form);
    });
    clickGroup(group);
}

void CatalogueUser::search(const QString &group, const QString &model)
{
    m_answers.on(OptionForm, [&](QWidget *options) {
        chooseClass(options, model);
        DialogAnswerer::click(options, u"Suchen"_s);
    });
    clickGroup(group);
}

void CatalogueUser::editEntry(const QString &number, const QString &addedToPlace, bool byClosing)
{
    openEntryForm(number, [&](QWidget *form) {
        typeInto(form, u"Ort:"_s, addedToPlace);
        storeBy(form, byClosing ? u"Schliessen"_s : u"Speichern"_s);
    });
}

void CatalogueUser::addPicture(const QString &number, const QString &picture)
{
    m_answers.setFile(picture);
    m_answers.on(PictureForm, [this](QWidget *form) { savePicture(form); });
    openEntryForm(number, [](QWidget *form) { DialogAnswerer::click(form, u"Neues Bild"_s); });
}

void CatalogueUser::deletePicture(const QString &number)
{
    openEntryForm(number, [this](QWidget *form) {
        const QAbstractItemModel *rows = form->findChild<QTableView *>()->model();
        if (clickRow(form, rows->index(0, 1).data().toString())) {
            storeBy(form, u"Bild entfernen"_s);
        }
    });
}

void CatalogueUser::deleteEntry(const QString &number)
{
    if (EntryBlock *block = blockOf(number)) {
        store([&] { m_browser->click(m_browser->button(ButtonKind::Delete, block)); });
    }
}

void CatalogueUser::shutDown(const QString &color)
{
    if (!color.isEmpty()) {
        m_browser->pickColor(color);
    }
    store([this] {
        m_browser->window().close();
        m_browser.reset();
    });
}

void CatalogueUser::clickGroup(const QString &name)
{
    const int id = groupId(name);
    if (m_browser->window().findChild<QWidget *>(u"group%1"_s.arg(id))) {
        m_browser->clickGroup(id);
    }
}

void CatalogueUser::openGroupForm(const Answer &answer)
{
    m_answers.on(GroupForm, [answer](QWidget *form) {
        answer(form);
        leave(form);
    });
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

void CatalogueUser::openClassForm(const QString &group, const Answer &answer)
{
    m_answers.on(ClassForm, [answer](QWidget *form) {
        answer(form);
        leave(form);
    });
    openGroupForm([group](QWidget *form) {
        if (clickRow(form, group)) {
            DialogAnswerer::click(form, u"Baureihen"_s);
        }
    });
}

void CatalogueUser::openEntryForm(const QString &number, const Answer &answer)
{
    EntryBlock *block = blockOf(number);
    if (!block) {
        return;
    }
    m_answers.on(EntryForm, [answer](QWidget *form) {
        answer(form);
        leave(form);
    });
    m_browser->click(m_browser->button(ButtonKind::Edit, block));
}

void CatalogueUser::savePicture(QWidget *form)
{
    DialogAnswerer::click(form, u"Bild auswählen"_s);
    storeBy(form, u"Bild speichern"_s);
    leave(form);
}

void CatalogueUser::store(const std::function<void()> &click)
{
    if (m_before) {
        m_before();
    }
    click();
    if (m_after) {
        m_after();
    }
}

void CatalogueUser::storeBy(QWidget *form, const QString &button)
{
    store([&] { DialogAnswerer::click(form, button); });
}

EntryBlock *CatalogueUser::blockOf(const QString &number) const
{
    const QList<EntryBlock *> blocks = m_browser->canvas().blocks();
    const auto found = std::find_if(
        blocks.cbegin(), blocks.cend(), [&number](const EntryBlock *block) { return block->card().number == number; });
    return found == blocks.cend() ? nullptr : *found;
}
