#include "forms/formparts.h"

#include "forms/dialogstyle.h"

#include <QAbstractSpinBox>
#include <QBoxLayout>
#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

constexpr int ButtonMargin = 16; // pixels beside the text, beyond what the style gives
constexpr int BoxButtonMargin = 10; // three of them have to fit under a preview

/// Gives the buttons one width and leaves the room behind them free.
QLayout *lineUp(QBoxLayout *layout, const QList<QPushButton *> &buttons)
{
    int width = 0;
    for (QPushButton *button : buttons) {
        button->setFont(dialogFont()); // else the width is that of another font
        width = qMax(width, button->sizeHint().width());
    }
    for (QPushButton *button : buttons) {
        button->setMinimumWidth(width + ButtonMargin);
        layout->addWidget(button);
    }
    layout->addStretch();
    return layout;
}

} // namespace

QGroupBox *FormParts::groupBox(const QString &title, const QString &objectName)
{
    auto *box = new QGroupBox(title);
    box->setObjectName(objectName);
    box->setFont(dialogFont());
    return box;
}

void FormParts::keepReadable(QWidget *field)
{
    // Of a date field only what shows the text: for a frame with colours of its own the style would draw pictures anew
    // in each form, and keep something of all of them.
    QWidget *text = qobject_cast<QAbstractSpinBox *>(field) ? field->findChild<QLineEdit *>() : field;
    QPalette palette = text->palette();
    palette.setColor(QPalette::Disabled, QPalette::Text, palette.color(QPalette::Active, QPalette::Text));
    text->setPalette(palette);
}

void FormParts::showOnly(QLineEdit *field)
{
    field->setReadOnly(true);
    QPalette palette = field->palette();
    palette.setColor(QPalette::Base, palette.color(QPalette::Active, QPalette::Window));
    field->setPalette(palette);
}

QLabel *FormParts::label(const QString &text, QWidget *buddy)
{
    auto *label = new QLabel(text);
    label->setBuddy(buddy);
    return label;
}

QPushButton *FormParts::button(const QString &text, const QString &objectName)
{
    auto *button = new QPushButton(text);
    button->setObjectName(objectName);
    return button;
}

QPushButton *FormParts::disabledButton(const QString &text, const QString &objectName)
{
    QPushButton *made = button(text, objectName);
    made->setEnabled(false);
    return made;
}

void FormParts::explain(QWidget *button, const QString &text)
{
    button->setToolTip(text);
    button->setAccessibleDescription(text);
}

QLayout *FormParts::buttonRow(const QList<QPushButton *> &buttons)
{
    return lineUp(new QHBoxLayout, buttons);
}

QLayout *FormParts::buttonColumn(const QList<QPushButton *> &buttons)
{
    return lineUp(new QVBoxLayout, buttons);
}

QDialogButtonBox *FormParts::buttonBox(const QList<QPushButton *> &buttons)
{
    auto *box = new QDialogButtonBox;
    for (QPushButton *button : buttons) {
        button->setFont(dialogFont()); // else the width is that of another font
        button->setMinimumWidth(button->sizeHint().width() + BoxButtonMargin);
        box->addButton(button, QDialogButtonBox::ActionRole); // all the same role: they stay in this order
    }
    return box;
}

QLayout *FormParts::closeRow(QDialog *dialog)
{
    QPushButton *close = button(QCoreApplication::translate("FormParts", "Schliessen"), u"closeButton"_s);
    close->setFont(dialogFont());
    QObject::connect(close, &QPushButton::clicked, dialog, &QDialog::accept);
    auto *row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(buttonBox({ close }));
    return row;
}
