#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace kvr::netlistdb {
class IVDBLineInfo;
class IVDBNet;
class IVDBNetBase;
class IVDBNetlist;
} // namespace kvr::netlistdb

namespace kvr::netlistdb::tool {

class Design;

/// Something in a module that one may want to probe: a net, or a vector as the user declared it, also when some of its
/// bits have other names.
struct Probe {
    std::string name;
    bool isBus = false;
    std::uint64_t width = 1;
    bool declared = false; ///< by the user
    const IVDBLineInfo *source = nullptr;
    const IVDBNetBase *item = nullptr; ///< null for what is neither a net nor a bus of the netlist
    std::vector<IVDBNet *> bits;       ///< null for bits that are tied to constants
    std::vector<std::string> aliases;
    std::vector<std::string> sources; ///< all that is known of where it comes from, as the netlist has it
};

/// The probes of @p module: buses, then vectors of which some bits have other names, then nets, in the order of the
/// netlist. Every net is in one of them, and so is what the user declared and tied to constants.
std::vector<Probe> probesOf(Design &design, IVDBNetlist &module);

/// The probes of the modules of a design, found when they are first asked for, once.
class ProbeLists {
  public:
    /// @p design must outlive the object.
    explicit ProbeLists(Design &design) : m_design(design) {}
    Design &design() const { return m_design; }
    /// Those of @p module; none of a black box. Stays where it is.
    const std::vector<Probe> &of(IVDBNetlist &module);

  private:
    Design &m_design;
    std::unordered_map<const IVDBNetlist *, std::vector<Probe>> m_probes;
};

} // namespace kvr::netlistdb::tool
