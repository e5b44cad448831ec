#include "bench/report.h"

#include "bench/goals.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSysInfo>

#include <thread>

using namespace Qt::StringLiterals;

namespace {

QString number(double value)
{
    return QString::number(value, 'f', value < 100 ? 2 : 0);
}

/// The figure that counts, and the median of all repetitions behind it.
QString valueText(const Goal &goal, const Timing &timing)
{
    const double figure = goal.figure == Goal::Worst ? timing.worst : timing.best;
    const QString median = timing.count > 1 ? u" (%1)"_s.arg(number(timing.median)) : QString();
    return u"%1%2 %3"_s.arg(number(figure), median, goal.unit).trimmed();
}

QString goalText(const Goal &goal)
{
    if (goal.limit == 0) {
        return u"–"_s;
    }
    return u"%1 %2"_s.arg(goal.sense == Goal::AtMost ? u"≤"_s : u"≥"_s, QString::number(goal.limit));
}

QString metText(const Goal &goal, const Outcome &outcome)
{
    if (goal.limit == 0) {
        return u"–"_s;
    }
    return outcome.isMet ? u"yes"_s : u"**no**"_s;
}

QString line(const Goal &goal, const std::optional<Outcome> &outcome)
{
    if (!outcome) {
        return u"| %1 | not measured | – | – | %2 | – |\n"_s.arg(goal.title, goalText(goal));
    }
    const bool hasFloor = !goal.floor.isEmpty();
    return u"| %1 | %2 | %3 | %4 | %5 | %6 |\n"_s.arg(goal.title, valueText(goal, outcome->value),
        hasFloor ? valueText(goal, outcome->floor) : u"–"_s, hasFloor ? number(outcome->compared) : u"–"_s,
        goalText(goal), metText(goal, *outcome));
}

QString milliseconds(double value)
{
    return value > 0 ? number(value) + u" ms"_s : u"–"_s;
}

/// Every case that was measured on several catalogues.
QStringList growingCases(const Timings &timings)
{
    QStringList names;
    for (auto it = timings.cbegin(); it != timings.cend(); ++it) {
        const QString name = it.key().section(u'@', 0, 0);
        const bool isCase = it.key().contains(u'@') && !name.contains(u" floor"_s) && !name.contains(u"window"_s);
        if (isCase && !name.contains(u"memory"_s) && !names.contains(name)) {
            names.append(name);
        }
    }
    return names;
}

QString growth(const Timings &timings)
{
    QString text = u"\n| Growth (best times) | 1,000 | 10,000 | 100,000 | 100,000 / 1,000 |\n|---|---|---|---|---|\n"_s;
    const QStringList names = growingCases(timings);
    for (const QString &name : names) {
        const auto at = [&](const QString &entries) { return timings.value(name + u'@' + entries).best; };
        const double least = at(u"1000"_s);
        const double most = at(u"100000"_s);
        text += u"| %1 | %2 | %3 | %4 | %5 |\n"_s.arg(name, milliseconds(least), milliseconds(at(u"10000"_s)),
            milliseconds(most), least > 0 && most > 0 ? number(most / least) : u"–"_s);
    }
    return text;
}

} // namespace

QString tableOf(const Timings &timings)
{
    QString text = u"| Case | Measured (median) | Floor (median) | Ratio | Goal | Met |\n|---|---|---|---|---|---|\n"_s;
    const QList<Goal> goals = allGoals();
    for (const Goal &goal : goals) {
        text += line(goal, outcomeOf(goal, timings));
    }
    return text + growth(timings);
}

bool writeJson(const Timings &timings, const QString &path)
{
    QJsonObject all;
    for (auto it = timings.cbegin(); it != timings.cend(); ++it) {
        all[it.key()] = toJson(*it);
    }
    QJsonArray table;
    const QList<Goal> goals = allGoals();
    for (const Goal &goal : goals) {
        const std::optional<Outcome> outcome = outcomeOf(goal, timings);
        if (!outcome) {
            table.append(QJsonObject { { u"case"_s, goal.title }, { u"goal"_s, goal.limit } });
            continue;
        }
        const QJsonValue met = goal.limit == 0 ? QJsonValue() : QJsonValue(outcome->isMet);
        table.append(QJsonObject { { u"case"_s, goal.title }, { u"unit"_s, goal.unit },
            { u"measured"_s, toJson(outcome->value) }, { u"floor"_s, toJson(outcome->floor) },
            { u"compared"_s, outcome->compared }, { u"goal"_s, goal.limit }, { u"met"_s, met } });
    }
    const QJsonObject root { { u"qt"_s, QString::fromLatin1(qVersion()) },
        { u"system"_s, QSysInfo::prettyProductName() }, { u"processors"_s, int(std::thread::hardware_concurrency()) },
        { u"table"_s, table }, { u"timings"_s, all } };
    QFile file(path);
    const QByteArray bytes = QJsonDocument(root).toJson();
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush();
}
