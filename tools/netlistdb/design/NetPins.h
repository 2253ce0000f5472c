#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

namespace Verific {
class Netlist;
} // namespace Verific

namespace kvr::netlistdb {
class IVDBInstance;
class IVDBNet;
} // namespace kvr::netlistdb

namespace kvr::netlistdb::tool {

class Design;

/// A pin of a cell, or a port of the top.
struct NetPin {
    std::string path; ///< of the cell; the name of the port
    std::string type; ///< name of the module of the cell; empty for a port
    std::string pin;  ///< empty for a port
};

/// What a net connects: cells at every level that ports lead to, those nearest to it first.
struct NetPins {
    std::vector<NetPin> drivers; ///< outputs, and inputs of the top; inout pins are drivers and loads
    std::vector<NetPin> loads;
    std::uint64_t loadCount = 0; ///< listed or not
    bool isWhole = true;         ///< false: there are so many pins that not all have been looked at
};

/// Follows nets through the ports of instances, up and down, as far as the cells.
class NetPinFinder {
  public:
    /// @p design has clocks, and must outlive the object.
    explicit NetPinFinder(Design &design);
    /// Lists @p most drivers and @p most loads at most. Takes time in proportion to the pins, of which it looks at some
    /// thousands at most.
    NetPins pinsOf(IVDBInstance &instance, const IVDBNet &net, std::size_t most) const;

  private:
    Design &m_design;
    std::unordered_set<const Verific::Netlist *> m_modules; ///< those with contents
};

} // namespace kvr::netlistdb::tool
