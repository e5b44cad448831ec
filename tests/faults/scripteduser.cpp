#include "tests/faults/scripteduser.h"

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QMainWindow>
#include <QTableView>
#include <QTest>
#include <QTextEdit>
#include <QTimer>
#include <QToolButton>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int Evenings = 6; // classes and entries that are added; then the user leaves

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
    always(u"Benutzereingabe"_s, &ScriptedUser::openNewEntry);
    always(u"Edit Bahnito-Eintrag"_s, &ScriptedUser::addEntry);
    always(u"Edit Bahnito-Bild"_s, &ScriptedUser::addPicture);
    always(u"Baureihe-Gruppen (mit Bild)"_s, &ScriptedUser::openClasses);
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
    QWidget *window = mainWindow();
    auto *group = window->findChild<QToolButton *>(u"group1"_s);
    for (m_evening = 1; !m_photograph.isEmpty() && group && m_evening <= Evenings; ++m_evening) {
        QTest::mouseClick(group, Qt::LeftButton);
        const QList<QAction *> actions = window->findChildren<QAction *>();
        for (QAction *action : actions) {
            if (action->text() == u"Baureihe-Gruppen bearbeiten"_s) {
                action->trigger();
            }
        }
        group = window->findChild<QToolButton *>(u"group1"_s); // the column was built anew
    }
    window->close();
    report(u"closed"_s);
}

void ScriptedUser::openNewEntry(QWidget *options)
{
    DialogAnswerer::click(options, u"Neue Lok"_s);
}

void ScriptedUser::addEntry(QWidget *form)
{
    type(form, u"numberEdit"_s, QString::number(m_evening));
    QTest::keyClicks(form->findChild<QTextEdit *>(), u"Regen"_s);
    type(form, u"placeEdit"_s, u"Wassen"_s);
    store(form, u"Speichern"_s, u"entry"_s);
    DialogAnswerer::click(form, u"Neues Bild"_s);
}

void ScriptedUser::addPicture(QWidget *form)
{
    DialogAnswerer::click(form, u"Bild auswählen"_s);
    store(form, u"Bild speichern"_s, u"picture"_s);
}

void ScriptedUser::openClasses(QWidget *form)
{
    auto *table = form->findChild<QTableView *>();
    for (int column = 0; column < table->model()->columnCount(); ++column) {
        if (!table->isColumnHidden(column)) {
            const QPoint place = table->visualRect(table->model()->index(0, column)).center();
            QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, place);
            break;
        }
    }
    DialogAnswerer::click(form, u"Baureihen"_s);
}

void ScriptedUser::addClass(QWidget *form)
{
    type(form, u"nameEdit"_s, u"neu %1"_s.arg(m_evening));
    store(form, u"Speichern"_s, u"class"_s);
}

void ScriptedUser::store(QWidget *form, const QString &button, const QString &what)
{
    if (DialogAnswerer::click(form, button)) {
        report(what + u' ' + QString::number(m_evening));
    }
}

QObject *ScriptedUserPlugin::create(const QString &key, const QString &option)
{
    return key == u"scripteduser"_s ? new ScriptedUser(option) : nullptr;
}
