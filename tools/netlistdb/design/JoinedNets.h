#pragma once

#include <unordered_map>
#include <vector>

namespace Verific {
class Net;
class Netlist;
class Port;
} // namespace Verific

namespace kvr::netlistdb::tool {

/// Tells which nets of a netlist are one wire because some instance connects the one through to the other: two of its
/// ports meet one net inside, at whatever depth.
class JoinedNets {
  public:
    /// One of the nets on the wire of @p net, the same one for each of them.
    const Verific::Net *wireOf(const Verific::Net &net);
    /// A port of the netlist that meets the wire, or null.
    const Verific::Port *portOf(const Verific::Net &wire);

  private:
    struct Module {
        std::unordered_map<const Verific::Net *, const Verific::Net *> leaders; ///< of nets that are not alone
        std::unordered_map<const Verific::Net *, const Verific::Port *> ports;  ///< by wire, where nets are joined
        std::vector<std::vector<const Verific::Port *>> shorts;                 ///< ports that meet one wire
    };

    static const Verific::Net *leaderOf(const Module &module, const Verific::Net *net);
    Module &moduleOf(const Verific::Netlist &netlist);
    void fill(Module &module, const Verific::Netlist &netlist);

    std::unordered_map<const Verific::Netlist *, Module> m_modules;
};

} // namespace kvr::netlistdb::tool
