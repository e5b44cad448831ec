#include "forms/formparts.h"

#include "forms/dialogstyle.h"

#include <QBoxLayout>
#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

constexpr int ButtonMargin = 16; // pixels beside the text, beyond what the style gives

} // namespace

QGroupBox *FormParts::groupBox(const QString &title, const QString &objectName)
{
    auto *box = new QGroupBox(title);
    box->setObjectName(objectName);
    box->setFont(dialogFont());
    return box;
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

QLayout *FormParts::buttonRow(const QList<QPushButton *> &buttons)
{
    int width = 0;
    for (QPushButton *button : buttons) {
        button->setFont(dialogFont()); // else the width is that of another font
        width = qMax(width, button->sizeHint().width());
    }
    auto *row = new QHBoxLayout;
    for (QPushButton *button : buttons) {
        button->setMinimumWidth(width + ButtonMargin);
        row->addWidget(button);
    }
    row->addStretch();
    return row;
}

QDialogButtonBox *FormParts::buttonBox(const QList<QPushButton *> &buttons)
{
    auto *box = new QDialogButtonBox;
    for (QPushButton *button : buttons) {
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
