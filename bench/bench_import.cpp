// How long does it take to build the item tree, with and without kept source netlists, and to drop it?

#include "support/BenchmarkArgs.h"
#include "support/Measure.h"
#include "support/TreeWalk.h"

#include "DataBase.h"

#include <memory>

namespace kvr::netlistdb::bench {
namespace {

std::string checkImport(benchmark::State &state, bool keepSources)
{
    const Shape shape = shapeArgument(state);
    Verific::Netlist *const netlist = restoreDesign(shape, sizeArgument(state));
    DesignDatabase database(keepSources);
    if (!import(database, shape, netlist)) {
        return "the import returns false";
    }
    std::string fault = checkTree(database, shape, sizeArgument(state));
    if (fault.empty() && keepSources) {
        fault = checkClocks(database, shape, sizeArgument(state));
    }
    return fault;
}

void importDesign(benchmark::State &state, bool keepSources)
{
    const std::string fault = checkImport(state, keepSources);
    if (!fault.empty()) {
        state.SkipWithError(fault.c_str());
    }
    const Shape shape = shapeArgument(state);
    std::vector<double> importTimes;
    std::vector<double> resetTimes;
    std::vector<double> destroyTimes;
    for (auto _ : state) {
        Verific::Netlist *const netlist = restoreDesign(shape, sizeArgument(state));
        auto database = std::make_unique<DesignDatabase>(keepSources);
        Stopwatch watch;
        import(*database, shape, netlist);
        importTimes.push_back(watch.lap());
        state.SetIterationTime(importTimes.back());
        watch.lap();
        database->reset(sourceOf(shape));
        resetTimes.push_back(watch.lap());
        database.reset();
        destroyTimes.push_back(watch.lap());
    }
    Verific::Libset::Reset();
    state.counters["reset_ms"] = median(resetTimes) * 1e3;
    // With kept sources this also empties the global libset.
    state.counters["destroy_ms"] = median(destroyTimes) * 1e3;
    reportPerLeaf(state, median(importTimes));
}

void importKeepingSources(benchmark::State &state)
{
    importDesign(state, true);
}
BENCHMARK(importKeepingSources)->Apply(sizesAndShapes)->UseManualTime();

void importWithoutSources(benchmark::State &state)
{
    importDesign(state, false);
}
BENCHMARK(importWithoutSources)->Apply(sizesAndShapes)->UseManualTime();

} // namespace
} // namespace kvr::netlistdb::bench
