#include "tests/faults/randomuser.h"

#include "app/startup.h"
#include "browser/picturescene.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QMenu>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTableView>
#include <QTest>
#include <QTextEdit>
#include <QToolBar>
#include <QToolButton>
#include <QVariant>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

// A catalogue that grew for ever would make the program's memory grow as well.
constexpr int MostEntries = 300;
constexpr int MostRows = 15; // in the list of the groups, or of a group's classes

bool hasRoom(const QWidget *form)
{
    return form->findChild<QTableView *>()->model()->rowCount() < MostRows;
}

void leave(QWidget *form)
{
    for (int i = 0; i < 2 && form->isVisible(); ++i) {
        if (!DialogAnswerer::click(form, u"Schliessen"_s)) {
            form->close();
        }
    }
}

/// 0 when they cannot be counted.
int countEntries()
{
    QSqlQuery query(u"SELECT COUNT(*) FROM loc_seen"_s);
    return query.next() ? query.value(0).toInt() : 0;
}

} // namespace

RandomUser::RandomUser(quint32 seed, Manner manner, const QString &photographs)
    : m_random(seed)
    , m_manner(manner)
    , m_photographs(photographs)
{
    const auto always = [this](const QString &title, void (RandomUser::*answer)(QWidget *)) {
        m_deeds.insert(title, 0);
        m_answers.always(title, [this, title, answer](QWidget *form) {
            ++m_deeds[title];
            (this->*answer)(form);
            leave(form);
        });
    };
    always(u"Benutzereingabe"_s, &RandomUser::answerOptions);
    always(u"Edit Bahnito-Eintrag"_s, &RandomUser::answerEntry);
    always(u"Edit Bahnito-Bild"_s, &RandomUser::answerPicture);
    always(u"Baureihe-Gruppen (mit Bild)"_s, &RandomUser::answerGroups);
    always(u"Baureihe-Gruppen"_s, &RandomUser::answerMove);
    always(u"Baureihen"_s, &RandomUser::answerClasses);
    Startup::makeDataFolders();
    if (!Startup::openCatalogue()) {
        qFatal("the catalogue could not be opened");
    }
    m_browser = std::make_unique<BrowserWindow>();
}

RandomUser::~RandomUser()
{
    m_browser.reset();
    QSqlDatabase::removeDatabase(QLatin1StringView(QSqlDatabase::defaultConnection));
}

void RandomUser::act()
{
    m_answers.setConsent(m_manner == Work && chance(50));
    const int kind = m_random.bounded(100);
    if (kind < 25) {
        searchSomeGroup();
    } else if (kind < 90) {
        pressSomeButton();
    } else if (kind < 94) {
        pickSomeColor();
    } else {
        maintainGroups();
    }
    QApplication::processEvents();
}

QStringList RandomUser::deedLines(const Deeds &deeds)
{
    QStringList lines;
    for (const auto &[deed, times] : deeds.asKeyValueRange()) {
        lines.append(QString::number(times) + u' ' + deed);
    }
    return lines;
}

void RandomUser::addDeeds(Deeds &sum, const QStringList &lines)
{
    for (const QString &line : lines) {
        sum[line.section(u' ', 1)] += line.section(u' ', 0, 0).toInt();
    }
}

void RandomUser::searchSomeGroup()
{
    QList<QToolButton *> groups = m_browser->window().findChildren<QToolButton *>();
    groups.removeIf([](const QToolButton *button) {
        return !button->objectName().startsWith(u"group"_s) || button->objectName() == u"groupColumn"_s;
    });
    if (!groups.isEmpty()) {
        QTest::mouseClick(groups.at(m_random.bounded(groups.size())), Qt::LeftButton);
    }
}

void RandomUser::pressSomeButton()
{
    QList<QGraphicsItem *> buttons = m_browser->canvas().items();
    buttons.removeIf([this](QGraphicsItem *item) {
        const auto *button = qgraphicsitem_cast<ButtonItem *>(item);
        const bool deletes = button && button->kind() == ButtonKind::Delete;
        return !button || (deletes && m_random.bounded(100) < 80); // else nothing would be left soon
    });
    if (buttons.isEmpty()) {
        searchSomeGroup();
        return;
    }
    press(static_cast<ButtonItem *>(buttons.at(m_random.bounded(buttons.size()))));
}

void RandomUser::press(ButtonItem *button)
{
    const ButtonKind kind = button->kind();
    const int before = kind == ButtonKind::Delete ? countEntries() : 0;
    m_browser->click(button); // and it may be gone
    m_deeds[u"listed"_s] += kind == ButtonKind::Count ? 1 : 0;
    m_deeds[u"deleted"_s] += kind == ButtonKind::Delete && countEntries() < before ? 1 : 0;
}

void RandomUser::pickSomeColor()
{
    const QList<QAction *> colors = m_browser->window().findChild<QToolButton *>(u"colorButton"_s)->menu()->actions();
    colors.at(m_random.bounded(colors.size()))->trigger();
}

void RandomUser::maintainGroups()
{
    const QList<QAction *> actions = m_browser->window().findChildren<QAction *>();
    for (QAction *action : actions) {
        if (action->text() == u"Baureihe-Gruppen bearbeiten"_s) {
            action->trigger();
            return;
        }
    }
}

void RandomUser::answerOptions(QWidget *options)
{
    const QList<QComboBox *> boxes = options->findChildren<QComboBox *>();
    for (QComboBox *box : boxes) {
        if (chance(50) && box->count() > 0) {
            box->setCurrentIndex(m_random.bounded(box->count()));
        }
    }
    if ((works(30) && countEntries() < MostEntries) || (m_manner == LookOnly && chance(10))) {
        DialogAnswerer::click(options, u"Neue Lok"_s);
    }
    if (chance(90) && DialogAnswerer::click(options, u"Suchen"_s)) {
        ++m_deeds[u"searched"_s];
    }
}

void RandomUser::answerEntry(QWidget *form)
{
    if (works(70)) {
        if (chance(70)) {
            type(form, u"numberEdit"_s, 22);
        }
        if (chance(70)) {
            type(form, u"placeEdit"_s, 42);
        }
        if (chance(70)) {
            form->findChild<QTextEdit *>()->insertPlainText(u"Wetter %1\n"_s.arg(m_random.bounded(1000)));
        }
        DialogAnswerer::click(form, u"Speichern"_s);
    }
    chooseSomeRow(form);
    DialogAnswerer::click(form, u"Bild zeigen"_s);
    if (works(40) || (m_manner == LookOnly && chance(20))) {
        DialogAnswerer::click(form, u"Neues Bild"_s);
    }
    if (chance(20)) {
        DialogAnswerer::click(form, u"Bild entfernen"_s);
    }
}

void RandomUser::answerPicture(QWidget *form)
{
    const QStringList names { u"klein.jpg"_s, u"gross.jpg"_s, u"bild.png"_s, u"fehlt.jpg"_s };
    m_answers.setFile(m_photographs + u'/' + names.at(m_random.bounded(names.size())));
    DialogAnswerer::click(form, u"Bild auswählen"_s);
    if (works(80)) {
        DialogAnswerer::click(form, u"Bild speichern"_s);
    }
    if (m_manner == LookOnly || chance(10)) {
        static_cast<QDialog *>(form)->reject();
    }
}

void RandomUser::answerGroups(QWidget *form)
{
    if (works(15) && hasRoom(form)) {
        type(form, u"nameEdit"_s, 45);
        DialogAnswerer::click(form, u"Bild zuweisen"_s);
        DialogAnswerer::click(form, u"Speichern"_s);
    }
    chooseSomeRow(form);
    DialogAnswerer::click(form, u"Bild zeigen"_s);
    DialogAnswerer::click(form, u"Baureihen"_s);
    if (works(10)) {
        DialogAnswerer::click(form, u"Bild austauschen"_s);
    }
    if (chance(10)) {
        DialogAnswerer::click(form, u"Gruppe entfernen"_s);
    }
}

void RandomUser::answerMove(QWidget *form)
{
    chooseSomeRow(form);
    if (works(70)) {
        DialogAnswerer::click(form, u"Speichern"_s);
    }
}

void RandomUser::answerClasses(QWidget *form)
{
    if (works(30) && hasRoom(form)) {
        type(form, u"nameEdit"_s, 45);
        DialogAnswerer::click(form, u"Speichern"_s);
    }
    chooseSomeRow(form);
    if (chance(20)) {
        DialogAnswerer::click(form, u"Baureihe verschieben"_s);
    }
    if (chance(20)) {
        DialogAnswerer::click(form, u"Baureihe entfernen"_s);
    }
}

void RandomUser::chooseSomeRow(const QWidget *form)
{
    auto *table = form->findChild<QTableView *>();
    const int rows = table->model()->rowCount();
    if (rows == 0) {
        return;
    }
    for (int column = 0; column < table->model()->columnCount(); ++column) {
        if (!table->isColumnHidden(column)) {
            const QModelIndex index = table->model()->index(m_random.bounded(rows), column);
            table->scrollTo(index);
            QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, table->visualRect(index).center());
            return;
        }
    }
}

/// Puts a text of up to `length` characters behind what is there, where the field can be edited.
void RandomUser::type(QWidget *form, const QString &field, int length)
{
    auto *edit = form->findChild<QLineEdit *>(field);
    if (!edit->isEnabled() || edit->text().size() > length) {
        return;
    }
    edit->setFocus();
    edit->end(false);
    const QString letters = u"Ae 6/6 Gotthard 'x' <b>"_s;
    const int wanted = m_random.bounded(1, length);
    QString text;
    while (text.size() < wanted) {
        text.append(letters.at(m_random.bounded(letters.size())));
    }
    edit->insert(text);
    Q_EMIT edit->textEdited(edit->text()); // as after the keys, but in a hundredth of the time
}
