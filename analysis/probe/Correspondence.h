#pragma once

#include "analysis/probe/Bench.h"
#include "analysis/probe/Signatures.h"

#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis::probe {

/// Which wires of two netlists carry the same value: van Eijk's signal correspondence, by simulation.
///
/// First both netlists run from reset. Registers that behaved alike are taken for the same one (a class), and so are
/// those of one name that nothing contradicts. Then the netlists run on while all registers of a class are given one
/// random value in half of the runs at a time: a class whose members then take over different values falls apart, and
/// registers that only now behave alike make new ones. That is repeated until nothing changes. In the last run every
/// wire that nothing unknown reaches depends on the registers of the classes, on inputs and on state that followed from
/// them, so that two wires that were always equal are so as far as random values tell.
class Correspondence {
  public:
    Correspondence(const BitGraph &elaborated, const BitGraph &postMap);

    enum Side : std::uint8_t { ELABORATED, POST_MAP };

    const NamePairs &names() const { return m_names; }
    const Signatures &fromReset(Side side) const { return m_fromReset[side]; }
    const Signatures &everywhere(Side side) const { return m_everywhere[side]; }
    /// True when the two differed at some time: from reset, or when registers had any value.
    struct NameVerdict {
        bool differedFromReset;
        bool differedEverywhere;
    };
    NameVerdict verdictOf(const WirePair &pair) const;
    /// Whether the output of that register is in a class that held.
    bool isInClass(Side side, Signal signal) const { return m_classOf[side][signal] != NONE; }
    /// Whether two wires may be one as far as registers are concerned: two registers whose values were chosen at random
    /// are one only when they are in one class.
    bool areCompatible(Signal elaborated, Signal postMap) const;
    const Simulator &simulator(Side side) const { return side == ELABORATED ? m_bench.elaborated : m_bench.postMap; }

  private:
    struct Member {
        Signal signal;
        Side side;
        bool inverted;
    };
    using Members = std::vector<Member>;
    /// Registers that are taken for the same one.
    struct Class {
        Members members;
        std::uint8_t strikes = 0; ///< runs in which it differed; from the first one on its value is no longer chosen
        bool isFree = false;      ///< its value is not chosen
        bool differed = false;    ///< in the last run
    };
    /// The classes, laid out for a run: in the order of their wires, so that a pass over them goes through the values
    /// from one end to the other.
    struct Lineup {
        struct Place {
            std::uint32_t number; ///< of the class
            std::uint32_t end;    ///< of its members; they begin where those of the class before end
            std::uint32_t lean;   ///< the same for all bits of an elaborated register
            bool isFree;
            bool differed;
        };
        std::vector<Member> members;
        std::vector<Place> places;
    };
    enum NameFlag : std::uint8_t { DIFFERED_FROM_RESET = 1, DIFFERED_EVERYWHERE = 2 };

    void runFromReset();
    void makeFirstClasses();
    void repeatUntilStable();
    /// Runs on with random states; returns false when a class fell apart. Looks at registers alone unless it is for
    /// good.
    bool runEverywhere(bool forGood, int steps);
    void splitClasses();
    bool splitClass(const Class &old);
    bool addNewClasses();
    void addClass(Members members, const Class &like);
    void freeSupport(const std::vector<std::size_t> &classes);
    void addByNames(Members &members, const Class &like);
    void lineUp();
    void forceClasses();
    std::size_t checkAndForceClasses();
    template <bool CHECKS> std::size_t passOverClasses();
    void dropWhatDiffered();
    void checkNames(bool fromReset);
    void sampleAll(Signatures *signatures, bool fromReset);
    void sampleControl(Signatures *signatures);
    void chooseLanes();
    bool isCandidate(Side side, Signal signal) const;
    bool mayBeEqual(const Member &a, const Member &b) const;
    std::vector<Members> groupsBy(const Signatures *signatures, bool onlyFree) const;
    const std::vector<Signal> &registers(Side side) const { return simulator(side).registers(); }

    NamePairs m_names;
    Bench m_bench;
    const BitGraph *m_graphs[2];
    Bench::State m_afterReset;
    int m_stepsFromReset;
    int m_stepsEverywhere;
    int m_longSteps;
    int m_spentSteps = 0; ///< of the runs from any state
    std::uint64_t m_lanes = ALL_LANES;
    Signatures m_fromReset[2];
    Signatures m_everywhere[2];
    std::vector<Signal> m_control[2];
    std::vector<std::uint8_t> m_nameFlags; ///< by pair of wires
    std::vector<Class> m_classes;
    Lineup m_lineup;
    std::vector<std::uint32_t> m_classOf[2];
};

} // namespace kvr::netlistdb::analysis::probe
