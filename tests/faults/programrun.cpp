#include "tests/faults/programrun.h"

#include <QDir>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

#include <algorithm>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int LongestWait = 60000; // ms

} // namespace

void becomeProgram(const QString &folder, const QString &photograph)
{
    QDir::setCurrent(folder);
    qputenv("QT_PLUGIN_PATH", BAHNITO_USER_PLUGINS);
    qputenv("QT_QPA_GENERIC_PLUGINS", "scripteduser:" + photograph.toUtf8());
    ForkedRun::reportStandardOutput();
    execl(BAHNITO_PROGRAM, BAHNITO_PROGRAM, nullptr);
    qFatal("no program %s", BAHNITO_PROGRAM);
}

QStringList scriptFacts(const QString &folder)
{
    QStringList facts;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"script"_s);
        database.setDatabaseName(folder + u"/Data/bahnakte.dat"_s);
        database.open();
        QSqlQuery query(u"SELECT 'entry ' || nummer FROM loc_seen "
                        "UNION ALL SELECT 'picture ' || s.nummer FROM loc_picture AS p "
                        "JOIN loc_seen AS s ON s.id = p.locpictureid "
                        "UNION ALL SELECT 'edit ' || nummer FROM loc_seen WHERE ort = 'Wassen Nord' "
                        "UNION ALL SELECT 'class ' || substr(modelname, 5) FROM loc_model WHERE modelname LIKE 'neu %' "
                        "UNION ALL SELECT 'group ' || substr(name, 5) FROM locomotive WHERE name LIKE 'Zug %' "
                        // of the sample's own groups there are two
                        "UNION ALL SELECT 'grouppicture ' || (row_number() OVER (ORDER BY id) - 2) FROM loc_picture "
                        "WHERE locpictureid = -1 "
                        "UNION ALL SELECT 'close' FROM settings WHERE name = 'BG_COLOR' AND value <> 0"_s,
            database);
        while (query.next()) {
            facts.append(query.value(0).toString());
        }
    }
    QSqlDatabase::removeDatabase(u"script"_s);
    facts.sort();
    return facts;
}

QStringList factsAfter(QStringList facts, const QString &action)
{
    const QString gone = deletedBy(action);
    if (gone.isEmpty()) {
        facts.append(action);
    }
    for (const QString &what : { u"entry "_s, u"picture "_s, u"edit "_s }) {
        facts.removeAll(gone.isEmpty() ? QString() : what + gone);
    }
    facts.sort();
    return facts;
}

QString deletedBy(const QString &action)
{
    if (!action.startsWith(u"deletion "_s)) {
        return {};
    }
    const int evening = action.section(u' ', 1).toInt();
    return evening == 1 ? u"14201"_s : QString::number(evening - 1);
}

ReportedSavings::ReportedSavings(const QStringList &lines)
{
    for (const QString &line : lines) {
        if (line.startsWith(u"> "_s)) {
            interrupted = line.sliced(2);
        } else if (line == interrupted) {
            done.append(interrupted);
            interrupted.clear();
        }
    }
}

RunTimes timesOf(ForkedRun &run)
{
    RunTimes times;
    QElapsedTimer timer;
    timer.start();
    while (run.waitForLines(times.lines.size() + 1, LongestWait)) {
        times.lines.append(timer.nsecsElapsed() / 1000);
    }
    const ForkedRun::End end = run.finish(LongestWait);
    times.end = timer.nsecsElapsed() / 1000;
    times.said = end.lines;
    times.isGood = end.isGood() && times.said.size() == times.lines.size();
    return times;
}

ForkedRun::End killAt(ForkedRun &run, const Aim &aim, QRandomGenerator &random)
{
    if (run.waitForLines(aim.lines, LongestWait)) {
        usleep(quint32(random.bounded(std::max<qint64>(1, aim.longest))));
    }
    run.kill();
    return run.finish(LongestWait);
}

void Tally::note(const QString &saving, bool isStored)
{
    stored += isStored ? 1 : 0;
    if (!saving.isEmpty()) {
        ++savings;
        interrupted.insert(saving);
    }
}
