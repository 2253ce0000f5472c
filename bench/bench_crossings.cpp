// How long does it take to find and classify all crossings of a design whose clock map is there?

#include "support/BenchmarkArgs.h"
#include "support/Measure.h"
#include "support/TreeWalk.h"

#include <netlistdb/analysis/Crossings.h>

#include "DataBase.h"

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <tuple>

namespace kvr::netlistdb::bench {
namespace {

/// Every crossing ends at a clock that the map knows, and is there once.
bool areDistinct(const analysis::Crossings &crossings)
{
    std::set<std::tuple<std::optional<analysis::ClockId>, analysis::ClockId, std::string, std::string>> seen;
    for (const analysis::Crossing &crossing : crossings.all()) {
        if (!seen.emplace(crossing.launch, crossing.capture, crossing.to.cell, crossing.to.pin).second ||
            crossing.launch == crossing.capture) {
            return false;
        }
    }
    return !seen.empty();
}

void crossings(benchmark::State &state)
{
    const IDesignDatabase::SOURCE_TYPE source = sourceOf(shapeArgument(state));
    DesignDatabase database(true);
    import(database, shapeArgument(state), restoreDesign(shapeArgument(state), sizeArgument(state)));
    const analysis::ClockMap map(database, source);
    std::size_t found = 0;
    std::size_t heap = 0;
    for (auto _ : state) {
        const std::size_t before = heapBytes();
        const analysis::Crossings all(map);
        state.PauseTiming();
        heap = heapBytes() - before;
        found = all.all().size();
        state.ResumeTiming();
    }
    if (!areDistinct(analysis::Crossings(map))) {
        state.SkipWithError("a crossing is missing, or is there twice");
    }
    state.counters["crossings"] = static_cast<double>(found);
    state.counters["heap_bytes_per_crossing"] = found > 0 ? static_cast<double>(heap) / static_cast<double>(found) : 0;
}
BENCHMARK(crossings)->Apply(sizesAndShapes)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace kvr::netlistdb::bench
