#include "app/picturescrolllist.h"

#include "app/pictureitem.h"
#include "store/catalogquery.h"
#include "store/rowvalue.h"

#include <QGridLayout>
#include <QLabel>

using namespace Qt::StringLiterals;

PictureScrollList::PictureScrollList(ViewHolder &holder, QWidget *parent)
    : QWidget(parent)
    , m_holder(holder)
{
    setObjectName(u"groupColumn"_s);
    rebuild();
}

void PictureScrollList::rebuild()
{
    delete layout();
    qDeleteAll(findChildren<QWidget *>(Qt::FindDirectChildrenOnly));

    QList<QSqlRecord> groups;
    CatalogQuery::instance().groups(groups, 0);
    auto *grid = new QGridLayout(this);
    grid->setContentsMargins(2, 6, 2, 6);
    grid->setSpacing(3);
    grid->setSizeConstraint(QLayout::SetFixedSize);
    for (qsizetype i = 0; i < groups.size(); ++i) {
        const QSqlRecord &group = groups.at(i);
        auto *button = new PictureItem(
            rowId(group, u"id"_s), rowText(group, u"name"_s), rowText(group, u"pictPath"_s), m_holder, this);
        grid->addWidget(button, int(2 * i), 0, 1, 3);
        button->show();
    }
    if (groups.isEmpty()) {
        setToolTip(tr("Noch keine Gruppen: Legen Sie mit „Baureihe-Gruppen bearbeiten“ die erste an."));
    } else {
        setToolTip({});
    }
}
