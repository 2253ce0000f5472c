#include "model/LiveItems.h"

#include <netlistdb/VDBLiveItems.h>

namespace kvr::netlistdb {

std::array<unsigned, 6> &liveItemBlock()
{
    static auto *const block = new std::array<unsigned, 6>{};
    return *block;
}

std::array<unsigned, 6> liveItemCounts()
{
    return liveItemBlock();
}

} // namespace kvr::netlistdb
