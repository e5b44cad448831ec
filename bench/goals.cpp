#include "bench/goals.h"

using namespace Qt::StringLiterals;

namespace {

const QString Large = u"@100000"_s;
const QString Middle = u"@10000"_s;

Goal besideFloor(const QString &title, const QString &name, double limit)
{
    return { title, name + Large, name + u" floor"_s + Large, limit };
}

QList<Goal> startGoals()
{
    return {
        { u"start to first paint, 10,000 entries, 20 groups"_s, u"start"_s + Middle, u"window"_s + Middle, 2.5 },
        { u"start to first paint, 100,000 entries, 300,000 files"_s, u"start"_s + Large, u"store window"_s + Large,
            1.5 },
    };
}

QList<Goal> pageGoals()
{
    const QString byDateFloor = u"page by date floor"_s + Large;
    QList<Goal> goals {
        besideFloor(u"\"Suchen\" to the painted page, by date"_s, u"page by date"_s, 1.3),
        besideFloor(u"\"Suchen\" to the painted page, by number"_s, u"page by number"_s, 1.3),
        besideFloor(u"\"Suchen\" to the painted page, by place"_s, u"page by place"_s, 1.3),
        besideFloor(u"once mode"_s, u"page once"_s, 1.5),
        besideFloor(u"pictures only"_s, u"page pictures only"_s, 1.5),
        besideFloor(u"once mode, pictures only"_s, u"page once, pictures only"_s, 1.5),
        { u"more button"_s, u"more"_s + Large, byDateFloor, 1.3 },
        { u"back from a number listing"_s, u"back"_s + Large, byDateFloor, 1.3 },
        { u"back from a number listing after an edit there"_s, u"back after an edit"_s + Large, byDateFloor, 1.3 },
        { u"redraw after an edit"_s, u"redraw"_s + Large, byDateFloor, 1.3 },
        besideFloor(u"arrow to the next pair"_s, u"arrow"_s, 1.5),
        { u"worst step of the wheel over a page"_s, u"wheel step"_s + Large, {}, 16 },
        { u"worst Page Down over a page"_s, u"page step"_s + Large, {}, 16 },
    };
    return goals;
}

QList<Goal> captureGoals()
{
    const QString first = u"24 megapixels.jpg"_s;
    QList<Goal> goals {
        { u"24 megapixels chosen, shown, saved"_s, first, first + u" floor"_s, 1.25 },
        { u"the same beside vipsthumbnail"_s, first, first + u" vips"_s, 0.8 },
    };
    for (const QString &name : { u"20 megapixels.jpg"_s, u"24 megapixels, progressive.jpg"_s, u"24 megapixels.png"_s,
             u"50 megapixels.jpg"_s, u"100 megapixels.jpg"_s }) {
        goals.append({ name, name, name + u" floor"_s, 1.3 });
    }
    for (const QString &name : { first, u"20 megapixels.jpg"_s, u"50 megapixels.jpg"_s,
             u"24 megapixels, progressive.jpg"_s, u"24 megapixels.png"_s }) {
        goals.append({ u"copy's quality, "_s + name, u"quality of "_s + name, {}, 45, Goal::AtLeast, u"dB"_s });
    }
    return goals;
}

QList<Goal> otherGoals()
{
    return {
        besideFloor(u"picture store's choice, 300,000 files"_s, u"choice"_s, 2.5),
        besideFloor(u"delete an entry of six pictures"_s, u"deletion"_s, 1.3),
        { u"resident memory after the start, 10,000 entries"_s, u"start memory"_s + Middle, u"window memory"_s + Middle,
            1.4, Goal::AtMost, u"MB"_s },
        { u"memory gained by a page of 40 full entries, scrolled through"_s, u"memory of a page"_s + Middle,
            u"memory of a page floor"_s + Middle, 0.3, Goal::AtMost, u"MB"_s },
        { u"memory after 200 pages / after the first"_s, u"memory over 200 pages"_s + Large, {}, 1.15, Goal::AtMost,
            u""_s },
        { u"first page, 100,000 beside 10,000 entries"_s, u"page by date"_s + Large, u"page by date"_s + Middle, 3.5 },
    };
}

} // namespace

QList<Goal> allGoals()
{
    return startGoals() + pageGoals() + captureGoals() + otherGoals();
}

std::optional<Outcome> outcomeOf(const Goal &goal, const Timings &timings)
{
    if (!timings.contains(goal.name) || (!goal.floor.isEmpty() && !timings.contains(goal.floor))) {
        return {};
    }
    Outcome outcome;
    outcome.value = timings[goal.name].best;
    outcome.floor = goal.floor.isEmpty() ? 0 : timings[goal.floor].best;
    outcome.compared = goal.floor.isEmpty() ? outcome.value : outcome.value / outcome.floor;
    outcome.isMet = goal.sense == Goal::AtMost ? outcome.compared <= goal.limit : outcome.compared >= goal.limit;
    return outcome;
}
