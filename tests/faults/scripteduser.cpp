#include "tests/faults/scripteduser.h"

#include <QAction>
#include <QApplication>
#include <QGraphicsView>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QTableView>
#include <QTest>
#include <QTextEdit>
#include <QTimer>
#include <QToolButton>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int Evenings = 3; // then the user leaves
constexpr int SampleEntries = 3; // the first one is deleted in the first evening, then that of the evening before

/// To the standard output at once, because a killed program flushes nothing.
void report(const QString &line)
{
    const QByteArray bytes = line.toUtf8() + '\n';
    if (::write(STDOUT_FILENO, bytes.constData(), std::size_t(bytes.size())) != bytes.size()) {
        _exit(1);
    }
}

QWidget *mainWindow()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        if (qobject_cast<QMainWindow *>(window) && window->isVisible()) {
            return window;
        }
    }
    return nullptr;
}

void type(const QWidget *form, const QString &field, const QString &text)
{
    auto *edit = form->findChild<QLineEdit *>(field);
    edit->clear();
    QTest::keyClicks(edit, text);
}

void trigger(const QWidget *window, const QString &text)
{
    const QList<QAction *> actions = window->findChildren<QAction *>();
    for (QAction *action : actions) {
        if (action->text() == text) {
            action->trigger();
            return;
        }
    }
}

/// Null when the card or the button is not there.
ButtonItem *buttonOnCard(const QGraphicsView *view, int entryId, ButtonKind kind)
{
    const QList<QGraphicsItem *> items = view->scene()->items();
    for (QGraphicsItem *item : items) {
        auto *button = qgraphicsitem_cast<ButtonItem *>(item);
        if (button && button->kind() == kind && button->entryId() == entryId) {
            return button;
        }
    }
    return nullptr;
}

void clickFirstRow(const QWidget *form)
{
    auto *table = form->findChild<QTableView *>();
    for (int column = 0; column < table->model()->columnCount(); ++column) {
        if (!table->isColumnHidden(column)) {
            const QPoint place = table->visualRect(table->model()->index(0, column)).center();
            QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, place);
            return;
        }
    }
}

void leave(QWidget *form)
{
    if (form->isVisible() && !DialogAnswerer::click(form, u"Schliessen"_s)) {
        form->close();
    }
}

} // namespace

ScriptedUser::ScriptedUser(const QString &photograph)
    : m_photograph(photograph)
{
    const auto always = [this](const QString &title, void (ScriptedUser::*answer)(QWidget *)) {
        m_answers.always(title, [this, answer](QWidget *form) {
            (this->*answer)(form);
            leave(form);
        });
    };
    always(u"Benutzereingabe"_s, &ScriptedUser::answerOptions);
    always(u"Edit Bahnito-Eintrag"_s, &ScriptedUser::answerEntry);
    always(u"Edit Bahnito-Bild"_s, &ScriptedUser::addPicture);
    always(u"Baureihe-Gruppen (mit Bild)"_s, &ScriptedUser::answerGroups);
    always(u"Baureihen"_s, &ScriptedUser::addClass);
    m_answers.setFile(photograph);
    QTimer::singleShot(0, this, &ScriptedUser::waitForWindow);
}

void ScriptedUser::waitForWindow()
{
    if (!mainWindow()) {
        QTimer::singleShot(1, this, &ScriptedUser::waitForWindow);
        return;
    }
    const QStringList boxes = m_answers.takeBoxes();
    report(u"window"_s + boxes.join(u'/'));
    QTimer::singleShot(0, this, &ScriptedUser::work);
}

void ScriptedUser::work()
{
    for (m_evening = 1; !m_photograph.isEmpty() && m_evening <= Evenings; ++m_evening) {
        spendEvening();
    }
    leaveProgram();
}

void ScriptedUser::spendEvening()
{
    clickGroup(u"Neue Lok"_s);
    trigger(mainWindow(), u"Baureihe-Gruppen bearbeiten"_s);
    clickGroup(u"Suchen"_s);
    clickOnCard(SampleEntries + m_evening, ButtonKind::Edit);
    const int formerEntry = m_evening == 1 ? 1 : SampleEntries + m_evening - 1;
    storeBy(
        [&] {
            clickOnCard(formerEntry, ButtonKind::Delete);
            return true;
        },
        u"deletion"_s);
}

/// With another background, so that there is something to store.
void ScriptedUser::leaveProgram()
{
    QWidget *window = mainWindow();
    if (!m_photograph.isEmpty()) {
        const QList<QAction *> colors = window->findChild<QToolButton *>(u"colorButton"_s)->menu()->actions();
        colors.last()->trigger();
        report(u"> close"_s);
    }
    const QStringList boxes = m_answers.takeBoxes();
    window->close();
    report(u"closed"_s + boxes.join(u'/'));
}

void ScriptedUser::clickGroup(const QString &wish)
{
    m_wish = wish;
    if (auto *group = mainWindow()->findChild<QToolButton *>(u"group1"_s)) { // the column may have been built anew
        QTest::mouseClick(group, Qt::LeftButton);
    }
}

void ScriptedUser::clickOnCard(int entryId, ButtonKind kind)
{
    auto *view = mainWindow()->findChild<QGraphicsView *>(u"canvasView"_s);
    const ButtonItem *button = buttonOnCard(view, entryId, kind);
    if (!button) {
        report(u"no card "_s + QString::number(entryId));
        return;
    }
    view->ensureVisible(button);
    const QPoint place = view->mapFromScene(button->sceneBoundingRect().center());
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, place);
    QApplication::processEvents(); // the press is carried out after its event
}

void ScriptedUser::answerOptions(QWidget *options)
{
    DialogAnswerer::click(options, m_wish);
}

void ScriptedUser::answerEntry(QWidget *form)
{
    if (form->findChild<QLineEdit *>(u"numberEdit"_s)->isEnabled()) { // that of a stored entry is not
        addEntry(form);
    } else {
        editEntry(form);
    }
}

void ScriptedUser::addEntry(QWidget *form)
{
    type(form, u"numberEdit"_s, QString::number(m_evening));
    QTest::keyClicks(form->findChild<QTextEdit *>(), u"Regen"_s);
    type(form, u"placeEdit"_s, u"Wassen"_s);
    store(form, u"Speichern"_s, u"entry"_s);
    DialogAnswerer::click(form, u"Neues Bild"_s);
}

void ScriptedUser::editEntry(QWidget *form)
{
    type(form, u"placeEdit"_s, u"Wassen Nord"_s);
    store(form, u"Speichern"_s, u"edit"_s);
}

void ScriptedUser::addPicture(QWidget *form)
{
    const bool isOfGroup = form->parentWidget()->windowTitle() == u"Baureihe-Gruppen (mit Bild)"_s;
    DialogAnswerer::click(form, u"Bild auswählen"_s);
    store(form, u"Bild speichern"_s, isOfGroup ? u"grouppicture"_s : u"picture"_s);
}

void ScriptedUser::answerGroups(QWidget *form)
{
    clickFirstRow(form);
    DialogAnswerer::click(form, u"Baureihen"_s);
    addGroup(form);
}

void ScriptedUser::addGroup(QWidget *form)
{
    type(form, u"nameEdit"_s, u"Zug %1"_s.arg(m_evening));
    DialogAnswerer::click(form, u"Bild zuweisen"_s);
    store(form, u"Speichern"_s, u"group"_s);
}

void ScriptedUser::addClass(QWidget *form)
{
    type(form, u"nameEdit"_s, u"neu %1"_s.arg(m_evening));
    store(form, u"Speichern"_s, u"class"_s);
}

void ScriptedUser::store(QWidget *form, const QString &button, const QString &what)
{
    storeBy([&] { return DialogAnswerer::click(form, button); }, what);
}

void ScriptedUser::storeBy(const std::function<bool()> &click, const QString &what)
{
    const QString name = what + u' ' + QString::number(m_evening);
    report(u"> "_s + name);
    if (click()) {
        report(name);
    }
}

QObject *ScriptedUserPlugin::create(const QString &key, const QString &option)
{
    return key == u"scripteduser"_s ? new ScriptedUser(option) : nullptr;
}
