#include "analysis/crossings/MemoryReads.h"

#include "analysis/ModelBuilder.h"

#include <DataBase.h>

#include <string_view>

namespace kvr::netlistdb::analysis {

namespace {

std::string_view typeOf(const CellModel &model)
{
    const char *const name = model.view != nullptr ? model.view->CellBaseName() : nullptr;
    return name != nullptr ? std::string_view(name) : std::string_view();
}

bool hasMemoryPorts(const DesignModel &design)
{
    for (std::uint32_t model = 0; model < design.hierarchy.models.size(); ++model) {
        if (startsWith(typeOf(design.hierarchy.models[model]), "$memrd")) {
            return true;
        }
    }
    return false;
}

std::string memoryOf(const Verific::Instance &instance)
{
    std::string_view name = parameterOf(instance, "MEMID");
    name.remove_prefix(startsWith(name, "\\") ? 1 : 0);
    return std::string(name);
}

std::vector<MemoryRead> readsOf(const DesignModel &design, const ModuleGraph &module)
{
    std::vector<MemoryRead> reads;
    std::map<std::string, std::vector<CellPin>> writes;
    std::uint32_t cell = 0;
    Verific::MapIter instances;
    const Verific::Instance *instance = nullptr;
    FOREACH_INSTANCE_OF_NETLIST (module.netlist, instances, instance) {
        const std::uint32_t number = cell++;
        if (module.isSub(number)) {
            continue;
        }
        const CellModel &model = design.hierarchy.models[module.modelOf(number)];
        if (model.kind != CellKind::Memory) {
            continue;
        }
        if (startsWith(typeOf(model), "$memrd") && model.clocks.empty()) {
            reads.push_back({number, memoryOf(*instance), {}});
        } else if (startsWith(typeOf(model), "$memwr")) {
            for (const CellModel::ClockPin &clock : model.clocks) {
                writes[memoryOf(*instance)].push_back({number, clock.pin});
            }
        }
    }
    for (MemoryRead &read : reads) {
        read.clocks = writes[read.memory];
    }
    return reads;
}

} // namespace

std::map<std::uint32_t, std::vector<MemoryRead>> findMemoryReads(const DesignModel &design)
{
    std::map<std::uint32_t, std::vector<MemoryRead>> all;
    if (!hasMemoryPorts(design)) {
        return all;
    }
    for (std::uint32_t module = 0; module < design.hierarchy.modules.size(); ++module) {
        std::vector<MemoryRead> reads = readsOf(design, design.hierarchy.modules[module]);
        if (!reads.empty()) {
            all.emplace(module, std::move(reads));
        }
    }
    return all;
}

} // namespace kvr::netlistdb::analysis
