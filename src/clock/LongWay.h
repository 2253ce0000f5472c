#pragma once

#include "clock/ClockState.h"

#include <cstddef>

namespace kvr::netlistdb {

class VDBObjectPool;

/// A query that has so far gone through module boundaries alone, each pair leading to one other. From any pair of such
/// a way a query of its own would answer the same, now and until the next import: what it depends on are netlists and
/// entries of the instance cache, which keep the first answer. The answers of a few pairs of long ways are therefore
/// kept, so that to ask for all nets of a deep hierarchy does not take the way through all levels for each.
///
/// Short ways, all that people's designs have, keep nothing and cost nothing.
class LongWay {
  public:
    explicit LongWay(ClockState &state) : m_state(state) {}

    /// To be called with each pair that the query comes to, after it was added to the visited ones. @p goesOn tells
    /// whether it is the only one that was in line, with no operator passed and no pair met again.
    /// @return the answer of an earlier query, or null when none is known
    IClockDomain *const *arrive(const ClockState::Pair &pair, bool goesOn)
    {
        m_goesOn = m_goesOn && goesOn;
        return m_goesOn && m_state.visited.size() >= LONG ? find(pair) : nullptr;
    }
    /// To be called when the query has its answer. @p goesOn as above, with nothing left in line.
    void end(const VDBObjectPool &pool, bool goesOn, IClockDomain *answer)
    {
        if (m_goesOn && goesOn && m_state.visited.size() >= LONG) {
            keep(pool, answer);
        }
    }

  private:
    static constexpr std::size_t LONG = 64;   ///< in pairs
    static constexpr std::size_t STRIDE = 32; ///< of the pairs whose answer is kept

    IClockDomain *const *find(const ClockState::Pair &pair) const;
    void keep(const VDBObjectPool &pool, IClockDomain *answer);

    ClockState &m_state;
    bool m_goesOn = true;
};

} // namespace kvr::netlistdb
