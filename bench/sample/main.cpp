#include "app/startup.h"
#include "bench/sample/samplefiller.h"
#include "search/clock.h"
#include "store/database.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QTemporaryFile>
#include <QTextStream>

#include <optional>

using namespace Qt::StringLiterals;

namespace {

enum ExitCode { Done = 0, Failed = 1, WrongUsage = 2 };

struct Arguments
{
    QString folder;
    int entries = 300;
    quint32 seed = 1;
};

/// Nothing when the arguments make no sense.
std::optional<Arguments> parsed(QStringList list)
{
    Arguments arguments;
    while (!list.isEmpty()) {
        const QString argument = list.takeFirst();
        bool isGood = !argument.isEmpty();
        if (argument == u"--entries"_s && !list.isEmpty()) {
            arguments.entries = list.takeFirst().toInt(&isGood);
            isGood = isGood && arguments.entries >= 0;
        } else if (argument == u"--seed"_s && !list.isEmpty()) {
            arguments.seed = list.takeFirst().toUInt(&isGood);
        } else {
            isGood = isGood && !argument.startsWith(u'-') && arguments.folder.isEmpty();
            arguments.folder = argument;
        }
        if (!isGood) {
            return {};
        }
    }
    return arguments.folder.isEmpty() ? std::nullopt : std::optional(arguments);
}

int fail(const QString &reason)
{
    QTextStream(stderr) << reason << '\n';
    return Failed;
}

/// Each look at the clock finds it a little later, so that the copies' names are the same in every run.
void setClockOfTheSample()
{
    Clock::setSource([now = QDateTime(QDate(2024, 3, 2), QTime(14, 0))]() mutable {
        now = now.addMSecs(1337);
        return now;
    });
}

/// Why no catalogue can be made in the working folder; empty when one can. Asked beforehand, because the program's own
/// boxes would wait for an answer on a screen that nobody sees.
QString obstacle()
{
    if (QFile::exists(databasePath())) {
        return u"In \"%1\" gibt es schon einen Katalog; er bleibt, wie er ist."_s.arg(QDir::currentPath());
    }
    if (!QDir(u"Originale"_s).isEmpty()) {
        return u"In \"%1\" gibt es schon einen Ordner \"Originale\"; er bleibt, wie er ist."_s.arg(QDir::currentPath());
    }
    if (!QSqlDatabase::isDriverAvailable(u"QSQLITE"_s)) {
        return u"Neben dem Programm fehlt der Ordner \"plugins\"."_s;
    }
    Startup::makeDataFolders();
    QTemporaryFile probe(u"./Data/XXXXXX"_s);
    return probe.open() ? QString() : u"In \"%1\" kann nicht geschrieben werden."_s.arg(QDir::currentPath());
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen"); // it shows nothing, so it needs no display either
    Startup::registerResources();
    const QApplication application(argc, argv);
    Startup::setLibraryPaths();
    const std::optional<Arguments> arguments = parsed(QCoreApplication::arguments().mid(1));
    if (!arguments) {
        QTextStream(stderr) << u"Aufruf: bahnito-sample ORDNER [--entries ANZAHL] [--seed ZAHL]\n"
                               "Legt in ORDNER einen Beispiel-Katalog mit gemalten Bildern an.\n"_s;
        return WrongUsage;
    }
    if (!QDir().mkpath(arguments->folder) || !QDir::setCurrent(arguments->folder)) {
        return fail(u"Der Ordner \"%1\" kann nicht angelegt werden."_s.arg(arguments->folder));
    }
    const QString reason = obstacle();
    if (!reason.isEmpty()) {
        return fail(reason);
    }
    setClockOfTheSample();
    if (!Startup::openCatalogue()) {
        return Failed;
    }
    SampleFiller filler(planSample(arguments->entries, arguments->seed));
    return filler.fill() ? Done : fail(filler.errorText());
}
