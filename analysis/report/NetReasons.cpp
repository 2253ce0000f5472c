#include "analysis/report/NetReasons.h"

#include "analysis/report/NearestRegisters.h"

#include <DataBase.h>

#include <netlistdb/DesignDatabase.h>
#include <netlistdb/IVDBInstance.h>
#include <netlistdb/IVDBNet.h>
#include <netlistdb/IVDBNetlist.h>
#include <netlistdb/VDBHelper.h>

#include <algorithm>
#include <utility>

namespace kvr::netlistdb::analysis {

namespace {

/// What a net comes from when the registers of no clock reach it.
std::string originOf(std::uint32_t reached)
{
    std::string text;
    const auto add = [&](std::uint32_t flag, const char *name) {
        if ((reached & flag) != 0) {
            text.append(text.empty() ? "comes from " : ", ").append(name);
        }
    };
    add(REACHED_BY_INPUT_PORT, "an input of the design");
    add(REACHED_BY_BLACK_BOX, "a black box");
    add(REACHED_BY_LATCH, "a latch");
    add(REACHED_BY_LOOP, "a combinational loop");
    return text;
}

} // namespace

bool addRefusal(const IVDBNetBase &item, std::vector<NetReason> &reasons)
{
    if (item.isSelectableForDebugger()) {
        return false;
    }
    reasons.push_back({item.isProtected() ? ProbeReason::Protected : ProbeReason::ExcludedMemory, true, {}, {}});
    return true;
}

std::string NetReasons::namesOf(const std::vector<ReachingClock> &clocks) const
{
    std::string names;
    for (const ReachingClock &each : clocks) {
        names.append(names.empty() ? "" : ", ").append(m_clocks.clocks()[each.clock].name);
    }
    return names;
}

void NetReasons::setClock(const Place &place, const LaunchClocks &launch, ProbeBit &bit) const
{
    if (launch.clocks.empty()) {
        return;
    }
    const ClockId clock = launch.clocks.front().clock;
    bit.clock = clock;
    bit.edges = m_clocks.clocks()[clock].edges;
    if (bit.edges == (EDGE_RISE | EDGE_FALL)) {
        const std::uint8_t edges = launchEdges(m_clocks.state().design, place, m_clocks.state().table.numberOf(clock));
        bit.edges = edges != 0 ? edges : bit.edges;
    }
}

NetReason NetReasons::insideOfCell(const IVDBInstance *inst, const IVDBNet *net) const
{
    const DesignModel &design = m_clocks.state().design;
    auto *const cell = const_cast<IVDBInstance *>(inst);
    NetReason reason{ProbeReason::HardBlockPin, true, net->getName() + " of " + cell->getPath(), {}};
    if (const IVDBNetlist *const module = cell->getModule(); module != nullptr) {
        reason.evidence += " (" + module->getName() + ")";
    }
    reason.evidence += ", whose inside is not known";
    // What is on the pin from outside is a net of the design.
    const Verific::Instance *const source = design.database.sourceInstance(inst, design.source);
    const Verific::Net *const inside = design.database.sourceNet(net, design.source);
    if (source == nullptr || inside == nullptr) {
        return reason;
    }
    Verific::SetIter ports;
    const Verific::Port *port = nullptr;
    FOREACH_PORT_OF_NET (inside, ports, port) {
        IVDBNet *const outside = design.database.netItem(source->GetNet(port), design.source);
        if (outside != nullptr) {
            reason.instead = VDBHelper::getNetFullName(outside, cell->getOwnerInstance());
        }
    }
    return reason;
}

void NetReasons::findInDevice(const IVDBInstance *inst, IVDBNet *net, std::vector<NetReason> &reasons) const
{
    addRefusal(*net, reasons);
    Place place{{}, NONE};
    if (!findPlace(m_clocks.state(), inst, net, place)) {
        reasons.push_back(insideOfCell(inst, net));
        return;
    }
    if (const DevicePins::Wire *const wire = m_pins.find(place); wire != nullptr) {
        const std::string cell = wire->cell + " (" + wire->type + ")";
        if (wire->isPadSide) {
            reasons.push_back({ProbeReason::PadSide, true, "the I/O cell " + cell, wire->inside});
        } else {
            reasons.push_back(
                {ProbeReason::HardBlockPin,
                 wire->isPackagePin,
                 (wire->isPackagePin ? "between the package and " : "a wire between hard blocks, of ") + cell,
                 {}});
        }
    }
}

void NetReasons::findSource(const IVDBNet *net, const ElectricalNet &electrical, const LaunchClocks &launch,
                            std::vector<NetReason> &reasons) const
{
    const bool isStill = launch.clocks.empty() && launch.networks.empty() &&
                         (launch.reached & ~(REACHED_BY_CONSTANT | REACHED_BY_UNDRIVEN)) == 0;
    if (net->isPwr() || net->isGnd() || electrical.root == ClockRoot::Constant) {
        reasons.push_back({ProbeReason::Constant, true, "driven by a constant", {}});
    } else if (electrical.root == ClockRoot::Undriven) {
        const std::string begin = electrical.net != nullptr && electrical.net != net && electrical.instance != nullptr
                                      ? "begins at " + VDBHelper::getNetFullName(electrical.net, electrical.instance)
                                      : std::string();
        reasons.push_back({ProbeReason::Undriven, true, begin, {}});
    } else if (isStill && (launch.reached & REACHED_BY_UNDRIVEN) != 0) {
        reasons.push_back({ProbeReason::Undriven, true, "all that it is made from is undriven or constant", {}});
    } else if (isStill && launch.reached != 0) {
        reasons.push_back({ProbeReason::Constant, true, "made from constants alone", {}});
    } else if (electrical.clock) {
        const bool isDivided = electrical.root == ClockRoot::Register && !launch.clocks.empty();
        std::string evidence = "it is clock " + m_clocks.clocks()[*electrical.clock].name;
        evidence += electrical.inverted ? ", inverted" : "";
        evidence += isDivided ? "; a register makes it, so that the clock of that register can sample it" : "";
        reasons.push_back({ProbeReason::ClockNet, !isDivided, std::move(evidence), {}});
    } else if (launch.clocks.empty()) {
        reasons.push_back({ProbeReason::NoClock, false, originOf(launch.reached), {}});
    }
    if (launch.clocks.size() > 1) {
        const bool isInStep = std::all_of(launch.clocks.begin(), launch.clocks.end(), [&](const ReachingClock &each) {
            return m_clocks.related(each.clock, launch.clocks.front().clock);
        });
        reasons.push_back(
            {ProbeReason::SeveralClocks, false, namesOf(launch.clocks) + (isInStep ? ", in step" : ""), {}});
    }
}

bool NetReasons::find(const IVDBInstance *inst, IVDBNet *net, std::vector<NetReason> &reasons, ProbeBit &bit) const
{
    findInDevice(inst, net, reasons);
    Place place{{}, NONE};
    if (!net->isSelectableForDebugger() || !findPlace(m_clocks.state(), inst, net, place)) {
        return false;
    }
    const LaunchClocks launch = m_clocks.launch(inst, net);
    setClock(place, launch, bit);
    const ElectricalNet electrical = m_clocks.electrical(inst, net);
    bit.wire = {electrical.instance, electrical.net};
    findSource(net, electrical, launch, reasons);
    const CaptureClocks capture = m_clocks.capture(inst, net);
    if (capture.clocks.empty() && capture.reached == 0) {
        reasons.push_back(
            {ProbeReason::Unused, false, "no register, output or black box does: synthesis may remove it", {}});
    }
    return true;
}

} // namespace kvr::netlistdb::analysis
