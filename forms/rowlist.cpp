#include "forms/rowlist.h"

#include "forms/shownvalue.h"
#include "store/rowvalue.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QSignalBlocker>
#include <QSqlTableModel>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int RowPadding = 8; // pixels

/// Adds the whole text as a tool tip, for a path rarely fits its column.
class RowModel final : public QSqlTableModel
{
public:
    using QSqlTableModel::QSqlTableModel;

    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override
    {
        return shownValue(QSqlTableModel::data(index, role == Qt::ToolTipRole ? Qt::DisplayRole : role), role);
    }
};

} // namespace

RowList::RowList(const QString &table, const QList<Column> &columns, const QString &filter)
    : m_table(table)
    , m_columns(columns)
    , m_filter(filter)
    , m_model(new RowModel(this))
{
    setModel(m_model);
    prepareView();
    refresh();

    connect(this, &QTableView::clicked, this, &RowList::rowChosen);
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        if (selectionModel()->hasSelection()) {
            Q_EMIT rowChosen();
        }
    });
}

void RowList::refresh()
{
    const QSignalBlocker blocker(this);
    const int chosen = chosenId();
    if (m_model->columnCount() == 0) {
        prepareModel(); // at first, and after the table could not be read: the model has forgotten its columns then
    }
    m_model->select();
    while (m_model->canFetchMore()) {
        m_model->fetchMore();
    }
    const int row = chosen == 0 ? -1 : rowOf(chosen);
    if (row >= 0) {
        selectRow(row);
    }
}

QSqlRecord RowList::chosenRow() const
{
    // Not the current index: a list that merely got the focus has one, though nothing is marked.
    const QModelIndexList rows = selectionModel()->selectedRows();
    return rows.isEmpty() ? QSqlRecord() : m_model->record(rows.first().row());
}

int RowList::chosenId() const
{
    return rowId(chosenRow(), u"id"_s);
}

void RowList::showRow(int id)
{
    const int row = rowOf(id);
    if (row >= 0) {
        scrollTo(m_model->index(row, columnAt(0)));
    }
}

/// The space bar on the only row, which is chosen already, chooses it as well.
void RowList::keyPressEvent(QKeyEvent *event)
{
    QTableView::keyPressEvent(event);
    if (event->key() == Qt::Key_Space && selectionModel()->hasSelection()) {
        Q_EMIT rowChosen();
    }
}

void RowList::prepareModel()
{
    m_model->setTable(m_table);
    m_model->setFilter(m_filter);
    m_model->setSort(m_model->fieldIndex(m_columns.first().name), Qt::AscendingOrder);
    for (const Column &column : std::as_const(m_columns)) {
        m_model->setHeaderData(m_model->fieldIndex(column.name), Qt::Horizontal, column.header);
    }
    m_idColumn = m_model->fieldIndex(u"id"_s);
    hideOtherColumns();
}

void RowList::prepareView()
{
    setEditTriggers(NoEditTriggers); // else a key press would overwrite a name
    setSelectionMode(SingleSelection);
    setSelectionBehavior(SelectRows);
    setTabKeyNavigation(false); // Tab leads on through the dialog
    setAlternatingRowColors(true);
    setWordWrap(false);
    setTextElideMode(Qt::ElideMiddle); // a path is told by its end
    horizontalHeader()->setStretchLastSection(true);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + RowPadding);
    verticalHeader()->hide();
}

void RowList::hideOtherColumns()
{
    for (int index = 0; index < m_model->columnCount(); ++index) {
        const QString name = m_model->record().fieldName(index);
        const bool shown = std::any_of(
            m_columns.begin(), m_columns.end(), [&name](const Column &column) { return column.name == name; });
        setColumnHidden(index, !shown);
    }
}

int RowList::rowOf(int id) const
{
    for (int row = 0; row < m_model->rowCount(); ++row) {
        if (rowId(m_model->index(row, m_idColumn).data()) == id) {
            return row;
        }
    }
    return -1;
}
