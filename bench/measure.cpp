#include "bench/measure.h"

#include "bench/firstpaint.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

/// Collects the single repetitions; prints nothing.
class Collector final : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context & /*context*/) override { return true; }

    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs) {
            if (run.run_type == Run::RT_Iteration) {
                values[QString::fromStdString(run.run_name.function_name)].append(run.real_accumulated_time * 1e3);
            }
        }
    }

    QMap<QString, QList<double>> values; // milliseconds
};

void initialize()
{
    std::array arguments { std::string("bahnito-bench"), std::string("--benchmark_enable_random_interleaving=true"),
        std::string("--benchmark_min_time=0") };
    std::array<char *, 3> argv { arguments[0].data(), arguments[1].data(), arguments[2].data() };
    int argc = int(argv.size());
    benchmark::Initialize(&argc, argv.data());
}

} // namespace

double elapsed(const std::function<void()> &work)
{
    const double start = nowMs();
    work();
    return nowMs() - start;
}

Timing timingOf(QList<double> values)
{
    if (values.isEmpty()) {
        return {};
    }
    std::sort(values.begin(), values.end());
    return { values.first(), values.at(values.size() / 2), values.last(), int(values.size()) };
}

QJsonObject toJson(const Timing &timing)
{
    return { { u"best"_s, timing.best }, { u"median"_s, timing.median }, { u"worst"_s, timing.worst },
        { u"count"_s, timing.count } };
}

Timing timingFrom(const QJsonObject &object)
{
    return { object[u"best"_s].toDouble(), object[u"median"_s].toDouble(), object[u"worst"_s].toDouble(),
        object[u"count"_s].toInt() };
}

Timings measure(const QList<Operation> &operations, int repetitions)
{
    initialize();
    for (const Operation &operation : operations) {
        operation.take();
        const auto take = operation.take;
        benchmark::RegisterBenchmark(operation.name.toStdString().c_str(),
            [take](benchmark::State &state) {
                for ([[maybe_unused]] auto once : state) {
                    state.SetIterationTime(take() / 1e3);
                }
            })
            ->UseManualTime()
            ->Iterations(1)
            ->Repetitions(repetitions);
    }
    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);
    benchmark::ClearRegisteredBenchmarks();
    Timings timings;
    for (auto it = collector.values.cbegin(); it != collector.values.cend(); ++it) {
        timings[it.key()] = timingOf(it.value());
    }
    return timings;
}
