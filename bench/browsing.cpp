#include "bench/browsing.h"

#include "browser/buttonitem.h"
#include "browser/canvasview.h"
#include "browser/picturescene.h"
#include "browser/viewholder.h"
#include "search/entrysearch.h"

Browsing::Browsing()
    : m_window(std::make_unique<ApplWindow>())
    , m_watch(new PaintWatch(view()))
{
    m_window->show();
    m_watch->waitForPaint();
}

Browsing::~Browsing() = default;

ViewHolder &Browsing::holder() const
{
    return m_window->viewHolder();
}

CanvasView *Browsing::view() const
{
    return holder().view();
}

PictureScene &Browsing::results() const
{
    return holder().results();
}

void Browsing::search(const SearchParameters &parameters)
{
    results().startSearch(parameters, 1);
    m_watch->waitForPaint();
}

void Browsing::press(ButtonItem *button)
{
    holder().current().activate(button);
    m_watch->waitForPaint();
}

SearchParameters searchOf(int modelId, const QString &sort, bool once, bool picturesOnly)
{
    SearchParameters parameters;
    parameters.modelId = modelId;
    parameters.once = once;
    parameters.picturesOnly = picturesOnly;
    parameters.orderClause = orderClause(sort, once);
    return parameters;
}
