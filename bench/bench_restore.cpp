// How long until a saved netlist is in the netlist database, how long to write it, and how long to be rid of it?

#include "support/BenchmarkArgs.h"
#include "support/Measure.h"

#include "DataBase.h"

#include <filesystem>

namespace kvr::netlistdb::bench {
namespace {

std::string checkRestored(const Verific::Netlist *top, const DesignCounts &expected)
{
    if (top == nullptr) {
        return "nothing restored";
    }
    return top->GetNets()->Size() == expected.topNets ? "" : "wrong number of nets";
}

void restore(benchmark::State &state)
{
    const Shape shape = shapeArgument(state);
    const std::string path = savedFile(shape, sizeArgument(state));
    const std::string fault =
        checkRestored(restoreDesign(shape, sizeArgument(state)), designFacts(shape, sizeArgument(state)).counts);
    if (!fault.empty()) {
        state.SkipWithError(fault.c_str());
    }
    std::vector<double> times;
    for (auto _ : state) {
        Verific::Libset::Reset();
        Stopwatch watch;
        benchmark::DoNotOptimize(Verific::Netlist::RestoreFromFile(path.c_str()));
        times.push_back(watch.lap());
        state.SetIterationTime(times.back());
    }
    Verific::Libset::Reset();
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(std::filesystem::file_size(path)));
    reportPerLeaf(state, median(times));
}
BENCHMARK(restore)->Apply(sizesAndShapes)->UseManualTime();

void save(benchmark::State &state)
{
    const Shape shape = shapeArgument(state);
    const Verific::Netlist *const top = restoreDesign(shape, sizeArgument(state));
    const std::string path = savedFile(shape, sizeArgument(state)) + ".again";
    for (auto _ : state) {
        if (top->SaveToFile(path.c_str()) == 0) {
            state.SkipWithError("cannot save");
        }
    }
    std::filesystem::remove(path);
    Verific::Libset::Reset();
}
BENCHMARK(save)->Apply(sizesFlat);

void copy(benchmark::State &state)
{
    const Verific::Netlist *const top = restoreDesign(shapeArgument(state), sizeArgument(state));
    std::vector<double> times;
    for (auto _ : state) {
        Stopwatch watch;
        const Verific::Netlist *const loose = top->Copy(nullptr);
        times.push_back(watch.lap());
        state.SetIterationTime(times.back());
        if (loose->GetNets()->Size() != top->GetNets()->Size()) {
            state.SkipWithError("wrong number of nets");
        }
        delete loose;
    }
    Verific::Libset::Reset();
    reportPerLeaf(state, median(times));
}
BENCHMARK(copy)->Apply(sizesFlat)->UseManualTime();

void deleteEverything(benchmark::State &state)
{
    std::vector<double> times;
    for (auto _ : state) {
        restoreDesign(shapeArgument(state), sizeArgument(state));
        Stopwatch watch;
        Verific::Libset::Reset();
        times.push_back(watch.lap());
        state.SetIterationTime(times.back());
    }
    reportPerLeaf(state, median(times));
}
BENCHMARK(deleteEverything)->Apply(sizesFlat)->UseManualTime();

} // namespace
} // namespace kvr::netlistdb::bench
