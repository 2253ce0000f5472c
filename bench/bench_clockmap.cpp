// How long does it take to find all clocks of all nets, how much memory do they need, and how long does one question
// take?

#include "support/BenchmarkArgs.h"
#include "support/Measure.h"
#include "support/TreeWalk.h"

#include <netlistdb/analysis/ClockMap.h>

#include "DataBase.h"

#include <memory>
#include <string>
#include <unordered_map>

namespace kvr::netlistdb::bench {
namespace {

std::unique_ptr<DesignDatabase> imported(const benchmark::State &state)
{
    auto database = std::make_unique<DesignDatabase>(true);
    import(*database, shapeArgument(state), restoreDesign(shapeArgument(state), sizeArgument(state)));
    return database;
}

/// The clock that the map finds for every net that the generator knows it of.
bool knowsTheClocks(const analysis::ClockMap &map, DesignDatabase &database, const benchmark::State &state)
{
    const IDesignDatabase::SOURCE_TYPE source = sourceOf(shapeArgument(state));
    const DesignFacts &facts = designFacts(shapeArgument(state), sizeArgument(state));
    std::unordered_map<std::string, std::string> clockOf;
    for (const auto &[net, clock] : facts.knownClocks) {
        clockOf.emplace(net, facts.clockNets[clock]);
    }
    IVDBInstance *const root = database.getRoot(source);
    std::size_t checked = 0;
    for (const bool fromBuses : {true, false}) {
        for (IVDBNet *net : root->getModule()->getNets(fromBuses)) {
            const auto known = clockOf.find(net->getName());
            if (known == clockOf.end()) {
                continue;
            }
            const analysis::LaunchClocks launch = map.launch(root, net);
            if (launch.clocks.size() != 1 || map.find(known->second) != launch.clocks.front().clock) {
                return false;
            }
            ++checked;
        }
    }
    return checked == clockOf.size();
}

void build(benchmark::State &state)
{
    const IDesignDatabase::SOURCE_TYPE source = sourceOf(shapeArgument(state));
    const std::unique_ptr<DesignDatabase> database = imported(state);
    const std::size_t nets = allNets(*database, source).size();
    std::size_t bytes = 0;
    std::size_t heap = 0;
    std::size_t clocks = 0;
    for (auto _ : state) {
        const std::size_t before = heapBytes();
        const analysis::ClockMap map(*database, source);
        state.PauseTiming();
        heap = heapBytes() - before;
        bytes = map.memory();
        clocks = map.clocks().size();
        state.ResumeTiming();
    }
    if (!knowsTheClocks(analysis::ClockMap(*database, source), *database, state)) {
        state.SkipWithError("another clock than the design was made with");
    }
    state.counters["nets"] = static_cast<double>(nets);
    state.counters["clocks"] = static_cast<double>(clocks);
    state.counters["bytes"] = static_cast<double>(bytes);
    state.counters["heap_bytes_per_net"] = static_cast<double>(heap) / static_cast<double>(nets);
}
BENCHMARK(build)->Apply(sizesAndShapes);

/// Asks @p question of every net of every instance.
template <typename Question> void askAll(benchmark::State &state, Question question)
{
    const IDesignDatabase::SOURCE_TYPE source = sourceOf(shapeArgument(state));
    const std::unique_ptr<DesignDatabase> database = imported(state);
    const std::vector<InstanceNet> places = allNets(*database, source);
    const analysis::ClockMap map(*database, source);
    std::vector<double> times;
    std::size_t found = 0;
    for (auto _ : state) {
        Stopwatch watch;
        found = 0;
        for (const auto &[instance, net] : places) {
            found += question(map, instance, net);
        }
        times.push_back(watch.lap());
        state.SetIterationTime(times.back());
    }
    state.counters["nets"] = static_cast<double>(places.size());
    state.counters["answers_per_net"] = static_cast<double>(found) / static_cast<double>(places.size());
    state.counters["ns_per_net"] = median(times) * 1e9 / static_cast<double>(places.size());
}

void launch(benchmark::State &state)
{
    askAll(state, [](const analysis::ClockMap &map, IVDBInstance *instance, IVDBNet *net) {
        return map.launch(instance, net).clocks.size();
    });
}
BENCHMARK(launch)->Apply(sizesAndShapes)->UseManualTime();

void capture(benchmark::State &state)
{
    askAll(state, [](const analysis::ClockMap &map, IVDBInstance *instance, IVDBNet *net) {
        return map.capture(instance, net).clocks.size();
    });
}
BENCHMARK(capture)->Apply(sizesAndShapes)->UseManualTime();

void electrical(benchmark::State &state)
{
    askAll(state, [](const analysis::ClockMap &map, IVDBInstance *instance, IVDBNet *net) {
        return std::size_t{map.electrical(instance, net).clock.has_value()};
    });
}
BENCHMARK(electrical)->Apply(sizesAndShapes)->UseManualTime();

void countNets(benchmark::State &state)
{
    const IDesignDatabase::SOURCE_TYPE source = sourceOf(shapeArgument(state));
    const std::unique_ptr<DesignDatabase> database = imported(state);
    const analysis::ClockMap map(*database, source);
    for (auto _ : state) {
        benchmark::DoNotOptimize(map.countNets());
    }
}
BENCHMARK(countNets)->Apply(sizesAndShapes);

} // namespace
} // namespace kvr::netlistdb::bench
