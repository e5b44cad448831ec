// What the random user does in the forms.

#include "tests/faults/randomuser.h"

#include <QComboBox>
#include <QDateEdit>
#include <QDialog>
#include <QLineEdit>
#include <QTableView>
#include <QTest>
#include <QTextEdit>

using namespace Qt::StringLiterals;

namespace {

// A catalogue that grew for ever would make the program's memory grow as well.
constexpr int MostEntries = 300;
constexpr int MostRows = 15; // in the list of the groups, or of a group's classes

bool hasRoom(const QWidget *form)
{
    return form->findChild<QTableView *>()->model()->rowCount() < MostRows;
}

} // namespace

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
    const auto *seen = form->findChild<QDateEdit *>(u"seenDateEdit"_s);
    QDate storedDate = seen->date();
    const bool isNew = form->findChild<QLineEdit *>(u"numberEdit"_s)->isEnabled();
    Belief belief { isNew ? u"INSERT loc_seen"_s : u"UPDATE loc_seen"_s };
    if (works(70)) {
        editEntry(form, belief.values);
        const bool leavesItToClosing = !isNew && chance(40);
        if (!leavesItToClosing && saveBy(form, u"Speichern"_s, belief)) {
            belief = { u"UPDATE loc_seen"_s }; // of what comes now
            storedDate = seen->date();
        }
    }
    usePictures(form);
    belief.values.remove(u"locseendate"_s);
    if (seen->date() != storedDate) { // it is taken from a new picture, too
        belief.values.insert(u"locseendate"_s, seen->date().toString(Qt::ISODate));
    }
    closeEntry(form, belief);
}

/// Edits some fields; `values` are then theirs.
void RandomUser::editEntry(QWidget *form, QMap<QString, QString> &values)
{
    if (chance(70) && type(form, u"numberEdit"_s, 22)) {
        values.insert(u"nummer"_s, textOf(form, u"numberEdit"_s));
    }
    if (chance(70) && type(form, u"placeEdit"_s, 42)) {
        values.insert(u"ort"_s, textOf(form, u"placeEdit"_s));
    }
    auto *comment = form->findChild<QTextEdit *>(u"commentEdit"_s);
    if (chance(70) && comment->isEnabled()) {
        comment->insertPlainText(u"Wetter %1\n"_s.arg(m_random.bounded(1000)));
        values.insert(u"kommentar"_s, comment->toPlainText().replace(u'\n', u' '));
    }
    auto *seen = form->findChild<QDateEdit *>(u"seenDateEdit"_s);
    if (chance(40) && seen->isEnabled()) {
        seen->setDate(unusedDate());
        values.insert(u"locseendate"_s, seen->date().toString(Qt::ISODate));
    }
    if (m_hesitation > 0) {
        QTest::qWait(m_random.bounded(m_hesitation));
    }
}

void RandomUser::usePictures(QWidget *form)
{
    chooseSomeRow(form);
    DialogAnswerer::click(form, u"Bild zeigen"_s);
    if (works(40) || (m_manner == LookOnly && chance(20))) {
        DialogAnswerer::click(form, u"Neues Bild"_s);
    }
    if (chance(20)) {
        DialogAnswerer::click(form, u"Bild entfernen"_s);
    }
}

/// Closing stores the edits of a stored entry, too.
void RandomUser::closeEntry(QWidget *form, const Belief &belief)
{
    const int boxes = m_answers.boxCount();
    leave(form);
    if (belief.write == u"UPDATE loc_seen"_s && !belief.values.isEmpty() && m_answers.boxCount() == boxes) {
        m_beliefs.append(belief);
    }
}

void RandomUser::answerPicture(QWidget *form)
{
    const QStringList names { u"klein.jpg"_s, u"gross.jpg"_s, u"bild.png"_s, u"fehlt.jpg"_s };
    const QString file = m_photographs + u'/' + names.at(m_random.bounded(names.size()));
    m_answers.setFile(file);
    DialogAnswerer::click(form, u"Bild auswählen"_s);
    if (works(80)) {
        saveBy(form, u"Bild speichern"_s, { u"INSERT loc_picture"_s, { { u"pictOrigPath"_s, file } } });
    }
    if (m_manner == LookOnly || chance(10)) {
        static_cast<QDialog *>(form)->reject();
    }
}

void RandomUser::answerGroups(QWidget *form)
{
    if (works(20) && hasRoom(form)) {
        type(form, u"nameEdit"_s, 45);
        DialogAnswerer::click(form, u"Bild zuweisen"_s);
        saveBy(form, u"Speichern"_s, { u"INSERT locomotive"_s, { { u"name"_s, textOf(form, u"nameEdit"_s) } } });
    }
    chooseSomeRow(form);
    DialogAnswerer::click(form, u"Bild zeigen"_s);
    DialogAnswerer::click(form, u"Baureihen"_s);
    if (works(10)) {
        DialogAnswerer::click(form, u"Bild austauschen"_s);
    }
    if (chance(30)) {
        DialogAnswerer::click(form, u"Gruppe entfernen"_s);
    }
}

void RandomUser::answerMove(QWidget *form)
{
    const QString group = chooseSomeRow(form);
    if (works(70)) {
        saveBy(form, u"Speichern"_s, { u"UPDATE loc_model"_s, { { u"locid"_s, group } } });
    }
}

void RandomUser::answerClasses(QWidget *form)
{
    if (works(30) && hasRoom(form)) {
        type(form, u"nameEdit"_s, 45);
        saveBy(form, u"Speichern"_s, { u"INSERT loc_model"_s, { { u"modelname"_s, textOf(form, u"nameEdit"_s) } } });
    }
    chooseSomeRow(form);
    if (chance(20)) {
        DialogAnswerer::click(form, u"Baureihe verschieben"_s);
    }
    if (chance(20)) {
        DialogAnswerer::click(form, u"Baureihe entfernen"_s);
    }
}

/// False when the button could not be clicked or a box came up; else the user believes what it says.
bool RandomUser::saveBy(QWidget *form, const QString &button, const Belief &belief)
{
    const int boxes = m_answers.boxCount();
    if (!DialogAnswerer::click(form, button) || m_answers.boxCount() != boxes) {
        return false;
    }
    m_beliefs.append(belief);
    return true;
}

void RandomUser::leave(QWidget *form)
{
    for (int i = 0; i < 2 && form->isVisible(); ++i) {
        if (!DialogAnswerer::click(form, u"Schliessen"_s)) {
            form->close();
        }
    }
}

/// Returns the row's id.
QString RandomUser::chooseSomeRow(const QWidget *form)
{
    auto *table = form->findChild<QTableView *>();
    const QAbstractItemModel *rows = table->model();
    if (rows->rowCount() == 0) {
        return {};
    }
    for (int column = 0; column < rows->columnCount(); ++column) {
        if (!table->isColumnHidden(column)) {
            const QModelIndex index = rows->index(m_random.bounded(rows->rowCount()), column);
            table->scrollTo(index);
            QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, table->visualRect(index).center());
            return index.siblingAtColumn(0).data().toString();
        }
    }
    return {};
}

/// Puts a text of up to `length` characters behind what is there; false where the field cannot be edited.
bool RandomUser::type(QWidget *form, const QString &field, int length)
{
    auto *edit = form->findChild<QLineEdit *>(field);
    if (!edit->isEnabled() || edit->text().size() > length) {
        return false;
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
    return true;
}

QString RandomUser::textOf(const QWidget *form, const QString &field)
{
    return form->findChild<QLineEdit *>(field)->text();
}

/// A day that this user has chosen never before, nor a user whose seed is the next one.
QDate RandomUser::unusedDate()
{
    constexpr int Days = 60000; // to the year 1964, before the days of the photographs and of today
    m_lastDay = (m_lastDay + 2) % Days;
    return QDate(1800, 1, 1).addDays(m_lastDay);
}
