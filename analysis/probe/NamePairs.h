#pragma once

#include "analysis/probe/BitGraph.h"

#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis::probe {

/// An elaborated and a post-map wire.
struct WirePair {
    Signal elaborated;
    Signal postMap;

    friend bool operator==(const WirePair &a, const WirePair &b)
    {
        return a.elaborated == b.elaborated && a.postMap == b.postMap;
    }
    friend bool operator<(const WirePair &a, const WirePair &b)
    {
        return a.elaborated != b.elaborated ? a.elaborated < b.elaborated : a.postMap < b.postMap;
    }
};

/// What has the same name in both netlists.
struct NamePairs {
    NamePairs(const BitGraph &elaborated, const BitGraph &postMap);

    std::vector<WirePair> wires; ///< in ascending order, each once; no constants
};

/// Outputs of cells of which only the pins are known, where both netlists have the same cell: by path and type, or the
/// only one of its type.
std::vector<WirePair> pairOpaqueCells(const BitGraph &elaborated, const BitGraph &postMap);

} // namespace kvr::netlistdb::analysis::probe
