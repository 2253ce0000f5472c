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

/// @p domains in the order of the netlist: by instance from @p root down, then in the order of the module's nets, those
/// of buses first. The database itself keeps them in no order that two runs share.
std::vector<IClockDomain *> domainsInOrder(IVDBInstance &root, const std::vector<IClockDomain *> &domains);

/// Names of the nets that begin a clock of @p design, by the instance they lie in, in the same order.
using ClocksByInstance = std::unordered_map<const IVDBInstance *, std::vector<std::string>>;
ClocksByInstance clocksByInstance(Design &design);

} // namespace kvr::netlistdb::tool
