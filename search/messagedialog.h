#pragma once

#include <QDialog>

/// A standard message box behind a dialog object that is itself never shown.
/// The constructor returns when the user has answered; nothing else happens here.
class MessageDialog final : public QDialog
{
    Q_OBJECT

public:
    /// A warning with "Ja" and "Nein" (Yes and No) and no default button; `argument` replaces %1 in `text`.
    MessageDialog(const QString &title, const QString &text, const QString &argument);

    /// An information with the single button Ok.
    MessageDialog(const QString &title, const QString &text);

    /// The pressed button, a QMessageBox::StandardButton value.
    [[nodiscard]] int answer() const { return m_answer; }

private:
    int m_answer = 0;
};
