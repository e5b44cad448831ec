#include "app/startup.h"
#include "bench/children.h"
#include "bench/firstpaint.h"
#include "bench/report.h"
#include "bench/sources.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTextStream>

#include <algorithm>

using namespace Qt::StringLiterals;

// bahnito-bench [--quick] DATA JSON ENTRIES...: makes the catalogues below DATA that are missing, measures, prints the
// table and writes the JSON file. bahnito-bench --child …: one measurement in the working folder.

namespace {

struct Plan
{
    bool isQuick = false;
    QString data;
    QString json;
    QStringList entries;

    [[nodiscard]] int repetitions() const { return isQuick ? 5 : 15; }
    [[nodiscard]] QString folder(const QString &count) const { return data + u'/' + count; }
    [[nodiscard]] QString sources() const { return data + u"/sources"_s; }
};

Plan planOf(QStringList arguments)
{
    Plan plan;
    plan.isQuick = arguments.removeAll(u"--quick"_s) > 0;
    plan.data = arguments.value(0);
    plan.json = arguments.value(1);
    plan.entries = arguments.mid(2);
    return plan;
}

void tell(const QString &text)
{
    QTextStream(stderr) << text << '\n';
}

/// A catalogue counts as made only when its mark is there: it may have been given up half-way.
void makeCatalogues(const Plan &plan)
{
    for (const QString &count : plan.entries) {
        const QString folder = plan.folder(count);
        const QString mark = folder + u"/fertig"_s;
        if (QFile::exists(mark)) {
            continue;
        }
        tell(u"making a catalogue of %1 entries"_s.arg(count));
        QDir(folder).removeRecursively();
        QDir().mkpath(folder);
        QFile::link(QCoreApplication::applicationDirPath() + u"/images"_s, folder + u"/images"_s);
        (void)Children::run(folder, { u"make"_s, plan.data + u"/base"_s, count });
        QFile(mark).open(QIODevice::WriteOnly);
    }
}

void keep(Timings &all, const Timings &timings, const QString &entries = {})
{
    for (auto it = timings.cbegin(); it != timings.cend(); ++it) {
        all[entries.isEmpty() ? it.key() : it.key() + u'@' + entries] = *it;
    }
}

/// Program and floors in turn.
void measureStarts(Timings &all, const Plan &plan, const QString &entries)
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
            const Children::Start start = Children::start(program.file, plan.folder(entries));
            if (i > 0) { // the first is not counted: it reads the disk
                program.ms.append(start.ms);
                program.memory.append(start.memory / 1024);
            }
        }
    }
    for (const Program &program : std::as_const(programs)) {
        keep(all, { { program.name, timingOf(program.ms) }, { program.name + u" memory"_s, timingOf(program.memory) } },
            entries);
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
        measureStarts(all, plan, entries);
        for (const QString &child : { u"pages"_s, u"canvas"_s, u"store"_s }) {
            keep(all, Children::run(plan.folder(entries), { child, {}, repetitions }), entries);
        }
    }
    tell(u"measuring memory"_s);
    measureMemory(all, plan);
    tell(u"measuring large photographs"_s);
    const QString smallest = plan.folder(plan.entries.first());
    const QString kind = plan.isQuick ? u"quick"_s : u"all"_s;
    keep(all, Children::run(smallest, { u"capture"_s, plan.sources(), repetitions, kind }));
    keep(all, Children::run(smallest, { u"quality"_s, plan.sources() }));
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
        tell(u"usage: bahnito-bench [--quick] DATA JSON ENTRIES..."_s);
        return 2;
    }
    if (!makeSourcePhotos(plan.sources(), plan.isQuick)) {
        tell(u"The large photographs could not be written."_s);
        return 1;
    }
    makeCatalogues(plan);
    const Timings timings = measureAll(plan);
    QTextStream(stdout) << tableOf(timings);
    return writeJson(timings, plan.json) ? 0 : 1;
}
