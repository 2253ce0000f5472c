#pragma once

#include "clock/DrivingPins.h"
#include "clock/SubInstanceIndex.h"
#include "clock/VisitedPairs.h"
#include "netlist/AddressMap.h"

#include <netlistdb/IDesignDatabase.h>

#include <cstddef>
#include <deque>
#include <unordered_map>
#include <utility>

namespace kvr::netlistdb {

class IClockDomain;

/// Hash of an (instance, net) pair.
struct InstanceNetHash {
    std::size_t operator()(const std::pair<IVDBInstance *, IVDBNet *> &pair) const
    {
        const auto instance = reinterpret_cast<std::size_t>(pair.first);
        const auto net = reinterpret_cast<std::size_t>(pair.second);
        return ((net >> 4) ^ (instance << 7)) * 0x9E3779B97F4A7C15u >> 12;
    }
};

/// A net that a post-map trace has put in line, with its item still to be looked up: most queries end before most of
/// the nets in line have their turn.
struct WaitingNet {
    IVDBInstance *instance;
    const Verific::Net *net;
    std::size_t visited; ///< pairs visited when it was put in line: one of those is not visited again
};

/// What a clock query keeps beside the database's tables and caches, so that no query walks one of them.
struct ClockState {
    using Pair = std::pair<IVDBInstance *, IVDBNet *>;

    /// From a pair to the first domain of the pair cache that holds it: per instance, from net to domain.
    std::unordered_map<IVDBInstance *, AddressMap> firstDomains;
    /// From operator and primitive instances of the elaborated source to the answer recorded for them.
    AddressMap elaboratedAnswers;
    /// From a pair to the first record of the elaborated [0] and post-map [1] table that names it.
    using Records = std::unordered_map<Pair, IClockDomain *, InstanceNetHash>;
    Records records[2];
    Records &recordsOf(IDesignDatabase::SOURCE_TYPE type)
    {
        return records[type == IDesignDatabase::SOURCE_ELABORATED ? 0 : 1];
    }

    /// Answers of elaborated queries from every so manieth pair of a long way: see LongWay.
    std::unordered_map<Pair, IClockDomain *, InstanceNetHash> landmarks;

    SubInstanceIndex subInstances;
    DrivingPins drivingPins;

    // Storage of the running query, kept for the next one.
    std::deque<Pair> queue;
    std::deque<WaitingNet> fanIn;
    VisitedPairs visited;
    VisitedPairs deadEnds;
};

} // namespace kvr::netlistdb
