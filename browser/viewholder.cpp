#include "browser/viewholder.h"

#include "browser/canvasview.h"
#include "browser/picturescene.h"
#include "browser/searchparameters.h"
#include "search/messagebox.h"
#include "search/optiondialog.h"
#include "store/catalogquery.h"
#include "store/colorsetting.h"

#include <QWidget>

ViewHolder::ViewHolder(QWidget *window)
    : QObject(window)
    , m_view(new CanvasView(window))
{
    m_canvases.push_back(std::make_unique<PictureScene>());
    m_view->showCanvas(&results());
    connect(&results(), &PictureScene::numberListingRequested, this, &ViewHolder::showNumberListing);
}

ViewHolder::~ViewHolder() = default;

void ViewHolder::searchGroup(int groupId)
{
    QList<QSqlRecord> classes;
    if (groupId != 0) { // an id that cannot be read is 0, which would offer the classes of all groups
        CatalogQuery::instance().modelsOfGroup(classes, groupId);
    }
    if (classes.isEmpty()) {
        MessageBox::warning(
            m_view->window(), tr("Keine Daten"), tr("Es wurden noch keine Baureihen unter dieser Gruppe erfasst!"));
        return;
    }
    OptionDialog dialog(classes, groupId);
    if (dialog.exec() != 1) {
        return;
    }
    results().clearCanvas();
    show(0);
    m_resultsOutdated = false;
    results().startSearch(chosenParameters(dialog, classes), dialog.startEntry());
    m_view->setFocus();
}

void ViewHolder::paintBackground()
{
    current().paintBackground();
    m_resultsOutdated = showsListing();
}

void ViewHolder::showNumberListing(int entryId)
{
    m_resultsCentre = m_view->mapToScene(m_view->viewport()->rect()).boundingRect().center(); // to the half pixel
    const bool isKeyboardUsed = results().focusItem() != nullptr;
    if (m_canvases.size() == 1) {
        m_canvases.push_back(std::make_unique<PictureScene>());
        PictureScene *listing = m_canvases.back().get();
        connect(listing, &PictureScene::backRequested, this, &ViewHolder::backToResults);
        connect(listing, &PictureScene::entryChanged, this, [this] { m_resultsOutdated = true; });
    }
    const CatalogQuery &catalog = CatalogQuery::instance();
    const int modelId = catalog.modelIdOfEntry(entryId);
    const QString number = catalog.entryNumber(entryId);
    show(1);
    current().showNumber(modelId, number);
    if (isKeyboardUsed) {
        current().focusFirst();
    }
}

void ViewHolder::backToResults()
{
    show(0);
    if (m_resultsOutdated) {
        m_resultsOutdated = false;
        results().paintBackground();
        results().redrawAfterChangeElsewhere();
    }
    m_view->centerOn(m_resultsCentre);
}

void ViewHolder::show(std::size_t canvas)
{
    m_current = canvas;
    m_view->showCanvas(m_canvases.at(canvas).get());
}
