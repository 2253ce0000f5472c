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
        const Lanes *const values = simulator.values().data();
        Seen *const seen = m_seen.data();
        std::uint8_t *const flags = m_flags.data();
        for (std::size_t signal = 0, count = m_seen.size(); signal < count; ++signal) {
            flags[signal] = added(seen[signal], flags[signal], values[signal], lanes);
        }
    }
    /// The same for some wires alone.
    void sample(const Simulator &simulator, std::uint64_t lanes, const std::vector<Signal> &signals)
    {
        const Lanes *const values = simulator.values().data();
        Seen *const seen = m_seen.data();
        std::uint8_t *const flags = m_flags.data();
        for (const Signal *signal = signals.data(), *const end = signal + signals.size(); signal != end; ++signal) {
            if (signal + FETCHED_AHEAD < end) {
                __builtin_prefetch(values + signal[FETCHED_AHEAD]);
                __builtin_prefetch(seen + signal[FETCHED_AHEAD], 1);
            }
            flags[*signal] = added(seen[*signal], flags[*signal], values[*signal], lanes);
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

    struct Seen {
        std::uint64_t hash;
        std::uint64_t ones;  ///< runs in which it was 1 at some time
        std::uint64_t zeros; ///< the same for 0
    };

    /// Adds a value to what was seen; returns the new flags.
    static std::uint8_t added(Seen &own, std::uint8_t flags, const Lanes &value, std::uint64_t lanes)
    {
        if ((~value.known() & lanes) != 0) {
            return flags | UNKNOWN_ONCE;
        }
        if ((flags & STARTED) == 0) {
            flags |= STARTED | ((value.one & (lanes & (~lanes + 1))) != 0 ? INVERTED : 0);
        }
        const std::uint64_t ones = value.one & lanes;
        const std::uint64_t zeros = value.zero & lanes;
        own.ones |= ones;
        own.zeros |= zeros;
        own.hash = (own.hash ^ ((flags & INVERTED) != 0 ? zeros : ones)) * 0x9E3779B97F4A7C15ULL;
        own.hash ^= own.hash >> 29;
        return flags;
    }

    std::vector<Seen> m_seen;
    std::vector<std::uint8_t> m_flags;
};

} // namespace kvr::netlistdb::analysis::probe
