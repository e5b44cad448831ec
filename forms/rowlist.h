#pragma once

#include <QSqlRecord>
#include <QTableView>

class QSqlTableModel;

/// Lists the rows of one database table for choosing one of them, sorted by the first column shown. It writes nothing
/// and is read to its end at once, because a half-read list would keep the file locked for other writers.
class RowList final : public QTableView
{
    Q_OBJECT

public:
    struct Column
    {
        QString name;
        QString header;
    };

    /// Shows `columns` of the rows that meet `filter` (an SQL condition, empty for all rows) and hides other columns.
    RowList(const QString &table, const QList<Column> &columns, const QString &filter = {});

    /// Reads the table anew. A row that was chosen stays so while it exists, without a signal.
    void refresh();

    /// The chosen row; an empty record when there is none.
    [[nodiscard]] QSqlRecord chosenRow() const;

    /// Its id; 0 when no row is chosen.
    [[nodiscard]] int chosenId() const;

    /// Scrolls to the row with this id, without choosing it.
    void showRow(int id);

Q_SIGNALS:
    /// A row was clicked, or chosen with the keyboard.
    void rowChosen();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void prepareModel();
    void prepareView();
    void hideOtherColumns();
    [[nodiscard]] int rowOf(int id) const; // -1 when it is not listed

    QString m_table;
    QList<Column> m_columns; // shown
    QString m_filter;
    QSqlTableModel *m_model;
    int m_idColumn = -1;
};
