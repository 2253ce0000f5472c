#pragma once

#include <string>
#include <unordered_map>
#include <vector>

namespace kvr::netlistdb {
class IClockDomain;
class IVDBInstance;
} // namespace kvr::netlistdb

namespace kvr::netlistdb::tool {

class Design;

/// The clock domains of @p design in the order of the netlist: by instance from the top down, then in the order of the
/// module's nets, those of buses first. The database itself keeps them in no order that two runs share.
std::vector<IClockDomain *> clocksInOrder(Design &design);

/// Names of the nets that begin a clock domain, by the instance they lie in, in the same order.
using ClocksByInstance = std::unordered_map<const IVDBInstance *, std::vector<std::string>>;
ClocksByInstance clocksByInstance(Design &design);

} // namespace kvr::netlistdb::tool
