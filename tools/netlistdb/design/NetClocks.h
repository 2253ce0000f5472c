#pragma once

#include <string>
#include <vector>

namespace kvr::netlistdb {
class IVDBInstance;
class IVDBItem;
} // namespace kvr::netlistdb

namespace kvr::netlistdb::tool {

class Design;

/// Names of the clock domains that drive @p item, a net or bus seen in @p instance: each once, in the order of the
/// bits; none for what no clock drives.
void findClocks(Design &design, IVDBInstance &instance, IVDBItem &item, std::vector<std::string> &clocks);

} // namespace kvr::netlistdb::tool
