#include "forms/picturetable.h"

#include "forms/shownvalue.h"
#include "store/rowvalue.h"

#include <QHeaderView>
#include <QSqlQueryModel>

using namespace Qt::StringLiterals;

namespace {

enum Column { Id, CopyPath, OriginalPath, Height, Width, EntryId };

constexpr int CopyPathWidth = 300; // pixels: a whole path of a copy
constexpr int RowPadding = 6; // pixels

/// Adds the whole path as a tool tip, for the columns are mostly too narrow for it.
class PictureModel final : public QSqlQueryModel
{
public:
    using QSqlQueryModel::QSqlQueryModel;

    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override
    {
        return shownValue(QSqlQueryModel::data(index, role == Qt::ToolTipRole ? Qt::DisplayRole : role), role);
    }
};

} // namespace

PictureTable::PictureTable(QWidget *parent)
    : QTableView(parent)
    , m_model(new PictureModel(this))
{
    setModel(m_model);
    showEntry(0); // no entry has this id: gives the empty table its columns
    prepareView();
    connect(this, &QTableView::clicked, this, &PictureTable::rowChosen);
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        if (selectionModel()->hasSelection()) {
            Q_EMIT rowChosen();
        }
    });
}

void PictureTable::showEntry(int entryId)
{
    m_model->setQuery(u"SELECT * FROM loc_picture WHERE locpictureid = %1"_s.arg(entryId));
    while (m_model->canFetchMore()) {
        m_model->fetchMore();
    }
    m_model->setHeaderData(CopyPath, Qt::Horizontal, tr("Aktueller Pfad"));
    m_model->setHeaderData(OriginalPath, Qt::Horizontal, tr("Ursprünglicher Pfad"));
    for (const Column column : { Id, Height, Width, EntryId }) {
        setColumnHidden(column, true);
    }
}

std::optional<PictureTable::Choice> PictureTable::choice() const
{
    // Not the current index: a table that merely got the focus has one, though nothing is marked.
    const QModelIndexList rows = selectionModel()->selectedRows(Id);
    if (rows.isEmpty()) {
        return {};
    }
    const auto value
        = [&rows](Column column) { return rows.first().siblingAtColumn(column).data(Qt::EditRole); }; // uncut
    Choice choice { rowId(value(Id)), {} };
    choice.picture.copyPath = value(CopyPath).toString();
    choice.picture.originalPath = value(OriginalPath).toString();
    return choice;
}

void PictureTable::prepareView()
{
    setEditTriggers(NoEditTriggers);
    setSelectionMode(SingleSelection);
    setSelectionBehavior(SelectRows);
    setTabKeyNavigation(false); // Tab leads on through the dialog
    setAlternatingRowColors(true);
    setWordWrap(false);
    setTextElideMode(Qt::ElideMiddle); // a path is told by its end
    setColumnWidth(CopyPath, CopyPathWidth);
    horizontalHeader()->setStretchLastSection(true);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + RowPadding);
    verticalHeader()->hide();
}
