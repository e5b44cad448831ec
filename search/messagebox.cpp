#include "search/messagebox.h"

#include <QCoreApplication>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype LongestText = 300; // characters

QString shownText(const QString &text)
{
    if (text.size() <= LongestText) {
        return text;
    }
    const bool splitsPair = text.at(LongestText - 1).isHighSurrogate();
    return text.left(splitsPair ? LongestText - 1 : LongestText) + u'…';
}

void prepare(QMessageBox &box, const QString &title, const QString &text)
{
    box.setTextFormat(Qt::PlainText);
    box.setWindowTitle(title);
    box.setText(shownText(text));
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
    box.exec();
    return box.clickedButton() == yes;
}

QMessageBox::StandardButton MessageBox::ask(QMessageBox::Icon icon, QWidget *parent, const QString &title,
    const QString &text, QMessageBox::StandardButtons buttons)
{
    QMessageBox box(parent);
    prepare(box, title, text);
    box.setIcon(icon);
    box.setStandardButtons(buttons);
    return QMessageBox::StandardButton(box.exec());
}

void MessageBox::about(QWidget *parent, const QString &title, const QString &richText)
{
    QMessageBox::about(parent, title, richText);
}
