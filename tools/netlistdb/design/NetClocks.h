#pragma once

#include <string>
#include <vector>

namespace kvr::netlistdb {
class IVDBInstance;
class IVDBNet;
} // namespace kvr::netlistdb

namespace kvr::netlistdb::tool {

class Design;

/// Names of the clocks whose registers reach @p nets, seen in @p instance: each once, in the order of the nets, and of
/// one net the nearest first. Null nets have none.
void findClocks(Design &design, const IVDBInstance &instance, const std::vector<IVDBNet *> &nets,
                std::vector<std::string> &clocks);

} // namespace kvr::netlistdb::tool
