#pragma once

#include "design/JoinedNets.h"

#include <DataBase.h>
#include <vector>

namespace kvr::netlistdb {
class IClockDomain;
class IVDBInstance;
} // namespace kvr::netlistdb

namespace kvr::netlistdb::tool {

class SourceNetlists;

/// A net of the netlist database in an instance.
struct WirePlace {
    IVDBInstance *instance;
    const Verific::Net *net;
};

/// Follows clocks back to where they come from: up through the ports of modules, through clock buffers, and through
/// the pads of the design.
class ClockSource {
  public:
    /// @p sources must outlive the object.
    explicit ClockSource(const SourceNetlists &sources) : m_sources(sources) {}

    /// The nets from that of @p domain back to its source, which is the same for every domain of one clock. Empty when
    /// the net is not known.
    std::vector<WirePlace> wayTo(const IClockDomain &domain);

  private:
    const Verific::Net *above(const WirePlace &place);

    const SourceNetlists &m_sources;
    JoinedNets m_joined;
};

} // namespace kvr::netlistdb::tool
