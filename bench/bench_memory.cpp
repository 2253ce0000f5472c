// How much memory do the netlist database and the item tree take, per leaf instance?

#include "support/BenchmarkArgs.h"
#include "support/Measure.h"
#include "support/TreeWalk.h"

#include "DataBase.h"

namespace kvr::netlistdb::bench {
namespace {

void memoryPerLeaf(benchmark::State &state)
{
    const Shape shape = shapeArgument(state);
    const auto leaves = static_cast<double>(state.range(0));
    designFacts(shape, sizeArgument(state));
    savedFile(shape, sizeArgument(state));
    std::size_t items = 0;
    for (auto _ : state) {
        Verific::Libset::Reset();
        const std::size_t empty = residentBytes();
        Verific::Netlist *const netlist = restoreDesign(shape, sizeArgument(state));
        const std::size_t restored = residentBytes();
        {
            DesignDatabase database(false);
            import(database, shape, netlist);
            const std::size_t tree = residentBytes();
            if (const std::string fault = checkTree(database, shape, sizeArgument(state)); !fault.empty()) {
                state.SkipWithError(fault.c_str());
            }
            state.counters["tree_bytes"] = static_cast<double>(tree - restored) / leaves;
            const auto counts = liveItemCounts();
            items = 0;
            for (const unsigned count : counts) {
                items += count;
            }
            state.counters["tree_bytes_per_item"] =
                static_cast<double>(tree - restored) / static_cast<double>(std::max<std::size_t>(items, 1));
        }
        const std::size_t before = residentBytes();
        DesignDatabase database(true);
        import(database, shape, netlist);
        const std::size_t kept = residentBytes();
        state.counters["netlist_bytes"] = static_cast<double>(restored - empty) / leaves;
        state.counters["kept_tree_bytes"] = static_cast<double>(kept - before) / leaves;
    }
    state.counters["items"] = static_cast<double>(items);
    Verific::Libset::Reset();
}
BENCHMARK(memoryPerLeaf)->Apply(sizesAndShapes)->Iterations(1);

} // namespace
} // namespace kvr::netlistdb::bench
