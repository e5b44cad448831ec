#include "app/startup.h"
#include "bench/benchcatalogue.h"
#include "bench/children.h"
#include "bench/firstpaint.h"
#include "bench/keptcatalogue.h"
#include "bench/report.h"
#include "bench/sources.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTextStream>

#include <algorithm>

using namespace Qt::StringLiterals;

// bahnito-bench [--quick] [--screen=DISPLAY] DATA JSON ENTRIES...: makes the catalogues below DATA that are missing,
// measures, prints the table and writes the JSON file. With an X server the start is measured there, too.
// bahnito-bench --child …: one measurement in the working folder.

namespace {

struct Plan
{
    bool isQuick = false;
    QString screen; // empty when there is no X server
    QString data;
    QString json;
    QStringList entries;

    [[nodiscard]] int repetitions() const { return isQuick ? 5 : 15; }
    [[nodiscard]] QString folder(const QString &count) const { return data + u'/' + count; }
    [[nodiscard]] QString sources() const { return data + u"/photographs"_s; }
};

Plan planOf(QStringList arguments)
{
    Plan plan;
    plan.isQuick = arguments.removeAll(u"--quick"_s) > 0;
    const QString screenOption = u"--screen="_s;
    if (arguments.value(0).startsWith(screenOption)) {
        plan.screen = arguments.takeFirst().mid(screenOption.size());
    }
    plan.data = arguments.value(0);
    plan.json = arguments.value(1);
    plan.entries = arguments.mid(2);
    return plan;
}

void tell(const QString &text)
{
    QTextStream(stderr) << text << '\n';
}

bool makeCatalogues(const Plan &plan)
{
    for (const QString &count : plan.entries) {
        const QString folder = plan.folder(count);
        const KeptCatalogue catalogue(folder);
        if (!catalogue.isMade()) {
            tell(u"making a catalogue of %1 entries"_s.arg(count));
            catalogue.clear();
            (void)Children::run(folder, { u"make"_s, plan.data + u"/base"_s, count });
            if (!catalogue.noteMade()) {
                return false;
            }
        }
        const QString images = folder + u"/images"_s;
        QFile::remove(images); // a link, perhaps into the folder of another build
        QFile::link(QCoreApplication::applicationDirPath() + u"/images"_s, images);
        if (!catalogue.restore()) {
            return false;
        }
    }
    return true;
}

void keep(Timings &all, const Timings &timings, const QString &entries = {})
{
    for (auto it = timings.cbegin(); it != timings.cend(); ++it) {
        all[entries.isEmpty() ? it.key() : it.key() + u'@' + entries] = *it;
    }
}

/// Program and floors in turn; `prefix` stands before their names.
void measureStarts(Timings &all, const Plan &plan, const QString &entries, const QString &prefix, const QString &screen)
{
    struct Program
    {
        QString file;
        QString name;
        QList<double> ms;
        QList<double> memory;
    };
    QList<Program> programs { { u"bench-start"_s, u"start"_s, {}, {} }, { u"bench-window"_s, u"window"_s, {}, {} },
        { u"bench-storewindow"_s, u"store window"_s, {}, {} } };
    for (int i = 0; i <= plan.repetitions(); ++i) {
        for (Program &program : programs) {
            const Children::Start start = Children::start(program.file, plan.folder(entries), screen);
            if (i > 0) { // the first is not counted: it reads the disk
                program.ms.append(start.ms);
                program.memory.append(start.memory / 1024);
            }
        }
    }
    for (const Program &program : std::as_const(programs)) {
        const QString name = prefix + program.name;
        keep(all, { { name, timingOf(program.ms) }, { name + u" memory"_s, timingOf(program.memory) } }, entries);
    }
}

void measureMemory(Timings &all, const Plan &plan)
{
    const QString middle = u"10000"_s;
    const QString large = u"100000"_s;
    if (plan.entries.contains(middle)) {
        for (const QString &child : { u"scrolled page"_s, u"held pictures"_s }) {
            Timings timings = Children::run(plan.folder(middle), { child });
            for (Timing &timing : timings) {
                timing.best /= 1024;
                timing.median /= 1024;
                timing.worst /= 1024;
            }
            keep(all, timings, middle);
        }
    }
    if (plan.entries.contains(large)) {
        keep(all, Children::run(plan.folder(large), { u"many pages"_s }), large);
    }
}

Timings measureAll(const Plan &plan)
{
    Timings all;
    const QString repetitions = QString::number(plan.repetitions());
    for (const QString &entries : plan.entries) {
        tell(u"measuring %1 entries"_s.arg(entries));
        measureStarts(all, plan, entries, {}, {});
        if (!plan.screen.isEmpty()) {
            measureStarts(all, plan, entries, u"screen "_s, plan.screen);
        }
        QStringList children { u"pages"_s, u"store"_s };
        if (entries.toInt() > BenchCatalogue::LongClassRows + BenchCatalogue::FullClassRows) {
            children.append(u"canvas"_s);
        }
        for (const QString &child : std::as_const(children)) {
            keep(all, Children::run(plan.folder(entries), { child, {}, repetitions }), entries);
        }
    }
    tell(u"measuring memory"_s);
    measureMemory(all, plan);
    tell(u"measuring large photographs"_s);
    const QString smallest = plan.folder(plan.entries.first());
    const QString kind = plan.isQuick ? u"quick"_s : u"all"_s;
    keep(all, Children::run(smallest, { u"capture"_s, plan.sources(), repetitions, kind }));
    keep(all, Children::run(smallest, { u"quality"_s, plan.sources(), {}, kind }));
    return all;
}

} // namespace

int main(int argc, char *argv[])
{
    silenceMessages();
    Startup::registerResources();
    QApplication application(argc, argv);
    Startup::setLibraryPaths();
    Startup::speakGerman(application);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.value(0) == u"--child"_s) {
        return Children::runAsChild(arguments.mid(1));
    }
    const Plan plan = planOf(arguments);
    if (plan.entries.isEmpty()) {
        tell(u"usage: bahnito-bench [--quick] [--screen=DISPLAY] DATA JSON ENTRIES..."_s);
        return 2;
    }
    if (!makeSourcePhotos(plan.sources(), plan.isQuick)) {
        tell(u"The large photographs could not be written."_s);
        return 1;
    }
    if (!makeCatalogues(plan)) {
        tell(u"The catalogues could not be made ready."_s);
        return 1;
    }
    const Timings timings = measureAll(plan);
    QTextStream(stdout) << tableOf(timings);
    return writeJson(timings, plan.json) ? 0 : 1;
}
