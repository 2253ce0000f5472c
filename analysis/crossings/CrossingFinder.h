#pragma once

#include "analysis/crossings/CellFunctions.h"
#include "analysis/crossings/ClockRelations.h"
#include "analysis/crossings/Cones.h"
#include "analysis/crossings/CrossingEnds.h"
#include "analysis/crossings/CrossingPins.h"
#include "analysis/crossings/Synchronizers.h"

#include <netlistdb/analysis/Crossings.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

namespace kvr::netlistdb::analysis {

class ClockTable;
class Controls;

/// Where a way from one clock to another ends.
struct CrossingTarget {
    PinPlace pin; ///< pin NONE: a memory as a whole
    std::uint32_t capture;
    std::uint32_t launched; ///< set of all clocks that reach the pin
};

/// A way from registers of one clock to a pin that another one captures.
struct CrossingPath : CrossingTarget {
    explicit CrossingPath(const CrossingTarget &target) : CrossingTarget(target) {}

    PinPlace source{}; ///< output of the nearest register; cell NONE: a port of the top
    Node sourceNode = NONE;
    Cones::Reach reach;
    FlipFlopChain chain;
    Node control = NONE;
    bool isHeld = false;
    Node meets = NONE;
    std::uint32_t kinds = 0; ///< mask of CrossingClass
    CrossingEnd from{};
    CrossingEnd to{};

    void is(CrossingClass kind) { kinds |= 1U << static_cast<unsigned>(kind); }
    bool isSynchronized() const { return chain.stages.size() > 1; }
    /// True for one register bit straight into a synchronizer.
    bool isDirect() const { return isSynchronized() && !reach.hasLogic && !reach.hasSeveral; }
};

/// Finds and classifies the crossings of a design, one launch clock after the other.
class CrossingFinder {
  public:
    CrossingFinder(const DesignModel &design, const ClockTable &table, ClockRelations relations);

    /// All crossings, in no particular order.
    std::vector<Crossing> find();

  private:
    void unfold();
    void addPin(std::uint32_t context, const PinOfCell &pin);
    void addMemory(std::uint32_t context, std::uint32_t cell);
    bool isExcluded(std::uint32_t launch, std::uint32_t capture) const;

    void follow(std::uint32_t launch, const std::vector<CrossingTarget> &targets);
    void classifyReset(std::uint32_t launch, CrossingPath &path);
    void classifyPair(std::uint32_t launch, std::uint32_t capture, const Cones &cones,
                      const std::vector<CrossingPath *> &paths);
    void classifyTarget(std::uint32_t launch, CrossingPath &path, Controls &controls);
    void classifyDirect(std::uint32_t launch, const std::vector<CrossingPath *> &paths);
    void classifyBuses(const std::vector<CrossingPath *> &paths);
    bool isGray(const std::vector<CrossingPath *> &bits);
    bool isUnclockedRead(const PinPlace &source) const;
    bool related(std::uint32_t a, std::uint32_t b);
    bool hasSeveralClocks(const CrossingPath &path);
    /// Takes the ends out of @p path.
    Crossing report(std::uint32_t launch, CrossingPath &path);

    const DesignModel &m_model;
    const ClockTable &m_table;
    ClockRelations m_relations;
    Unfolding m_design;
    Registers m_registers;
    CellFunctions m_functions;
    Synchronizers m_synchronizers;
    CrossingEnds m_ends;
    std::map<std::uint32_t, std::vector<CrossingTarget>> m_targets; ///< by launch clock
    std::vector<Crossing> m_found;
};

} // namespace kvr::netlistdb::analysis
