#include "bench/children.h"

#include "app/startup.h"
#include "bench/benchcatalogue.h"
#include "bench/captureoperations.h"
#include "bench/firstpaint.h"
#include "bench/memory.h"
#include "bench/pageoperations.h"
#include "bench/quality.h"
#include "bench/sources.h"
#include "bench/storeoperations.h"

#include <QDir>
#include <QImageReader>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTextStream>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

constexpr int LongestRun = 1800000; // ms

Timings single(const QString &name, double value)
{
    return { { name, timingOf({ value }) } };
}

Timings qualities(const QString &sources, bool isQuick)
{
    QImageReader::setAllocationLimit(0); // the whole source is wanted
    Timings timings;
    const QList<SourcePhoto> photos = qualityPhotos(isQuick);
    for (const SourcePhoto &photo : photos) {
        timings.insert(single(u"quality of "_s + photo.name, copyQuality(sources + u'/' + photo.name)));
    }
    timings.insert(single(u"quality on the canvas"_s, shownQuality(baseCopy(sources + u"/../base"_s, 0))));
    return timings;
}

/// What a child can measure; its arguments are the numbers and paths behind its name.
Timings measured(const QStringList &arguments)
{
    const QString name = arguments.value(0);
    const QString first = arguments.value(1);
    const int repetitions = arguments.value(2).toInt();
    if (name == u"pages"_s) {
        return measurePages(repetitions);
    }
    if (name == u"canvas"_s) {
        return measureCanvas(repetitions);
    }
    if (name == u"store"_s) {
        return measureStore(repetitions);
    }
    if (name == u"capture"_s) {
        return measureCapture(first, arguments.contains(u"quick"_s), repetitions);
    }
    if (name == u"quality"_s) {
        return qualities(first, arguments.contains(u"quick"_s));
    }
    if (name == u"scrolled page"_s) {
        return single(u"memory of a page"_s, Memory::ofScrolledPage());
    }
    if (name == u"held pictures"_s) {
        return single(u"memory of a page floor"_s, Memory::ofHeldPictures());
    }
    if (name == u"many pages"_s) {
        return single(u"memory over 200 pages"_s, Memory::growthOverPages(200));
    }
    return {};
}

QString programPath(const QString &name)
{
    return QCoreApplication::applicationDirPath() + u'/' + name;
}

QJsonObject output(const QString &program, const QString &folder, const QStringList &arguments, const QString &screen)
{
    QProcess process;
    if (!screen.isEmpty()) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
        environment.insert(u"DISPLAY"_s, screen);
        process.setProcessEnvironment(environment);
    }
    process.setWorkingDirectory(folder);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, arguments, QIODevice::ReadOnly);
    process.waitForFinished(LongestRun);
    const QByteArray text = process.readAllStandardOutput();
    QJsonObject object = QJsonDocument::fromJson(text).object();
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0 || object.isEmpty()) {
        qFatal("%s %s in %s has failed.", qUtf8Printable(program), qUtf8Printable(arguments.join(u' ')),
            qUtf8Printable(folder));
    }
    return object;
}

} // namespace

int Children::runAsChild(const QStringList &arguments)
{
    Startup::makeDataFolders();
    if (!Startup::openCatalogue()) {
        return 1;
    }
    if (arguments.value(0) == u"make"_s) {
        const bool isMade = BenchCatalogue(arguments.value(1), arguments.value(2).toInt()).fill();
        QTextStream(stdout) << u"{\"made\": {}}"_s;
        return isMade ? 0 : 1;
    }
    const Timings timings = measured(arguments);
    QJsonObject object;
    for (auto it = timings.cbegin(); it != timings.cend(); ++it) {
        object[it.key()] = toJson(*it);
    }
    QTextStream(stdout) << QJsonDocument(object).toJson();
    return object.isEmpty() ? 1 : 0;
}

Timings Children::run(const QString &folder, const QStringList &arguments)
{
    const QJsonObject object
        = output(programPath(u"bahnito-bench"_s), folder, QStringList(u"--child"_s) + arguments, {});
    Timings timings;
    for (auto it = object.begin(); it != object.end(); ++it) {
        timings[it.key()] = timingFrom(it.value().toObject());
    }
    return timings;
}

Children::Start Children::start(const QString &program, const QString &folder, const QString &screen)
{
    const QJsonObject object = output(programPath(program), folder, { QString::number(nowMs(), 'f', 3) }, screen);
    return { object[u"ms"_s].toDouble(), object[u"rss"_s].toDouble() };
}
