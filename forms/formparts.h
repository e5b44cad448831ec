#pragma once

#include <QList>
#include <QString>

class QDialog;
class QDialogButtonBox;
class QGroupBox;
class QLabel;
class QLayout;
class QPushButton;
class QWidget;

/// The pieces that dialogs are put together from, in the dialogs' font. Every control has an object name, by which
/// tests and screen readers find it. The layout that takes a piece makes the dialog its owner.
namespace FormParts {

[[nodiscard]] QGroupBox *groupBox(const QString &title, const QString &objectName);
[[nodiscard]] QLabel *label(const QString &text, QWidget *buddy);
[[nodiscard]] QPushButton *button(const QString &text, const QString &objectName);
[[nodiscard]] QPushButton *disabledButton(const QString &text, const QString &objectName);
/// Buttons of equal width side by side at the left.
[[nodiscard]] QLayout *buttonRow(const QList<QPushButton *> &buttons);
[[nodiscard]] QDialogButtonBox *buttonBox(const QList<QPushButton *> &buttons);

/// The button "Schliessen" alone at the right; it accepts the dialog.
[[nodiscard]] QLayout *closeRow(QDialog *dialog);

} // namespace FormParts
