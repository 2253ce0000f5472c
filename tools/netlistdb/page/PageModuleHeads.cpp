#include "page/PageModuleHeads.h"

#include "page/PageDesign.h"

#include <DataBase.h>
#include <algorithm>
#include <array>
#include <netlistdb/netlistdb.h>
#include <unordered_map>
#include <utility>

namespace kvr::netlistdb::tool {

namespace {

using analysis::CellModel;
using analysis::ModuleGraph;
using analysis::NONE;

/// Registers of the leaf cells of a module: pairs of what their clock pin is electrically, and how many.
Json registersOf(PageDesign &page, std::uint32_t number)
{
    const ModuleGraph &module = page.modules()[number];
    const analysis::ModuleClocks &clocks = page.model().clocks[number];
    std::unordered_map<std::uint64_t, std::size_t> places;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> uses;
    for (std::uint32_t cell = 0; cell < module.cellCount(); ++cell) {
        if (module.isSub(cell) || std::binary_search(module.repeats.begin(), module.repeats.end(), cell)) {
            continue;
        }
        const CellModel &model = page.model().hierarchy.models[module.modelOf(cell)];
        std::vector<std::uint32_t> counted;
        for (const CellModel::ClockPin &clock : model.clocks) {
            const std::uint32_t net = module.netsOf(cell)[clock.pin];
            if (net == NONE || std::find(counted.begin(), counted.end(), net) != counted.end()) {
                continue;
            }
            counted.push_back(net);
            const std::uint64_t code = pageCode(clocks.nets[net]);
            const auto [place, isNew] = places.try_emplace(code, uses.size());
            if (isNew) {
                uses.emplace_back(code, 0);
            }
            ++uses[place->second].second;
        }
    }
    Json list = Json::array();
    for (const auto &[code, registers] : uses) {
        list.insert(list.end(), {code, registers});
    }
    return list;
}

/// What is on the ports of an instance that lead clocks to registers: pairs of port and electrical net.
Json clockPortsOf(PageDesign &page, std::uint32_t above, const ModuleGraph::SubInstance &sub)
{
    const analysis::ModuleClocks &clocks = page.model().clocks[above];
    const std::vector<bool> &clockPorts = page.model().clocks[sub.module].clockPorts;
    const analysis::Span<std::uint32_t> nets = page.modules()[above].netsOf(sub.cell);
    Json list = Json::array();
    for (std::size_t port = 0; port < clockPorts.size(); ++port) {
        if (clockPorts[port] && nets[port] != NONE) {
            list.insert(list.end(), {Json(port), Json(pageCode(clocks.nets[nets[port]]))});
        }
    }
    return list;
}

const char *textOf(analysis::CellKind kind)
{
    constexpr std::array TEXTS = {
        "logic",        "multiplexer",     "buffer",   "pad",    "clock gate", "clock multiplexer",
        "constant",     "flip-flop",       "latch",    "memory", "DSP",        "shift register",
        "DDR register", "clock generator", "black box"};
    static_assert(TEXTS.size() == static_cast<std::size_t>(analysis::CellKind::BlackBox) + 1);
    return TEXTS[static_cast<std::size_t>(kind)];
}

} // namespace

std::string netlistNameOf(const Verific::DesignObj *object)
{
    const char *const name = object != nullptr ? object->Name() : nullptr;
    return name != nullptr ? name : "";
}

Json moduleHeadOf(PageDesign &page, std::uint32_t number)
{
    const ModuleGraph &module = page.modules()[number];
    IVDBInstance *const instance = page.instanceOf(number);
    Json head;
    if (instance != nullptr) {
        IVDBNetlist &item = *instance->getModule();
        head["name"] = page.design().nameOf(item);
        head["module"] = item.getName();
        head["library"] = item.GetLibName();
        if (const IVDBLineInfo *const source = item.getLineInfo()) {
            head["place"] = {page.fileNumber(source->getFilePath()), source->getLineNumber()};
        }
    } else {
        head["name"] = netlistNameOf(module.netlist->Owner());
        head["module"] = head["name"];
        head["library"] = "";
    }
    head["clocks"] = page.model().clocks[number].roots.size();
    head["ports"] = module.ports.size();
    head["nets"] = module.netCount();
    head["signals"] = page.probesOf(number).size();
    head["cells"] = module.cellCount() - module.subs.size();
    head["registers"] = registersOf(page, number);
    Json subs = Json::array();
    for (const ModuleGraph::SubInstance &sub : module.subs) {
        subs.push_back({netlistNameOf(sub.instance), sub.module, sub.cell, clockPortsOf(page, number, sub)});
    }
    head["subs"] = std::move(subs);
    return head;
}

Json cellKindsOf(PageDesign &page)
{
    Json kinds = Json::array();
    const analysis::CellModels &models = page.model().hierarchy.models;
    for (std::uint32_t number = 0; number < models.size(); ++number) {
        const CellModel &model = models[number];
        Json pins = Json::array();
        for (const CellModel::Pin &pin : model.pins) {
            const int direction = pin.isBorrowed ? 0 : (pin.isInput ? 1 : 0) + (pin.isOutput ? 2 : 0);
            pins.push_back({netlistNameOf(pin.port), direction, pin.role == analysis::PinRole::Clock});
        }
        kinds.push_back({{"name", netlistNameOf(model.view != nullptr ? model.view->Owner() : nullptr)},
                         {"kind", textOf(model.kind)},
                         {"register", model.isRegister()},
                         {"pins", std::move(pins)}});
    }
    return kinds;
}

} // namespace kvr::netlistdb::tool
