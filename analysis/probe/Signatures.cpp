#include "analysis/probe/Signatures.h"

#include <algorithm>
#include <bitset>

namespace kvr::netlistdb::analysis::probe {

unsigned Signatures::activity(Signal signal) const
{
    const std::size_t ones = std::bitset<64>(m_seen[signal].ones).count();
    const std::size_t zeros = std::bitset<64>(m_seen[signal].zeros).count();
    return static_cast<unsigned>(std::min(ones, zeros));
}

} // namespace kvr::netlistdb::analysis::probe
