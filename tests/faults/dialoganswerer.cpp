#include "tests/faults/dialoganswerer.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressDialog>
#include <QTest>
#include <QTimer>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int LookEvery = 2; // ms

void chooseFile(QFileDialog *dialog, const QString &path)
{
    auto *name = dialog->findChild<QLineEdit *>(u"fileNameEdit"_s);
    name->setText(path);
    QTest::keyClick(name, Qt::Key_Return);
    if (dialog->isVisible()) {
        dialog->reject(); // the file cannot be chosen
    }
}

} // namespace

DialogAnswerer::DialogAnswerer()
{
    schedule();
}

DialogAnswerer::~DialogAnswerer() = default;

void DialogAnswerer::on(const QString &title, Answer answer)
{
    m_answers[title].append(std::move(answer));
}

void DialogAnswerer::always(const QString &title, Answer answer)
{
    m_standing[title] = std::move(answer);
}

QStringList DialogAnswerer::takeBoxes()
{
    return std::exchange(m_boxes, {});
}

bool DialogAnswerer::click(QWidget *widget, const QString &text)
{
    const QList<QAbstractButton *> buttons = widget->findChildren<QAbstractButton *>();
    for (QAbstractButton *button : buttons) {
        if (button->text().remove(u'&') == text && button->isEnabled()) {
            QTest::mouseClick(button, Qt::LeftButton);
            return true;
        }
    }
    return false;
}

void DialogAnswerer::schedule()
{
    // A single shot each time: one repeating timer would not fire inside a dialog that an answer has opened.
    QTimer::singleShot(LookEvery, this, &DialogAnswerer::look);
}

void DialogAnswerer::look()
{
    schedule();
    QWidget *modal = QApplication::activeModalWidget();
    if (modal == nullptr || !modal->isVisible() || qobject_cast<QProgressDialog *>(modal) || m_seen.contains(modal)) {
        return;
    }
    m_seen.removeAll(nullptr);
    m_seen.append(modal);
    if (qobject_cast<QMessageBox *>(modal)) {
        answerBox(modal);
    } else {
        answerDialog(modal);
    }
}

void DialogAnswerer::answerBox(QWidget *box)
{
    if (click(box, m_consent ? u"Ja"_s : u"Nein"_s)) {
        return;
    }
    note(box->windowTitle() + u'|' + static_cast<QMessageBox *>(box)->text());
    box->close();
}

void DialogAnswerer::answerDialog(QWidget *dialog)
{
    if (auto *files = qobject_cast<QFileDialog *>(dialog)) {
        chooseFile(files, m_file);
        return;
    }
    QList<Answer> &answers = m_answers[dialog->windowTitle()];
    if (answers.isEmpty() && m_standing.contains(dialog->windowTitle())) {
        answers.append(m_standing.value(dialog->windowTitle()));
    }
    if (answers.isEmpty()) {
        note(dialog->windowTitle() + u"|unerwartet"_s);
        dialog->close();
        return;
    }
    const Answer answer = answers.takeFirst();
    answer(dialog);
}

void DialogAnswerer::note(const QString &box)
{
    m_boxes.append(box);
    ++m_boxCount;
}
