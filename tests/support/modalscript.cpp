#include "tests/support/modalscript.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressDialog>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

constexpr int LookEvery = 5; // ms

QString withoutMnemonic(QString text)
{
    return text.remove(u'&');
}

} // namespace

ModalScript::ModalScript()
{
    schedule();
}

ModalScript::~ModalScript() = default;

ModalScript &ModalScript::then(Step step)
{
    m_steps.append(std::move(step));
    return *this;
}

ModalScript &ModalScript::box(const QString &title, const QString &text, const QString &button)
{
    return then([this, title, text, button](QWidget *widget) {
        auto *box = qobject_cast<QMessageBox *>(widget);
        if (box == nullptr) {
            m_problems.append(u"no message box \"%1\" but \"%2\""_s.arg(title, widget->windowTitle()));
            widget->close();
            return;
        }
        compare(u"box title"_s, box->windowTitle(), title);
        compare(u"box text"_s, box->text(), text);
        click(box, button);
    });
}

ModalScript &ModalScript::anyBox(const QString &title)
{
    return then([this, title](QWidget *widget) {
        auto *box = qobject_cast<QMessageBox *>(widget);
        compare(u"box title"_s, widget->windowTitle(), title);
        if (box == nullptr || box->text().isEmpty()) {
            m_problems.append(u"box \"%1\" without a text"_s.arg(title));
        }
        widget->close();
    });
}

ModalScript &ModalScript::chooseFile(const QString &path)
{
    return then([this, path](QWidget *widget) {
        auto *dialog = qobject_cast<QFileDialog *>(widget);
        if (dialog == nullptr) {
            m_problems.append(u"no file dialog but \"%1\""_s.arg(widget->windowTitle()));
            widget->close();
            return;
        }
        if (path.isEmpty()) {
            dialog->reject();
            return;
        }
        auto *name = dialog->findChild<QLineEdit *>(u"fileNameEdit"_s);
        name->setText(path);
        QTest::keyClick(name, Qt::Key_Return);
    });
}

QStringList ModalScript::problems() const
{
    QStringList all = m_problems;
    if (!m_steps.isEmpty()) {
        all.append(u"%1 expected dialogs never appeared"_s.arg(m_steps.size()));
    }
    return all;
}

void ModalScript::click(QWidget *widget, const QString &text)
{
    const QList<QAbstractButton *> buttons = widget->findChildren<QAbstractButton *>();
    for (QAbstractButton *button : buttons) {
        if (withoutMnemonic(button->text()) != withoutMnemonic(text)) {
            continue;
        }
        if (!button->isEnabled()) {
            m_problems.append(u"button \"%1\" is disabled"_s.arg(text));
        }
        QTest::mouseClick(button, Qt::LeftButton);
        return;
    }
    m_problems.append(u"no button \"%1\" in \"%2\""_s.arg(text, widget->windowTitle()));
    widget->close();
}

void ModalScript::schedule()
{
    // A single shot each time: one repeating timer would not fire inside a dialog that its own step has opened.
    QTimer::singleShot(LookEvery, this, &ModalScript::look);
}

void ModalScript::look()
{
    schedule();
    QWidget *modal = QApplication::activeModalWidget();
    if (modal == nullptr || !modal->isVisible() || qobject_cast<QProgressDialog *>(modal) || m_seen.contains(modal)) {
        return;
    }
    m_seen.append(modal);
    if (m_steps.isEmpty()) {
        const auto *box = qobject_cast<QMessageBox *>(modal);
        m_problems.append(u"unexpected dialog \"%1\" %2"_s.arg(modal->windowTitle(), box ? box->text() : QString()));
        modal->close();
        return;
    }
    const Step step = m_steps.takeFirst();
    step(modal);
}

void ModalScript::compare(const QString &what, const QString &actual, const QString &expected)
{
    if (actual != expected) {
        m_problems.append(u"%1 is \"%2\" instead of \"%3\""_s.arg(what, actual, expected));
    }
}
