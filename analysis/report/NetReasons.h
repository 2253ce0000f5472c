#pragma once

#include "analysis/ClockMapState.h"
#include "analysis/report/DevicePins.h"

#include <netlistdb/analysis/ProbeReport.h>

#include <string>
#include <vector>

namespace kvr::netlistdb::analysis {

/// A reason that holds for one net.
struct NetReason {
    ProbeReason reason;
    bool bars;
    std::string evidence;
    std::string instead;
};

/// What the netlist of one form has against probing its nets.
class NetReasons {
  public:
    explicit NetReasons(const ClockMap &clocks) : m_clocks(clocks), m_pins(clocks.state().design) {}

    const ClockMap &clocks() const { return m_clocks; }
    /// Adds the reasons for @p net, seen in @p inst, and sets clock, edges and wire in @p bit. Returns false when
    /// nobody may see the net, or it is none of those that are looked into.
    bool find(const IVDBInstance *inst, IVDBNet *net, std::vector<NetReason> &reasons, ProbeBit &bit) const;
    /// Adds those among them that follow from where the net lies in the device, and those that it is refused for.
    void findInDevice(const IVDBInstance *inst, IVDBNet *net, std::vector<NetReason> &reasons) const;

  private:
    /// Adds the reasons that follow from what the net comes from.
    void findSource(const IVDBNet *net, const ElectricalNet &electrical, const LaunchClocks &launch,
                    std::vector<NetReason> &reasons) const;
    void setClock(const Place &place, const LaunchClocks &launch, ProbeBit &bit) const;
    std::string namesOf(const std::vector<ReachingClock> &clocks) const;
    NetReason insideOfCell(const IVDBInstance *inst, const IVDBNet *net) const;

    const ClockMap &m_clocks;
    DevicePins m_pins;
};

/// Adds why the database refuses @p item for probing, if it does; returns whether it does.
bool addRefusal(const IVDBNetBase &item, std::vector<NetReason> &reasons);

} // namespace kvr::netlistdb::analysis
