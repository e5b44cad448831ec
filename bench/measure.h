#pragma once

#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QString>

#include <functional>

/// One thing to measure: `take` does it once and returns the milliseconds it took, whatever it had to prepare left out.
struct Operation
{
    QString name;
    std::function<double()> take;
};

struct Timing
{
    double best = 0; // milliseconds, or whatever unit the case is in
    double median = 0;
    double worst = 0;
    int count = 0;
};

using Timings = QMap<QString, Timing>;

/// Milliseconds that `work` takes.
[[nodiscard]] double elapsed(const std::function<void()> &work);

[[nodiscard]] Timing timingOf(QList<double> values);

[[nodiscard]] QJsonObject toJson(const Timing &timing);
[[nodiscard]] Timing timingFrom(const QJsonObject &object);

/// Takes every operation `repetitions` times, all of them in one random order, so that whatever else the machine does
/// meets a case and its floor alike. Each is done once beforehand, uncounted.
[[nodiscard]] Timings measure(const QList<Operation> &operations, int repetitions);
