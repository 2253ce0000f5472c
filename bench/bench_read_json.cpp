// How long until a Yosys JSON file is in the netlist database, beside a bare pass over the same file?

#include "support/BenchmarkArgs.h"
#include "support/JsonPass.h"
#include "support/Measure.h"

#include "DataBase.h"
#include "yosys/YosysReader.h"

#include <filesystem>

namespace kvr::netlistdb::bench {
namespace {

std::string checkNetlist(const Verific::Netlist *top, const DesignCounts &expected)
{
    Verific::MapIter iter;
    std::size_t leaves = 0;
    Verific::Instance *instance = nullptr;
    FOREACH_INSTANCE_OF_NETLIST (top, iter, instance) {
        leaves += instance->View() != nullptr ? 1 : 0;
    }
    if (top->GetNets()->Size() != expected.topNets) {
        return "nets of the top: " + std::to_string(top->GetNets()->Size()) + " instead of " +
               std::to_string(expected.topNets);
    }
    if (expected.depth == 1 && leaves != expected.leafInstances) {
        return "instances: " + std::to_string(leaves) + " instead of " + std::to_string(expected.leafInstances);
    }
    return {};
}

/// Both are timed in turn, so that what else the machine does meets both.
void readJsonBesideBarePass(benchmark::State &state)
{
    const Shape shape = shapeArgument(state);
    const std::string path = jsonFile(shape, sizeArgument(state));
    Verific::Libset::Reset();
    const std::string fault = checkNetlist(yosys::readJson(path), designFacts(shape, sizeArgument(state)).counts);
    if (!fault.empty()) {
        state.SkipWithError(fault.c_str());
    }
    std::vector<double> passTimes;
    std::vector<double> readTimes;
    for (auto _ : state) {
        Verific::Libset::Reset();
        Stopwatch watch;
        const JsonPassCounts pass = passOverJson(path);
        passTimes.push_back(watch.lap());
        benchmark::DoNotOptimize(pass.checksum);
        watch.lap();
        benchmark::DoNotOptimize(yosys::readJson(path));
        readTimes.push_back(watch.lap());
        state.SetIterationTime(readTimes.back());
    }
    Verific::Libset::Reset();
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(std::filesystem::file_size(path)));
    state.counters["bare_pass_ms"] = median(passTimes) * 1e3;
    state.counters["ratio"] = median(readTimes) / median(passTimes);
    reportPerLeaf(state, median(readTimes));
}
BENCHMARK(readJsonBesideBarePass)->Apply(sizesAndShapes)->UseManualTime();

} // namespace
} // namespace kvr::netlistdb::bench
