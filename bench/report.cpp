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

QString valueText(const Goal &goal, double value)
{
    return u"%1 %2"_s.arg(number(value), goal.unit).trimmed();
}

QString goalText(const Goal &goal)
{
    return u"%1 %2"_s.arg(goal.sense == Goal::AtMost ? u"≤"_s : u"≥"_s, QString::number(goal.limit));
}

QString line(const Goal &goal, const Outcome &outcome)
{
    const bool hasFloor = !goal.floor.isEmpty();
    return u"| %1 | %2 | %3 | %4 | %5 | %6 |\n"_s.arg(goal.title, valueText(goal, outcome.value),
        hasFloor ? valueText(goal, outcome.floor) : u"–"_s, hasFloor ? number(outcome.compared) : u"–"_s,
        goalText(goal), outcome.isMet ? u"yes"_s : u"**no**"_s);
}

QString milliseconds(double value)
{
    return value > 0 ? number(value) + u" ms"_s : u"–"_s;
}

QString growth(const Timings &timings)
{
    QString text = u"\n| Growth | 1,000 | 10,000 | 100,000 | 100,000 / 1,000 |\n|---|---|---|---|---|\n"_s;
    for (const QString &name : { u"start"_s, u"page by date"_s, u"page by number"_s, u"page by place"_s, u"page once"_s,
             u"page pictures only"_s, u"page once, pictures only"_s, u"more"_s, u"redraw"_s }) {
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
    QString text = u"| Case | Measured | Floor | Ratio | Goal | Met |\n|---|---|---|---|---|---|\n"_s;
    const QList<Goal> goals = allGoals();
    for (const Goal &goal : goals) {
        if (const std::optional<Outcome> outcome = outcomeOf(goal, timings)) {
            text += line(goal, *outcome);
        }
    }
    return text + growth(timings);
}

bool writeJson(const Timings &timings, const QString &path)
{
    QJsonObject all;
    for (auto it = timings.cbegin(); it != timings.cend(); ++it) {
        all[it.key()] = QJsonObject { { u"best"_s, it->best }, { u"median"_s, it->median }, { u"count"_s, it->count } };
    }
    QJsonArray table;
    const QList<Goal> goals = allGoals();
    for (const Goal &goal : goals) {
        if (const std::optional<Outcome> outcome = outcomeOf(goal, timings)) {
            table.append(QJsonObject { { u"case"_s, goal.title }, { u"unit"_s, goal.unit },
                { u"measured"_s, outcome->value }, { u"floor"_s, outcome->floor }, { u"compared"_s, outcome->compared },
                { u"goal"_s, goal.limit }, { u"met"_s, outcome->isMet } });
        }
    }
    const QJsonObject root { { u"qt"_s, QString::fromLatin1(qVersion()) },
        { u"system"_s, QSysInfo::prettyProductName() }, { u"processors"_s, int(std::thread::hardware_concurrency()) },
        { u"table"_s, table }, { u"timings"_s, all } };
    QFile file(path);
    const QByteArray bytes = QJsonDocument(root).toJson();
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush();
}
