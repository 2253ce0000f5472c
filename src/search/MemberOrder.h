#pragma once

#include <netlistdb/VDBSearchParam.h>

#include <vector>

namespace kvr::netlistdb {

class IVDBNetBase;

/// Sorts buses and nets by name, then by width, each only when asked for; the width order is the one that holds.
/// Entries must not be null.
void orderMembers(std::vector<IVDBNetBase *> &members, SortOrder byName, SortOrder byWidth);

} // namespace kvr::netlistdb
