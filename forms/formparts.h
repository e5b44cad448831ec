#pragma once

#include <QList>
#include <QString>

class QDialog;
class QDialogButtonBox;
class QGroupBox;
class QLabel;
class QLayout;
class QLineEdit;
class QPushButton;
class QWidget;

/// The pieces that dialogs are put together from, in the dialogs' font. Every control has an object name, by which
/// tests and screen readers find it. The layout that takes a piece makes the dialog its owner.
namespace FormParts {

[[nodiscard]] QGroupBox *groupBox(const QString &title, const QString &objectName);
/// A disabled field keeps the colour of its text: it cannot be changed, but it is there to be read.
void keepReadable(QWidget *field);
/// A field that can be read and copied from, with the ground of the window, so that nobody tries to type.
void showOnly(QLineEdit *field);
[[nodiscard]] QLabel *label(const QString &text, QWidget *buddy);
[[nodiscard]] QPushButton *button(const QString &text, const QString &objectName);
[[nodiscard]] QPushButton *disabledButton(const QString &text, const QString &objectName);
/// Says when the button can be used, for the button alone only says that it cannot.
void explain(QWidget *button, const QString &text);
/// Buttons of equal width side by side at the left.
[[nodiscard]] QLayout *buttonRow(const QList<QPushButton *> &buttons);
/// Buttons of equal width one below the other at the top.
[[nodiscard]] QLayout *buttonColumn(const QList<QPushButton *> &buttons);
[[nodiscard]] QDialogButtonBox *buttonBox(const QList<QPushButton *> &buttons);

/// The button "Schliessen" alone at the right; it accepts the dialog.
[[nodiscard]] QLayout *closeRow(QDialog *dialog);

} // namespace FormParts
