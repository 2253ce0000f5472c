// How long does it take to visit the whole tree, and to name every instance of it?

#include "support/BenchmarkArgs.h"
#include "support/TreeWalk.h"

#include <deque>
#include <memory>

namespace kvr::netlistdb::bench {
namespace {

std::unique_ptr<DesignDatabase> importWithoutSources(benchmark::State &state)
{
    auto database = std::make_unique<DesignDatabase>(false);
    import(*database, shapeArgument(state), restoreDesign(shapeArgument(state), sizeArgument(state)));
    const std::string fault = checkTree(*database, shapeArgument(state), sizeArgument(state));
    if (!fault.empty()) {
        state.SkipWithError(fault.c_str());
    }
    return database;
}

/// Depth first over the instances, looking at name, module and every bus of the module.
void walkTree(benchmark::State &state)
{
    const auto database = importWithoutSources(state);
    const DesignCounts &counts = designFacts(shapeArgument(state), sizeArgument(state)).counts;
    std::size_t instances = 0;
    std::size_t buses = 0;
    std::size_t nameLengths = 0;
    for (auto _ : state) {
        instances = 0;
        buses = 0;
        nameLengths = 0;
        std::vector<IVDBInstance *> stack{database->getRoot(sourceOf(shapeArgument(state)))};
        while (!stack.empty()) {
            const IVDBInstance *const instance = stack.back();
            stack.pop_back();
            ++instances;
            nameLengths += instance->getName().size();
            for (IVDBNetBus *const bus : instance->getModule()->getAllNetBus()) {
                buses += bus->getWidth() > 0 ? 1 : 0;
            }
            stack.insert(stack.end(), instance->getSubInstances().begin(), instance->getSubInstances().end());
        }
        benchmark::DoNotOptimize(buses);
        benchmark::DoNotOptimize(nameLengths);
    }
    if (instances != counts.leafInstances + counts.moduleInstances + 1) {
        state.SkipWithError("wrong number of instances");
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(instances + buses));
}
BENCHMARK(walkTree)->Apply(sizesAndShapes);

void pathOfEveryInstance(benchmark::State &state)
{
    const auto database = importWithoutSources(state);
    std::vector<IVDBInstance *> instances{database->getRoot(sourceOf(shapeArgument(state)))};
    for (std::size_t index = 0; index < instances.size(); ++index) {
        const auto &children = instances[index]->getSubInstances();
        instances.insert(instances.end(), children.begin(), children.end());
    }
    for (const IVDBInstance *const instance : instances) {
        const IVDBInstance *const owner = instance->getOwnerInstance();
        const std::string above = owner == nullptr ? "" : owner->getPath();
        if (instance->getPath() != (above.empty() ? instance->getName() : above + "/" + instance->getName())) {
            state.SkipWithError("wrong path");
            break;
        }
    }
    for (auto _ : state) {
        std::size_t length = 0;
        for (const IVDBInstance *const instance : instances) {
            length += instance->getPath().size();
        }
        benchmark::DoNotOptimize(length);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(instances.size()));
}
BENCHMARK(pathOfEveryInstance)->Apply(sizesAndShapes);

} // namespace
} // namespace kvr::netlistdb::bench
