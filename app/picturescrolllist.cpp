#include "app/picturescrolllist.h"

#include "app/pictureitem.h"
#include "store/catalogquery.h"
#include "store/rowvalue.h"

#include <QGridLayout>
#include <QLabel>

using namespace Qt::StringLiterals;

namespace {

constexpr int HintWidth = 128; // pixels, inside the column's own width
constexpr int HintMargin = 6;

} // namespace

PictureScrollList::PictureScrollList(ViewHolder &holder, QWidget *parent)
    : QWidget(parent)
    , m_holder(holder)
{
    setObjectName(u"groupColumn"_s);
    rebuild();
}

void PictureScrollList::rebuild()
{
    QList<QSqlRecord> groups;
    const bool isRead = CatalogQuery::instance().groups(groups, 0);
    if (!isRead && findChild<PictureItem *>()) {
        return; // the buttons that are there may well be right, a half of them would look like a loss
    }
    delete layout();
    qDeleteAll(findChildren<QWidget *>(Qt::FindDirectChildrenOnly));
    auto *grid = new QGridLayout(this);
    grid->setContentsMargins(2, 6, 2, 6);
    grid->setSpacing(3);
    grid->setSizeConstraint(QLayout::SetFixedSize);
    addButtons(*grid, groups);
    if (!isRead) {
        showHint(*grid, tr("Die Gruppen sind gerade nicht lesbar."),
            tr("Ein anderes Programm hat den Katalog geöffnet, oder die Datei ist beschädigt. Bitte neu starten."));
    } else if (groups.isEmpty()) { // an empty column would leave the user alone with an empty window
        showHint(*grid,
            tr("Noch keine Gruppen.\n\nLegen Sie mit dem Knopf „Baureihe-Gruppen bearbeiten“ oben die erste an."),
            tr("Zuerst eine Gruppe anlegen, darin eine Baureihe, dann die Einträge mit ihren Bildern."));
    }
    if (m_previous) {
        setTabOrderAfter(m_previous); // new widgets come last of all
    }
}

void PictureScrollList::addButtons(QGridLayout &grid, const QList<QSqlRecord> &groups)
{
    for (qsizetype i = 0; i < groups.size(); ++i) {
        const QSqlRecord &group = groups.at(i);
        auto *button = new PictureItem(
            rowId(group, u"id"_s), rowText(group, u"name"_s), rowText(group, u"pictPath"_s), m_holder, this);
        grid.addWidget(button, int(2 * i), 0, 1, 3);
        button->show();
    }
}

void PictureScrollList::setTabOrderAfter(QWidget *previous)
{
    m_previous = previous;
    const QList<PictureItem *> buttons = findChildren<PictureItem *>(Qt::FindDirectChildrenOnly);
    for (PictureItem *button : buttons) {
        setTabOrder(previous, button);
        previous = button;
    }
}

/// Below the buttons that there may be.
void PictureScrollList::showHint(QGridLayout &grid, const QString &text, const QString &toolTip)
{
    auto *hint = new QLabel(text, this);
    hint->setObjectName(u"hint"_s);
    hint->setTextFormat(Qt::PlainText);
    hint->setWordWrap(true);
    hint->setFixedWidth(HintWidth);
    hint->setMargin(HintMargin);
    hint->setForegroundRole(QPalette::WindowText); // the one that goes with the column's ground is hard to read
    hint->setToolTip(toolTip);
    grid.addWidget(hint, grid.rowCount(), 0, 1, 3);
    hint->show();
}
