#include "search/messagedialog.h"

#include "search/messagebox.h"

MessageDialog::MessageDialog(const QString &title, const QString &text, const QString &argument)
    : m_answer(
        MessageBox::ask(QMessageBox::Warning, this, title, text.arg(argument), QMessageBox::Yes | QMessageBox::No))
{ }

MessageDialog::MessageDialog(const QString &title, const QString &text)
    : m_answer(MessageBox::ask(QMessageBox::Information, this, title, text, QMessageBox::Ok))
{ }
