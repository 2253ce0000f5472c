#include "clock/LongWay.h"

#include "netlist/VDBObjectPool.h"
#include "netlist/verific_queries.h"

#include <netlistdb/IVDBInstance.h>

#include <algorithm>

namespace kvr::netlistdb {

IClockDomain *const *LongWay::find(const ClockState::Pair &pair) const
{
    const auto found = m_state.landmarks.find(pair);
    return found != m_state.landmarks.end() ? &found->second : nullptr;
}

void LongWay::keep(const VDBObjectPool &pool, IClockDomain *answer)
{
    // An instance of an operator or primitive, should it have nets inside, may get an entry in the instance cache
    // later.
    const auto mayGetAnEntry = [&pool](const ClockState::Pair &pair) {
        const Verific::Netlist *netlist = pool.find(pair.first->getModule());
        return netlist == nullptr || verific_queries::isGenericCell(*netlist);
    };
    if (std::any_of(m_state.visited.begin(), m_state.visited.end(), mayGetAnEntry)) {
        return;
    }
    std::size_t position = 0;
    for (const ClockState::Pair &pair : m_state.visited) {
        if (position++ % STRIDE == 0) {
            m_state.landmarks.emplace(pair, answer);
        }
    }
}

} // namespace kvr::netlistdb
