// How long does it take to ask for the clock of every net, on a fresh database and on one that was asked before?

#include "support/BenchmarkArgs.h"
#include "support/Measure.h"
#include "support/TreeWalk.h"

#include "DataBase.h"

#include <memory>

namespace kvr::netlistdb::bench {
namespace {

std::size_t askAll(DesignDatabase &database, const std::vector<InstanceNet> &places,
                   IDesignDatabase::SOURCE_TYPE source)
{
    std::size_t clocked = 0;
    for (const auto &[instance, net] : places) {
        clocked += database.findDrivingClockDomains(instance, net, source) != nullptr ? 1 : 0;
    }
    return clocked;
}

void clockOfEveryNet(benchmark::State &state)
{
    const Shape shape = shapeArgument(state);
    const IDesignDatabase::SOURCE_TYPE source = sourceOf(shape);
    std::vector<double> coldTimes;
    std::vector<double> warmTimes;
    std::size_t asked = 0;
    std::size_t clocked = 0;
    for (auto _ : state) {
        auto database = std::make_unique<DesignDatabase>(true);
        import(*database, shape, restoreDesign(shape, sizeArgument(state)));
        const std::vector<InstanceNet> places = allNets(*database, source);
        asked = places.size();
        Stopwatch watch;
        clocked = askAll(*database, places, source);
        coldTimes.push_back(watch.lap());
        state.SetIterationTime(coldTimes.back());
        watch.lap();
        const std::size_t again = askAll(*database, places, source);
        warmTimes.push_back(watch.lap());
        if (again != clocked) {
            state.SkipWithError("other answers when asked again");
        }
        if (const std::string fault = checkClocks(*database, shape, sizeArgument(state)); !fault.empty()) {
            state.SkipWithError(fault.c_str());
        }
    }
    const auto nets = static_cast<double>(asked);
    state.counters["nets"] = nets;
    state.counters["clocked"] = static_cast<double>(clocked);
    state.counters["cold_ns_per_net"] = median(coldTimes) * 1e9 / nets;
    state.counters["warm_ns_per_net"] = median(warmTimes) * 1e9 / nets;
}
BENCHMARK(clockOfEveryNet)->Apply(sizesAndShapes)->UseManualTime();

} // namespace
} // namespace kvr::netlistdb::bench
