#pragma once

#include "analysis/probe/Simulator.h"

#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis::probe {

/// What was seen of every wire in the course of a simulation, in a few words: wires that were always equal, or always
/// the inverse of each other, have the same hash.
class Signatures {
  public:
    void clear(std::size_t signals)
    {
        m_seen.assign(signals, {});
        m_flags.assign(signals, 0);
    }

    /// Adds the values in @p lanes of one moment.
    void sample(const Simulator &simulator, std::uint64_t lanes)
    {
        for (Signal signal = 0; signal < m_seen.size(); ++signal) {
            add(signal, simulator[signal], lanes);
        }
    }
    /// The same for some wires alone.
    void sample(const Simulator &simulator, std::uint64_t lanes, const std::vector<Signal> &signals)
    {
        for (const Signal signal : signals) {
            add(signal, simulator[signal], lanes);
        }
    }

    std::uint64_t hash(Signal signal) const { return m_seen[signal].hash; }
    /// True when it was known in every moment.
    bool isKnown(Signal signal) const { return (m_flags[signal] & UNKNOWN_ONCE) == 0; }
    /// True when the hash is that of the inverse.
    bool isInverted(Signal signal) const { return (m_flags[signal] & INVERTED) != 0; }
    /// In how many runs it was 0 and in how many it was 1, whichever is less.
    unsigned activity(Signal signal) const;

  private:
    enum Flag : std::uint8_t { UNKNOWN_ONCE = 1, STARTED = 2, INVERTED = 4 };

    void add(Signal signal, const Lanes &value, std::uint64_t lanes)
    {
        std::uint8_t &flags = m_flags[signal];
        if ((~value.known() & lanes) != 0) {
            flags |= UNKNOWN_ONCE;
            return;
        }
        if ((flags & STARTED) == 0) {
            flags |= STARTED | ((value.one & (lanes & (~lanes + 1))) != 0 ? INVERTED : 0);
        }
        Seen &own = m_seen[signal];
        own.ones |= value.one & lanes;
        own.zeros |= value.zero & lanes;
        const std::uint64_t seen = ((flags & INVERTED) != 0 ? value.zero : value.one) & lanes;
        own.hash = (own.hash ^ seen) * 0x9E3779B97F4A7C15ULL;
        own.hash ^= own.hash >> 29;
    }

    struct Seen {
        std::uint64_t hash;
        std::uint64_t ones;  ///< runs in which it was 1 at some time
        std::uint64_t zeros; ///< the same for 0
    };
    std::vector<Seen> m_seen;
    std::vector<std::uint8_t> m_flags;
};

} // namespace kvr::netlistdb::analysis::probe
