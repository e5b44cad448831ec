#include "bench/pageoperations.h"

#include "bench/benchcatalogue.h"
#include "bench/browsing.h"
#include "bench/pagefloor.h"
#include "browser/buttonitem.h"
#include "browser/canvasview.h"
#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "browser/viewholder.h"

#include <QScrollBar>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int WheelStep = 60; // pixels that one notch of a wheel scrolls

struct PageCase
{
    QString name;
    SearchParameters parameters;
};

QList<PageCase> pageCases()
{
    const int model = BenchCatalogue::LongClass;
    return {
        { u"page by date"_s, searchOf(model, u"Datum"_s, false, false) },
        { u"page by number"_s, searchOf(model, u"Nummer"_s, false, false) },
        { u"page by place"_s, searchOf(model, u"Ort"_s, false, false) },
        { u"page once"_s, searchOf(model, u"Nummer"_s, true, false) },
        { u"page pictures only"_s, searchOf(model, u"Datum"_s, false, true) },
        { u"page once, pictures only"_s, searchOf(model, u"Nummer"_s, true, true) },
    };
}

ButtonItem *findButton(const QList<QGraphicsItem *> &items, ButtonKind kind)
{
    for (QGraphicsItem *item : items) {
        auto *button = qgraphicsitem_cast<ButtonItem *>(item);
        if (button && button->kind() == kind) {
            return button;
        }
    }
    qFatal("A button that is to be pressed is not there.");
}

QList<Operation> firstPages(Browsing &browsing)
{
    QList<Operation> operations;
    const QList<PageCase> cases = pageCases();
    for (const PageCase &page : cases) {
        browsing.search(page.parameters);
        operations.append(
            { page.name + u" floor"_s, [floor = PageFloor(browsing, page.parameters)] { return floor.take(); } });
        operations.append(
            { page.name, [&browsing, page] { return elapsed([&] { browsing.search(page.parameters); }); } });
    }
    return operations;
}

QList<Operation> furtherPages(Browsing &browsing)
{
    const SearchParameters byDate = pageCases().first().parameters;
    const auto afterwards = [&browsing, byDate](const std::function<void()> &work) {
        browsing.search(byDate);
        return elapsed([&] {
            work();
            browsing.watch().waitForPaint();
        });
    };
    const auto afterListing = [&browsing, byDate](bool isOutdated) {
        browsing.search(byDate);
        browsing.holder().showNumberListing(browsing.results().blocks().first()->card().id);
        if (isOutdated) {
            browsing.holder().paintBackground(); // as an edit there does
        }
        browsing.watch().waitForPaint();
        return elapsed([&] {
            browsing.holder().backToResults();
            browsing.watch().waitForPaint();
        });
    };
    return {
        { u"more"_s, [=, &browsing] { return afterwards([&browsing] { browsing.results().loadPage(true); }); } },
        { u"redraw"_s, [=, &browsing] { return afterwards([&browsing] { browsing.results().redraw(); }); } },
        { u"back"_s, [=] { return afterListing(false); } },
        { u"back after an edit"_s, [=] { return afterListing(true); } },
    };
}

double worstStep(Browsing &browsing, int step)
{
    browsing.search(searchOf(BenchCatalogue::LongClass, u"Datum"_s, false, false));
    QScrollBar *bar = browsing.view()->verticalScrollBar();
    double worst = 0;
    while (bar->value() < bar->maximum()) {
        const double taken = elapsed([&] {
            bar->setValue(bar->value() + step);
            browsing.watch().waitForPaint();
        });
        worst = std::max(worst, taken);
    }
    return worst;
}

} // namespace

Timings measurePages(int repetitions)
{
    Browsing browsing;
    return measure(firstPages(browsing) + furtherPages(browsing), repetitions);
}

Timings measureCanvas(int repetitions)
{
    Browsing browsing;
    browsing.search(searchOf(BenchCatalogue::LongClass, u"Datum"_s, false, true));
    const QList<EntryBlock *> blocks = browsing.results().blocks();
    const auto full = std::find_if(
        blocks.begin(), blocks.end(), [](EntryBlock *block) { return block->card().pictures.size() >= 4; });
    EntryBlock *block = full == blocks.end() ? nullptr : *full;
    if (!block) {
        qFatal("No entry of the page has four pictures.");
    }
    browsing.view()->centerOn(block);
    browsing.view()->viewport()->update(); // it may have stood there already
    browsing.watch().waitForPaint();
    const QSize shown(322, 215);
    const QList<PicturePaths> pictures = block->card().pictures;
    const QList<Operation> turning {
        { u"arrow"_s,
            [&browsing, block] {
                ButtonItem *right = findButton(block->childItems(), ButtonKind::Right);
                const double taken = elapsed([&] { browsing.press(right); });
                browsing.press(findButton(block->childItems(), ButtonKind::Left));
                return taken;
            } },
        { u"arrow floor"_s,
            [pictures, shown] {
                return elapsed([&] {
                    decodePlainly(pictures.at(2).copy, shown);
                    decodePlainly(pictures.at(3).copy, shown);
                });
            } },
    };
    Timings timings = measure(turning, 3 * repetitions);
    const QList<Operation> scrolling {
        { u"wheel step"_s, [&browsing] { return worstStep(browsing, WheelStep); } },
        { u"page step"_s,
            [&browsing] { return worstStep(browsing, browsing.view()->verticalScrollBar()->pageStep()); } },
    };
    timings.insert(measure(scrolling, std::max(3, repetitions / 3)));
    return timings;
}
