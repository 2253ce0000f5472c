#include "analysis/probe/Correspondence.h"

#include <algorithm>
#include <array>

namespace kvr::netlistdb::analysis::probe {

namespace {

constexpr int MANY = 1'000'000; ///< wires
constexpr int WARM_UP = 8;
constexpr int FROM_RESET = 56;   ///< at least; more in small designs
constexpr int EVERYWHERE = 32;   ///< the same
constexpr int LONG_RUN = 64;     ///< to see registers that hardly ever change
constexpr int SHORT_RUN = 2;     ///< when much differs, what comes behind hardly tells more
constexpr std::size_t FEW = 256; ///< of so many classes, one that differs is little
constexpr int MOST_RUNS = 6;     ///< of large netlists, of full length

} // namespace

Correspondence::Correspondence(const BitGraph &elaborated, const BitGraph &postMap)
    : m_names(elaborated, postMap), m_bench(elaborated, postMap, m_names), m_graphs{&elaborated, &postMap}
{
    for (const Side side : {ELABORATED, POST_MAP}) {
        const std::vector<bool> &isControl = simulator(side).isControl();
        for (Signal signal = FIRST_SIGNAL; signal < isControl.size(); ++signal) {
            if (isControl[signal]) {
                m_control[side].push_back(signal);
            }
        }
        m_classOf[side].assign(m_graphs[side]->signalCount, NONE);
    }
    const auto size = static_cast<int>(std::min<std::uint32_t>(elaborated.signalCount + postMap.signalCount, MANY));
    m_stepsFromReset = std::clamp(3 * MANY / size, FROM_RESET, 4 * FROM_RESET);
    m_stepsEverywhere = std::clamp(2 * MANY / size, EVERYWHERE, 3 * EVERYWHERE);
    m_longSteps = std::clamp(4 * MANY / size, LONG_RUN, 4 * LONG_RUN);
    m_nameFlags.assign(m_names.wires.size(), 0);
    runFromReset();
    makeFirstClasses();
    repeatUntilStable();
}

/// Runs that the reset has not brought into a known state would hide what the others show.
void Correspondence::chooseLanes()
{
    std::array<std::uint32_t, 64> counts{};
    for (const Signal signal : registers(ELABORATED)) {
        const std::uint64_t known = m_bench.elaborated[signal].known();
        for (std::size_t lane = 0; lane < 64; ++lane) {
            counts[lane] += static_cast<std::uint32_t>(known >> lane & 1);
        }
    }
    const std::uint32_t most = *std::max_element(counts.begin(), counts.end());
    m_lanes = 0;
    for (std::size_t lane = 0; lane < 64; ++lane) {
        m_lanes |= std::uint64_t{counts[lane] >= most - most / 50} << lane;
    }
}

void Correspondence::runFromReset()
{
    m_bench.start();
    const auto nothing = [] {};
    for (int step = 0; step < WARM_UP; ++step) {
        m_bench.step(nothing, nothing);
    }
    chooseLanes();
    for (const Side side : {ELABORATED, POST_MAP}) {
        m_fromReset[side].clear(m_graphs[side]->signalCount);
    }
    for (int step = 0; step < m_stepsFromReset; ++step) {
        m_bench.step([&] { sampleAll(m_fromReset, true); }, [&] { sampleControl(m_fromReset); });
    }
    m_afterReset = m_bench.save();
}

void Correspondence::checkNames(bool fromReset)
{
    for (std::size_t at = 0; at < m_names.wires.size(); ++at) {
        const Lanes a = m_bench.elaborated[m_names.wires[at].elaborated];
        const Lanes b = m_bench.postMap[m_names.wires[at].postMap];
        if ((((a.one & ~a.zero) & (b.zero & ~b.one)) | ((a.zero & ~a.one) & (b.one & ~b.zero))) != 0) {
            m_nameFlags[at] |= fromReset ? DIFFERED_FROM_RESET : DIFFERED_EVERYWHERE;
        }
    }
}

void Correspondence::repeatUntilStable()
{
    int steps = m_stepsEverywhere;
    // The smaller the netlists, the more runs of the greater length.
    const int mostSteps = MOST_RUNS * m_stepsEverywhere * m_stepsEverywhere / EVERYWHERE;
    for (m_spentSteps = 0; m_spentSteps < mostSteps;) {
        if (!runEverywhere(false, steps)) {
            splitClasses();
        } else if (!addNewClasses()) {
            if (steps == m_longSteps) {
                break;
            }
            steps = m_longSteps;
        }
    }
    runEverywhere(true, m_stepsEverywhere);
    dropWhatDiffered();
}

/// Classes that fell apart in the last run hold nothing up.
void Correspondence::dropWhatDiffered()
{
    for (const Class &each : m_classes) {
        for (const Member &member : each.members) {
            if (each.differed) {
                m_classOf[member.side][member.signal] = NONE;
            }
        }
    }
}

bool Correspondence::runEverywhere(bool forGood, int steps)
{
    m_bench.load(m_afterReset);
    for (const Side side : {ELABORATED, POST_MAP}) {
        m_everywhere[side].clear(m_graphs[side]->signalCount);
    }
    lineUp();
    forceClasses();
    std::size_t differing = 0;
    for (int step = 0; step < steps && (forGood || step < SHORT_RUN || differing <= m_classes.size() / FEW); ++step) {
        if (forGood) {
            m_bench.step([&] { sampleAll(m_everywhere, false); }, [&] { sampleControl(m_everywhere); });
        } else {
            m_bench.stepStates();
            for (const Side side : {ELABORATED, POST_MAP}) {
                m_everywhere[side].sample(simulator(side), m_lanes, registers(side));
            }
        }
        differing = checkAndForceClasses();
        ++m_spentSteps;
    }
    for (const Lineup::Place &place : m_lineup.places) {
        m_classes[place.number].differed = place.differed;
    }
    return differing == 0;
}

void Correspondence::sampleAll(Signatures *signatures, bool fromReset)
{
    for (const Side side : {ELABORATED, POST_MAP}) {
        signatures[side].sample(simulator(side), m_lanes);
    }
    checkNames(fromReset);
}

/// Clocks and resets move while clocks are high, too.
void Correspondence::sampleControl(Signatures *signatures)
{
    for (const Side side : {ELABORATED, POST_MAP}) {
        signatures[side].sample(simulator(side), m_lanes, m_control[side]);
    }
}

Correspondence::NameVerdict Correspondence::verdictOf(const WirePair &pair) const
{
    const auto found = std::lower_bound(m_names.wires.begin(), m_names.wires.end(), pair);
    if (found == m_names.wires.end() || !(*found == pair)) {
        return {true, true};
    }
    const std::uint8_t flags = m_nameFlags[static_cast<std::size_t>(found - m_names.wires.begin())];
    return {(flags & DIFFERED_FROM_RESET) != 0, (flags & DIFFERED_EVERYWHERE) != 0};
}

} // namespace kvr::netlistdb::analysis::probe
