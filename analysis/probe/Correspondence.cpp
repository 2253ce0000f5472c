#include "analysis/probe/Correspondence.h"

#include <algorithm>
#include <array>

namespace kvr::netlistdb::analysis::probe {

namespace {

constexpr int MANY = 1'000'000; ///< wires
constexpr int WARM_UP = 8;
constexpr int FROM_RESET = 56; ///< at least; more in small designs
constexpr int EVERYWHERE = 32; ///< the same
constexpr int LONG_RUN = 64;   ///< to see registers that hardly ever change
constexpr std::uint64_t MUCH_CHOSEN = 0x5555555555555555ULL;
constexpr int SHORT_RUN = 2;     ///< when much differs, what comes behind hardly tells more
constexpr std::size_t FEW = 256; ///< of so many classes, one that differs is little
constexpr int MOST_RUNS = 6;     ///< of large netlists, of full length
constexpr std::uint64_t MUCH_LEANING = 0x00FF00FF00FF00FFULL;

/// A random value for a class. In half of the runs all bits of an elaborated register lean to the same side, another
/// one at every step: carries run through counters, and numbers are 0, or as large as can be, far more often than by
/// chance.
std::uint64_t valueFor(Random &random, std::uint32_t lean, std::uint64_t step)
{
    const std::uint64_t side = mixed(step ^ lean);
    const std::uint64_t seldom = random.seldom(4);
    const std::uint64_t leaning = (seldom & side) | (~seldom & ~side);
    return (leaning & MUCH_LEANING) | (random.next() & ~MUCH_LEANING);
}

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

void Correspondence::lineUp()
{
    m_lineup.members.clear();
    m_lineup.places.clear();
    std::vector<std::pair<Signal, std::uint32_t>> order;
    order.reserve(m_classes.size());
    for (const Class &each : m_classes) {
        order.emplace_back(each.members.front().signal, static_cast<std::uint32_t>(order.size()));
    }
    std::sort(order.begin(), order.end());
    for (const auto &[signal, number] : order) {
        const Class &each = m_classes[number];
        m_lineup.members.insert(m_lineup.members.end(), each.members.begin(), each.members.end());
        m_lineup.places.push_back({number, static_cast<std::uint32_t>(m_lineup.members.size()),
                                   m_graphs[each.members.front().side]->drivers[signal], each.isFree, false});
    }
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

void Correspondence::forceClasses()
{
    (void)passOverClasses<false>();
}

/// Returns how many classes have differed in this run.
std::size_t Correspondence::checkAndForceClasses()
{
    return passOverClasses<true>();
}

/// Looks whether the members of each class are equal, if it CHECKS, and gives them one random value. Every class has
/// random numbers of its own, whichever place it has in the lineup.
template <bool CHECKS> std::size_t Correspondence::passOverClasses()
{
    constexpr std::uint64_t NUMBERS_OF_CLASS = 10;
    Simulator *const simulators[] = {&m_bench.elaborated, &m_bench.postMap};
    const std::uint64_t step = m_bench.random().next();
    const Random numbers = m_bench.random();
    m_bench.random().skip(NUMBERS_OF_CLASS * m_lineup.places.size());
    std::size_t differing = 0;
    const Member *first = m_lineup.members.data();
    for (Lineup::Place &place : m_lineup.places) {
        const Member *const end = m_lineup.members.data() + place.end;
        std::uint64_t known = ALL_LANES;
        std::uint64_t ones = 0;
        std::uint64_t zeros = 0;
        for (const Member *member = first; member != end; ++member) {
            const Lanes value = (*simulators[member->side])[member->signal];
            const Lanes own = member->inverted ? ~value : value;
            known &= own.known();
            ones |= own.one & ~own.zero;
            zeros |= own.zero & ~own.one;
        }
        if (CHECKS) {
            place.differed = place.differed || (ones & zeros) != 0;
            differing += place.differed ? 1 : 0;
        }
        if (place.isFree) {
            first = end;
            continue;
        }
        Random random = numbers;
        random.skip(NUMBERS_OF_CLASS * place.number);
        const std::uint64_t value = valueFor(random, place.lean, step);
        // Half of the runs are mostly left to themselves: what takes several steps would hardly ever come about.
        const std::uint64_t much = random.next();
        const std::uint64_t lanes = (much & MUCH_CHOSEN) | (random.seldom(4) & ~MUCH_CHOSEN) | ~known;
        for (; first != end; ++first) {
            Simulator &own = *simulators[first->side];
            own.set(first->signal, inLanes(lanes, lanesOf(first->inverted ? ~value : value), own[first->signal]));
        }
    }
    return differing;
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
