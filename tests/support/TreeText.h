#pragma once

#include <string>

namespace kvr::netlistdb {
class IVDBInstance;
class IVDBNetlist;
} // namespace kvr::netlistdb

namespace testsupport {

/// What a module lists, in its order, one line each:
///
///     bus d[3:0]: d[3] d[2] d[1] d[0]
///     auto q[1:0]: q[0] q[1]            a bus that the import made up
///     net n
///     port clk in                       in, out or other
std::string moduleText(const kvr::netlistdb::IVDBNetlist &module);

/// The tree below an instance, depth first, one line "name: module" each, indented by two blanks a level.
std::string treeText(const kvr::netlistdb::IVDBInstance &root);

} // namespace testsupport
