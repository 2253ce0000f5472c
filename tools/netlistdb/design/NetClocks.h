#pragma once

#include <string>
#include <vector>

namespace kvr::netlistdb {
class IVDBInstance;
class IVDBNet;
} // namespace kvr::netlistdb

namespace kvr::netlistdb::tool {

class Design;

/// Names of the clocks that drive @p nets, seen in @p instance: each once, in the order of the nets; none for what no
/// clock drives.
void findClocks(Design &design, IVDBInstance &instance, const std::vector<IVDBNet *> &nets,
                std::vector<std::string> &clocks);

} // namespace kvr::netlistdb::tool
