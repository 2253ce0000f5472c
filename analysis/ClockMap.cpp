#include "analysis/ClockMapState.h"
#include "analysis/LaunchCounts.h"
#include "analysis/Proof.h"

#include <netlistdb/DesignDatabase.h>
#include <netlistdb/IVDBInstance.h>
#include <netlistdb/IVDBNet.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace kvr::netlistdb::analysis {

namespace {

bool isNearer(const ReachingClock &a, const ReachingClock &b)
{
    return a.cells != b.cells ? a.cells < b.cells : a.clock < b.clock;
}

} // namespace

const char *nameOf(ClockRoot root)
{
    switch (root) {
    case ClockRoot::Port:
        return "port";
    case ClockRoot::BlackBox:
        return "black-box";
    case ClockRoot::Register:
        return "register";
    case ClockRoot::Logic:
        return "logic";
    case ClockRoot::Constant:
        return "constant";
    case ClockRoot::Undriven:
        return "undriven";
    }
    return "";
}

void requireCurrent(const ClockMap::State &map)
{
    if (map.design.database.generation(map.design.source) != map.design.generation) {
        throw std::logic_error("ClockMap: the source has been reset or imported anew");
    }
}

bool findPlace(const ClockMap::State &map, const IVDBInstance *inst, const IVDBNet *net, Place &place)
{
    requireCurrent(map);
    const DesignModel::ModuleNet found = map.design.find(net);
    const bool isInside = map.design.find(inst, place.context);
    if (!isInside || found.module == NONE) {
        return false;
    }
    if (place.context.back().module != found.module) {
        throw std::invalid_argument("ClockMap: the net is no net of the instance");
    }
    place.net = found.net;
    return true;
}

ClockMap::ClockMap(DesignDatabase &database, IDesignDatabase::SOURCE_TYPE source)
    : m_state(std::make_unique<State>(database, source))
{
}

ClockMap::~ClockMap() = default;
ClockMap::ClockMap(ClockMap &&) noexcept = default;
ClockMap &ClockMap::operator=(ClockMap &&) noexcept = default;

const std::vector<Clock> &ClockMap::clocks() const
{
    requireCurrent(*m_state);
    return m_state->table.clocks();
}

std::optional<ClockId> ClockMap::find(std::string_view name) const
{
    const std::vector<Clock> &all = clocks();
    const auto named = std::lower_bound(
        all.begin(), all.end(), name, [](const Clock &clock, std::string_view wanted) { return clock.name < wanted; });
    if (named != all.end() && named->name == name) {
        return static_cast<ClockId>(named - all.begin());
    }
    const auto other = std::find_if(all.begin(), all.end(), [&](const Clock &clock) {
        return std::binary_search(clock.names.begin(), clock.names.end(), name);
    });
    return other != all.end() ? std::optional<ClockId>(static_cast<ClockId>(other - all.begin())) : std::nullopt;
}

LaunchClocks ClockMap::launch(const IVDBInstance *inst, const IVDBNet *net) const
{
    LaunchClocks result;
    Place place{{}, NONE};
    if (!findPlace(*m_state, inst, net, place)) {
        result.reached = REACHED_BY_BLACK_BOX;
        return result;
    }
    const BoundSet bound = boundLaunch(m_state->design, place.context, place.net);
    result.reached = bound.flags;
    for (const BoundClock &each : bound.clocks) {
        const ClockId clock = m_state->table.idOf(each.clock);
        if (clock != NONE) {
            (each.isNetwork ? result.networks : result.clocks).push_back({clock, each.cells});
        }
    }
    std::sort(result.clocks.begin(), result.clocks.end(), isNearer);
    std::sort(result.networks.begin(), result.networks.end(), isNearer);
    return result;
}

CaptureClocks ClockMap::capture(const IVDBInstance *inst, const IVDBNet *net) const
{
    CaptureClocks result;
    Place place{{}, NONE};
    if (!findPlace(*m_state, inst, net, place)) {
        result.reached = REACHES_BLACK_BOX;
        return result;
    }
    const BoundSet bound = boundCapture(m_state->design, place.context, place.net);
    result.reached = bound.flags;
    for (const BoundClock &each : bound.clocks) {
        result.clocks.push_back({m_state->table.idOf(each.clock), each.roles});
    }
    std::sort(result.clocks.begin(), result.clocks.end(),
              [](const CapturingClock &a, const CapturingClock &b) { return a.clock < b.clock; });
    return result;
}

ElectricalNet ClockMap::electrical(const IVDBInstance *inst, const IVDBNet *net) const
{
    Place place{{}, NONE};
    if (!findPlace(*m_state, inst, net, place)) {
        return {const_cast<IVDBInstance *>(inst), const_cast<IVDBNet *>(net), ClockRoot::BlackBox, false, std::nullopt};
    }
    const DesignModel &design = m_state->design;
    const ElectricalRoot root = electricalRoot(design, place);
    const ClockId clock = root.clock != NONE ? m_state->table.idOf(root.clock) : NONE;
    return {design.itemOf(root.place.context), design.itemOf(root.place),
            kindOfRoot(design, root.place.context.back().module, root.place.net), root.inverted,
            clock != NONE ? std::optional<ClockId>(clock) : std::nullopt};
}

LaunchProof ClockMap::why(const IVDBInstance *inst, const IVDBNet *net) const
{
    Place place{{}, NONE};
    if (!findPlace(*m_state, inst, net, place)) {
        ChainStep inside{
            StepKind::End, const_cast<IVDBInstance *>(inst), const_cast<IVDBNet *>(net), {}, {}, {}, {}, {}, {}};
        inside.netName = inst->getPath() + "/" + net->getName();
        return {{}, {}, {{REACHED_BY_BLACK_BOX, {std::move(inside)}}}};
    }
    return prove(*m_state, place);
}

bool ClockMap::related(ClockId a, ClockId b) const
{
    requireCurrent(*m_state);
    return m_state->table.related(a, b);
}

NetCounts ClockMap::countNets() const
{
    requireCurrent(*m_state);
    return kvr::netlistdb::analysis::countNets(m_state->design, m_state->table);
}

std::size_t ClockMap::memory() const
{
    requireCurrent(*m_state);
    return m_state->design.memory() + m_state->table.memory();
}

} // namespace kvr::netlistdb::analysis
