#pragma once

#include <QMessageBox>

class QString;
class QWidget;

/// Shows every message box of the program, so that texts from the catalogue are always plain text and never markup.
/// Texts that no screen could hold are cut; only the about box is rich text.
namespace MessageBox {

void warning(QWidget *parent, const QString &title, const QString &text);
void information(QWidget *parent, const QString &title, const QString &text);

/// A warning with the buttons "Ja" and "Nein"; true only for "Ja".
[[nodiscard]] bool confirm(QWidget *parent, const QString &title, const QString &text);

/// A box with standard buttons and no default button; returns the pressed one.
QMessageBox::StandardButton ask(QMessageBox::Icon icon, QWidget *parent, const QString &title, const QString &text,
    QMessageBox::StandardButtons buttons);

void about(QWidget *parent, const QString &title, const QString &richText);

} // namespace MessageBox
