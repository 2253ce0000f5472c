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

/// Depth first over the instances, looking at name, module and every bus and plain net of the module.
void walkTree(benchmark::State &state)
{
    const auto database = importWithoutSources(state);
    std::int64_t items = 0;
    std::size_t nameLengths = 0;
    for (auto _ : state) {
        items = 0;
        nameLengths = 0;
        std::vector<IVDBInstance *> stack{database->getRoot(sourceOf(shapeArgument(state)))};
        while (!stack.empty()) {
            const IVDBInstance *const instance = stack.back();
            stack.pop_back();
            ++items;
            nameLengths += instance->getName().size();
            for (IVDBNetBus *const bus : instance->getModule()->getAllNetBus()) {
                items += bus->getWidth() > 0 ? 1 : 0;
            }
            stack.insert(stack.end(), instance->getSubInstances().begin(), instance->getSubInstances().end());
        }
        benchmark::DoNotOptimize(items);
        benchmark::DoNotOptimize(nameLengths);
    }
    state.SetItemsProcessed(state.iterations() * items);
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
