#pragma once

#include <netlistdb/Export.h>

#include <array>

namespace kvr::netlistdb {

/// Numbers of live objects in this process, for leak tests and diagnosis: VDBLineInfo, VDBNetlist, VDBInstance,
/// VDBNet, VDBNetBus, VDBPort, in this order. Counted without synchronisation: exact while one thread builds and
/// deletes items.
NETLISTDB_EXPORT std::array<unsigned, 6> liveItemCounts();

} // namespace kvr::netlistdb
