#pragma once

#include <QLabel>
#include <QList>
#include <QTableView>
#include <QTest>
#include <QWidget>

/// The field that the label with this text ("&" ignored) belongs to; null when there is none.
[[nodiscard]] inline QWidget *labelledField(const QWidget *form, const QString &label)
{
    const QList<QLabel *> labels = form->findChildren<QLabel *>();
    for (const QLabel *candidate : labels) {
        if (candidate->text().remove(QLatin1Char('&')) == label && candidate->buddy()) {
            return candidate->buddy();
        }
    }
    return nullptr;
}

/// Types behind the text of the labelled field as a user does; false when there is no such field.
inline bool typeInto(const QWidget *form, const QString &label, const QString &text)
{
    QWidget *field = labelledField(form, label);
    if (!field) {
        return false;
    }
    field->setFocus();
    QTest::keyClick(field, Qt::Key_End);
    QTest::keyClicks(field, text);
    return true;
}

/// Clicks the row of a list whose text in some visible column is `text`.
[[nodiscard]] inline bool clickRow(const QWidget *form, const QString &text)
{
    auto *table = form->findChild<QTableView *>();
    for (int row = 0; row < table->model()->rowCount(); ++row) {
        for (int column = 0; column < table->model()->columnCount(); ++column) {
            const QModelIndex index = table->model()->index(row, column);
            if (!table->isColumnHidden(column) && index.data().toString() == text) {
                table->scrollTo(index);
                QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, table->visualRect(index).center());
                return true;
            }
        }
    }
    return false;
}
