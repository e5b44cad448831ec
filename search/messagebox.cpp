#include "search/messagebox.h"

#include "search/textcut.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

void prepare(QMessageBox &box, const QString &title, const QString &text)
{
    box.setTextFormat(Qt::PlainText);
    box.setWindowTitle(title);
    box.setText(shownText(text));
    if (!box.parentWidget() || box.parentWidget()->windowIcon().isNull()) {
        box.setWindowIcon(QIcon(u"./Lok.ico"_s)); // others have that of their window
    }
}

/// Lets pass by what comes from a key that is still held down: it opened the box and must not answer it as well.
class HeldKeys final : public QObject
{
public:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        Q_UNUSED(watched)
        return event->type() == QEvent::KeyPress && static_cast<QKeyEvent *>(event)->isAutoRepeat();
    }
};

int run(QMessageBox &box)
{
    HeldKeys heldKeys;
    box.installEventFilter(&heldKeys);
    const QList<QAbstractButton *> buttons = box.buttons();
    for (QAbstractButton *button : buttons) {
        button->installEventFilter(&heldKeys);
    }
    return box.exec();
}

} // namespace

void MessageBox::warning(QWidget *parent, const QString &title, const QString &text)
{
    ask(QMessageBox::Warning, parent, title, text, QMessageBox::Ok);
}

void MessageBox::information(QWidget *parent, const QString &title, const QString &text)
{
    ask(QMessageBox::Information, parent, title, text, QMessageBox::Ok);
}

bool MessageBox::confirm(QWidget *parent, const QString &title, const QString &text)
{
    QMessageBox box(parent);
    prepare(box, title, text);
    box.setIcon(QMessageBox::Warning);
    const QPushButton *yes = box.addButton(QCoreApplication::translate("MessageBox", "Ja"), QMessageBox::AcceptRole);
    QPushButton *no = box.addButton(QCoreApplication::translate("MessageBox", "Nein"), QMessageBox::RejectRole);
    box.setDefaultButton(no); // a careless Return must not delete
    box.setEscapeButton(no);
    run(box);
    return box.clickedButton() == yes;
}

QMessageBox::StandardButton MessageBox::ask(QMessageBox::Icon icon, QWidget *parent, const QString &title,
    const QString &text, QMessageBox::StandardButtons buttons)
{
    QMessageBox box(parent);
    prepare(box, title, text);
    box.setIcon(icon);
    box.setStandardButtons(buttons);
    return QMessageBox::StandardButton(run(box));
}

void MessageBox::about(QWidget *parent, const QString &title, const QString &richText)
{
    QMessageBox::about(parent, title, richText);
}
