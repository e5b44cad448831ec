#include "bench/goals.h"

#include "bench/sources.h"

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
    const QString memory = u"resident memory after the start, 10,000 entries"_s;
    QList<Goal> goals {
        { u"start to first paint, 10,000 entries, 20 groups"_s, u"start"_s + Middle, u"window"_s + Middle, 2.5 },
        { u"start to first paint, 100,000 entries, 300,000 files"_s, u"start"_s + Large, u"store window"_s + Large,
            1.5 },
        { memory, u"start memory"_s + Middle, u"window memory"_s + Middle, 1.4, Goal::AtMost, u"MB"_s },
    };
    const QString where = u", on an X server"_s;
    const QString screen = u"screen "_s;
    goals.append({ goals.at(0).title + where, screen + goals.at(0).name, screen + goals.at(0).floor });
    goals.append({ goals.at(1).title + where, screen + goals.at(1).name, screen + goals.at(1).floor });
    goals.append({ memory + where, screen + goals.at(2).name, screen + goals.at(2).floor, 0, Goal::AtMost, u"MB"_s });
    return goals;
}

QList<Goal> pageGoals()
{
    const QString search = u"\"Suchen\" to the painted page, "_s;
    const QString once = u"once mode, "_s;
    const QString onceWithPictures = u"once mode, pictures only, "_s;
    return {
        besideFloor(search + u"by date"_s, u"page by date"_s, 1.3),
        besideFloor(search + u"by number"_s, u"page by number"_s, 1.3),
        besideFloor(search + u"by place"_s, u"page by place"_s, 1.3),
        besideFloor(u"pictures only, by date"_s, u"page pictures only"_s, 1.5),
        besideFloor(once + u"by date"_s, u"page once"_s, 1.5),
        besideFloor(once + u"by number"_s, u"page once by number"_s, 1.5),
        besideFloor(once + u"by date, third page"_s, u"page once, third"_s, 1.5),
        besideFloor(onceWithPictures + u"by date"_s, u"page once, pictures only"_s, 1.5),
        besideFloor(onceWithPictures + u"by number"_s, u"page once, pictures only by number"_s, 1.5),
        besideFloor(onceWithPictures + u"by date, second page"_s, u"page once, pictures only, second"_s, 1.5),
        besideFloor(onceWithPictures + u"by date, third page"_s, u"page once, pictures only, third"_s, 1.5),
    };
}

QList<Goal> canvasGoals()
{
    const QString byDateFloor = u"page by date floor"_s + Large;
    const QString wheel = u"wheel step"_s + Large;
    const QString key = u"page step"_s + Large;
    return {
        besideFloor(u"more button"_s, u"more"_s, 1.3),
        { u"back from a number listing, beside decoding what is seen"_s, u"back"_s + Large, u"back floor"_s + Large,
            1.3 },
        { u"back from a number listing after an edit there"_s, u"back after an edit"_s + Large, byDateFloor, 1.3 },
        { u"redraw after an edit"_s, u"redraw"_s + Large, byDateFloor, 1.3 },
        besideFloor(u"arrow to the next pair, after a glance"_s, u"arrow"_s, 1.5),
        { u"the same without a pause"_s, u"arrow at once"_s + Large, u"arrow floor"_s + Large, 1.5 },
        { u"worst notch of the wheel over a page, all runs"_s, wheel, {}, 16, Goal::AtMost, u"ms"_s, Goal::Worst },
        { u"worst Page Down over a page, five presses a second, all runs"_s, key, {}, 16, Goal::AtMost, u"ms"_s,
            Goal::Worst },
        { u"the same without a pause"_s, u"page step at once"_s + Large, {}, 0, Goal::AtMost, u"ms"_s, Goal::Worst },
    };
}

QList<Goal> captureGoals()
{
    const QList<SourcePhoto> photos = sourcePhotos(false);
    const QString first = photos.first().name;
    QList<Goal> goals {
        { u"24 megapixels chosen, shown, saved"_s, first, first + u" floor"_s, 1.25 },
        { u"the same beside vipsthumbnail"_s, first, first + u" vips"_s, 0.8 },
    };
    for (const SourcePhoto &photo : photos.mid(1)) {
        goals.append({ photo.name, photo.name, photo.name + u" floor"_s, 1.3 });
    }
    const QList<SourcePhoto> compared = qualityPhotos(false);
    for (const SourcePhoto &photo : compared) {
        goals.append(
            { u"copy's quality, "_s + photo.name, u"quality of "_s + photo.name, {}, 45, Goal::AtLeast, u"dB"_s });
    }
    return goals;
}

QList<Goal> otherGoals()
{
    const QString deletion = u"deletion"_s + Large;
    return {
        besideFloor(u"picture store's choice, 300,000 files"_s, u"choice"_s, 2.5),
        besideFloor(u"delete an entry of six pictures, beside its statements"_s, u"deletion"_s, 1.3),
        { u"the same beside its statements and removing the files"_s, deletion,
            u"deletion floor with files"_s + Large },
        { u"memory gained by a page of 40 full entries, scrolled through"_s, u"memory of a page"_s + Middle,
            u"memory of a page floor"_s + Middle, 0.3, Goal::AtMost, u"MB"_s },
        { u"memory after 200 pages / after the first"_s, u"memory over 200 pages"_s + Large, {}, 1.15, Goal::AtMost,
            u""_s },
        { u"first page, 100,000 beside 10,000 entries"_s, u"page by date"_s + Large, u"page by date"_s + Middle, 3.5 },
    };
}

double figureOf(const Goal &goal, const Timing &timing)
{
    return goal.figure == Goal::Worst ? timing.worst : timing.best;
}

} // namespace

QList<Goal> allGoals()
{
    return startGoals() + pageGoals() + canvasGoals() + captureGoals() + otherGoals();
}

std::optional<Outcome> outcomeOf(const Goal &goal, const Timings &timings)
{
    if (!timings.contains(goal.name) || (!goal.floor.isEmpty() && !timings.contains(goal.floor))) {
        return {};
    }
    Outcome outcome;
    outcome.value = timings[goal.name];
    outcome.floor = timings.value(goal.floor);
    outcome.measured = figureOf(goal, outcome.value);
    outcome.compared = goal.floor.isEmpty() ? outcome.measured : outcome.measured / figureOf(goal, outcome.floor);
    outcome.isMet = goal.sense == Goal::AtMost ? outcome.compared <= goal.limit : outcome.compared >= goal.limit;
    return outcome;
}
