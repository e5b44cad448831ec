#include "bench/pageoperations.h"

#include "bench/benchcatalogue.h"
#include "bench/browsing.h"
#include "bench/pagefloor.h"
#include "browser/canvasview.h"
#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "browser/viewholder.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int Notch = 120; // of a wheel, in the eighths of a degree that its events count

struct PageCase
{
    QString name;
    SearchWish wish;
    int page = 1;
};

QList<PageCase> pageCases()
{
    const int model = BenchCatalogue::LongClass;
    const SearchWish byDate { model, u"Datum"_s, false, false };
    const SearchWish once { model, u"Datum"_s, true, false };
    const SearchWish onceWithPictures { model, u"Datum"_s, true, true };
    return {
        { u"page by date"_s, byDate },
        { u"page by number"_s, { model, u"Nummer"_s, false, false } },
        { u"page by place"_s, { model, u"Ort"_s, false, false } },
        { u"more"_s, byDate, 2 },
        { u"page pictures only"_s, { model, u"Datum"_s, false, true } },
        { u"page once"_s, once },
        { u"page once by number"_s, { model, u"Nummer"_s, true, false } },
        { u"page once, third"_s, once, 3 },
        { u"page once, pictures only"_s, onceWithPictures },
        { u"page once, pictures only by number"_s, { model, u"Nummer"_s, true, true } },
        { u"page once, pictures only, second"_s, onceWithPictures, 2 },
        { u"page once, pictures only, third"_s, onceWithPictures, 3 },
    };
}

/// Milliseconds of the last step to the page: the search, or the more button.
double showPage(Browsing &browsing, const PageCase &page)
{
    if (page.page == 1) {
        return browsing.searchInDialog(page.wish);
    }
    browsing.search(page.wish);
    for (int passed = 2; passed < page.page; ++passed) {
        browsing.pressMore();
    }
    return elapsed([&browsing] { browsing.pressMore(); });
}

QList<Operation> pages(Browsing &browsing)
{
    QList<Operation> operations;
    const QList<PageCase> cases = pageCases();
    for (const PageCase &page : cases) {
        (void)showPage(browsing, page);
        operations.append({ page.name + u" floor"_s,
            [floor = PageFloor(browsing, page.wish.parameters())] { return floor.take(); } });
        operations.append({ page.name, [&browsing, page] { return showPage(browsing, page); } });
    }
    return operations;
}

/// `isOutdated` means that the page must be drawn anew because something was changed meanwhile.
double comeBack(Browsing &browsing, bool isOutdated)
{
    browsing.search(pageCases().first().wish);
    browsing.holder().showNumberListing(browsing.results().blocks().first()->card().id);
    if (isOutdated) {
        browsing.holder().paintBackground(); // as an edit there does
    }
    browsing.watch().waitForPaint();
    return elapsed([&browsing] {
        ButtonItem *back = findButton(browsing.holder().current().items(), ButtonKind::Back);
        browsing.press(back);
    });
}

QList<Operation> drawnAgain(Browsing &browsing)
{
    const SearchWish byDate = pageCases().first().wish;
    browsing.search(byDate);
    const PageFloor floor(browsing, byDate.parameters());
    return {
        { u"redraw"_s,
            [&browsing, byDate] {
                browsing.search(byDate);
                return browsing.editFirstEntry();
            } },
        { u"back"_s, [&browsing] { return comeBack(browsing, false); } },
        { u"back floor"_s, [floor] { return floor.takeDecoding(); } },
        { u"back after an edit"_s, [&browsing] { return comeBack(browsing, true); } },
    };
}

void turnWheel(const Browsing &browsing)
{
    QWidget *viewport = browsing.view()->viewport();
    const QPointF middle = viewport->rect().center();
    QWheelEvent event(middle, viewport->mapToGlobal(middle), {}, { 0, -Notch }, Qt::NoButton, Qt::NoModifier,
        Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(viewport, &event);
}

void pressPageDown(const Browsing &browsing)
{
    QKeyEvent event(QEvent::KeyPress, Qt::Key_PageDown, Qt::NoModifier);
    QCoreApplication::sendEvent(browsing.view(), &event);
}

enum class Pace { AtOnce, AsAPerson };

/// The longest of all steps over a page whose entries have six pictures each.
double worstStep(Browsing &browsing, void (*step)(const Browsing &), Pace pace)
{
    browsing.search({ BenchCatalogue::FullClass, u"Datum"_s, false, false });
    const QScrollBar *bar = browsing.view()->verticalScrollBar();
    double worst = 0;
    while (bar->value() < bar->maximum()) {
        if (pace == Pace::AsAPerson) {
            Browsing::look();
        }
        const double taken = elapsed([&] {
            step(browsing);
            browsing.watch().waitForPaint();
        });
        worst = std::max(worst, taken);
    }
    return worst;
}

/// To the second pair of the first entry's pictures, on a page that has just been painted.
double turnPictures(Browsing &browsing, const SearchWish &wish, Pace pace)
{
    browsing.search(wish);
    if (pace == Pace::AsAPerson) {
        Browsing::look();
    }
    ButtonItem *right = findButton(browsing.results().blocks().first()->childItems(), ButtonKind::Right);
    return elapsed([&] { browsing.press(right); });
}

QList<Operation> turning(Browsing &browsing)
{
    const SearchWish wish { BenchCatalogue::FullClass, u"Datum"_s, false, false };
    browsing.search(wish);
    const EntryBlock *block = browsing.results().blocks().first();
    browsing.press(findButton(block->childItems(), ButtonKind::Right));
    const QList<ShownPicture> pair = shownPictures(browsing, block->childItems());
    return {
        { u"arrow"_s, [&browsing, wish] { return turnPictures(browsing, wish, Pace::AsAPerson); } },
        { u"arrow at once"_s, [&browsing, wish] { return turnPictures(browsing, wish, Pace::AtOnce); } },
        { u"arrow floor"_s, [pair] { return elapsed([&pair] { decodePlainly(pair); }); } },
    };
}

} // namespace

Timings measurePages(int repetitions)
{
    Browsing browsing;
    return measure(pages(browsing) + drawnAgain(browsing), repetitions);
}

Timings measureCanvas(int repetitions)
{
    Browsing browsing;
    Timings timings = measure(turning(browsing), 3 * repetitions);
    const QList<Operation> scrolling {
        { u"wheel step"_s, [&browsing] { return worstStep(browsing, turnWheel, Pace::AtOnce); } },
        { u"page step"_s, [&browsing] { return worstStep(browsing, pressPageDown, Pace::AsAPerson); } },
        { u"page step at once"_s, [&browsing] { return worstStep(browsing, pressPageDown, Pace::AtOnce); } },
    };
    timings.insert(measure(scrolling, std::max(3, repetitions / 3)));
    return timings;
}
