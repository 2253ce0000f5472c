#include "analysis/probe/Correspondence.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

namespace kvr::netlistdb::analysis::probe {

namespace {

constexpr int WARM_UP = 8;
constexpr int FROM_RESET = 56;
constexpr int EVERYWHERE = 32;
constexpr int MOST_ROUNDS = 10;
constexpr unsigned LEAST_ACTIVITY = 4; ///< runs in which a wire must have been 0, and 1, to be told apart from others

enum NameFlag : std::uint8_t { DIFFERED_FROM_RESET = 1, DIFFERED_EVERYWHERE = 2 };

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
    for (int step = 0; step < FROM_RESET; ++step) {
        m_bench.step(
            [&] {
                for (const Side side : {ELABORATED, POST_MAP}) {
                    m_fromReset[side].sample(simulator(side), m_lanes);
                }
                checkNames(true);
            },
            [&] {
                for (const Side side : {ELABORATED, POST_MAP}) {
                    m_fromReset[side].sampleControl(simulator(side), m_lanes, m_control[side]);
                }
            });
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

/// Registers whose value may be chosen: not those that make clocks or resets, and no latches.
bool Correspondence::isCandidate(Side side, Signal signal) const
{
    const std::uint32_t driver = m_graphs[side]->drivers[signal];
    return signal >= FIRST_SIGNAL && driver != NONE && !simulator(side).isControl()[signal] &&
           m_graphs[side]->partOf(m_graphs[side]->nodes[driver]).op != Op::Latch;
}

/// Groups of registers of both sides that were equal or inverse to each other, as @p signatures tell.
std::vector<Correspondence::Members> Correspondence::groupsBy(const Signatures *signatures, bool onlyFree) const
{
    std::vector<std::pair<std::uint64_t, Member>> keyed;
    for (const Side side : {ELABORATED, POST_MAP}) {
        for (const Signal signal : registers(side)) {
            const Signatures &own = signatures[side];
            if (isCandidate(side, signal) && own.isKnown(signal) && own.activity(signal) >= LEAST_ACTIVITY &&
                !(onlyFree && isInClass(side, signal))) {
                keyed.push_back({own.hash(signal), {signal, side, own.isInverted(signal)}});
            }
        }
    }
    std::stable_sort(keyed.begin(), keyed.end(), [](const auto &a, const auto &b) { return a.first < b.first; });
    std::vector<Members> groups;
    for (std::size_t first = 0; first < keyed.size();) {
        Members members;
        std::size_t last = first;
        for (; last < keyed.size() && keyed[last].first == keyed[first].first; ++last) {
            members.push_back(keyed[last].second);
        }
        if (members.front().side != members.back().side) {
            groups.push_back(std::move(members));
        }
        first = last;
    }
    return groups;
}

void Correspondence::addClass(Members members)
{
    for (const Member &member : members) {
        m_classOf[member.side][member.signal] = static_cast<std::uint32_t>(m_classes.size());
    }
    m_classes.push_back(std::move(members));
}

void Correspondence::makeFirstClasses()
{
    for (Members &members : groupsBy(m_fromReset, false)) {
        addClass(std::move(members));
    }
    for (std::size_t at = 0; at < m_names.wires.size(); ++at) {
        const WirePair &pair = m_names.wires[at];
        if ((m_nameFlags[at] & DIFFERED_FROM_RESET) == 0 && isCandidate(ELABORATED, pair.elaborated) &&
            isCandidate(POST_MAP, pair.postMap) && !isInClass(ELABORATED, pair.elaborated) &&
            !isInClass(POST_MAP, pair.postMap) &&
            !m_graphs[ELABORATED]->partOf(m_graphs[ELABORATED]->nodes[m_graphs[ELABORATED]->drivers[pair.elaborated]])
                 .isLogic() &&
            !m_graphs[POST_MAP]->partOf(m_graphs[POST_MAP]->nodes[m_graphs[POST_MAP]->drivers[pair.postMap]])
                 .isLogic()) {
            addClass({{pair.elaborated, ELABORATED, false}, {pair.postMap, POST_MAP, false}});
        }
    }
}

void Correspondence::repeatUntilStable()
{
    for (int round = 0; round < MOST_ROUNDS; ++round) {
        const bool held = runEverywhere();
        if (std::getenv("PROBE_DEBUG") != nullptr) {
            std::fprintf(stderr, "round %d: %zu classes, %zu differed\n", round, m_classes.size(),
                         static_cast<std::size_t>(std::count(m_differed.begin(), m_differed.end(), true)));
        }
        if (std::getenv("PROBE_DEBUG") != nullptr) {
            for (std::size_t c = 0; c < m_classes.size(); ++c) {
                if (m_differed[c]) {
                    std::printf("ROUND %d", round);
                    for (const Member &m : m_classes[c]) {
                        std::printf(" %c%s%u", m.side != 0 ? 'P' : 'E', m.inverted ? "~" : ":", m.signal);
                    }
                    std::printf("\n");
                }
            }
        }
        if (!(held ? addNewClasses() : splitClasses())) {
            break;
        }
    }
}

bool Correspondence::runEverywhere()
{
    m_bench.load(m_afterReset);
    m_differed.assign(m_classes.size(), false);
    for (std::uint8_t &flags : m_nameFlags) {
        flags &= static_cast<std::uint8_t>(~DIFFERED_EVERYWHERE);
    }
    for (const Side side : {ELABORATED, POST_MAP}) {
        m_everywhere[side].clear(m_graphs[side]->signalCount);
    }
    forceClasses();
    for (int step = 0; step < EVERYWHERE; ++step) {
        m_bench.step(
            [&] {
                for (const Side side : {ELABORATED, POST_MAP}) {
                    m_everywhere[side].sample(simulator(side), m_lanes);
                }
                checkNames(false);
            },
            [&] {
                for (const Side side : {ELABORATED, POST_MAP}) {
                    m_everywhere[side].sampleControl(simulator(side), m_lanes, m_control[side]);
                }
            });
        checkClasses();
        forceClasses();
    }
    return std::find(m_differed.begin(), m_differed.end(), true) == m_differed.end();
}

void Correspondence::checkClasses()
{
    for (std::size_t number = 0; number < m_classes.size(); ++number) {
        std::uint64_t ones = 0;
        std::uint64_t zeros = 0;
        for (const Member &member : m_classes[number]) {
            const Lanes value = simulator(member.side)[member.signal];
            const Lanes own = member.inverted ? ~value : value;
            ones |= own.one & ~own.zero;
            zeros |= own.zero & ~own.one;
        }
        m_differed[number] = m_differed[number] || (ones & zeros) != 0;
    }
}

void Correspondence::forceClasses()
{
    for (const Members &members : m_classes) {
        const std::uint64_t value = m_bench.random().next();
        std::uint64_t lanes = m_bench.random().next();
        for (const Member &member : members) {
            lanes |= ~simulator(member.side)[member.signal].known();
        }
        for (const Member &member : members) {
            Simulator &own = member.side == ELABORATED ? m_bench.elaborated : m_bench.postMap;
            own.set(member.signal,
                    inLanes(lanes, lanesOf(member.inverted ? ~value : value), own[member.signal]));
        }
    }
}

/// Members of a class that differed stay together as far as they were equal.
bool Correspondence::splitClasses()
{
    std::vector<Members> kept;
    std::vector<Members> split;
    for (std::size_t number = 0; number < m_classes.size(); ++number) {
        (m_differed[number] ? split : kept).push_back(std::move(m_classes[number]));
    }
    m_classes.clear();
    for (const Side side : {ELABORATED, POST_MAP}) {
        std::fill(m_classOf[side].begin(), m_classOf[side].end(), NONE);
    }
    for (Members &members : kept) {
        addClass(std::move(members));
    }
    for (Members &members : split) {
        const auto keyOf = [&](const Member &member) {
            const Signatures &own = m_everywhere[member.side];
            return std::make_pair(own.hash(member.signal), own.isInverted(member.signal) != member.inverted);
        };
        members.erase(std::remove_if(members.begin(), members.end(),
                                     [&](const Member &member) {
                                         return !m_everywhere[member.side].isKnown(member.signal);
                                     }),
                      members.end());
        std::stable_sort(members.begin(), members.end(),
                         [&](const Member &a, const Member &b) { return keyOf(a) < keyOf(b); });
        for (std::size_t first = 0; first < members.size();) {
            std::size_t last = first;
            while (last < members.size() && keyOf(members[last]) == keyOf(members[first])) {
                ++last;
            }
            const Members part(members.begin() + static_cast<std::ptrdiff_t>(first),
                               members.begin() + static_cast<std::ptrdiff_t>(last));
            if (part.front().side != part.back().side) {
                addClass(part);
            }
            first = last;
        }
    }
    return true;
}

/// True unless both were known from reset on and were not what they would be now.
bool Correspondence::mayBeEqual(const Member &a, const Member &b) const
{
    const Signatures &left = m_fromReset[a.side];
    const Signatures &right = m_fromReset[b.side];
    if (!left.isKnown(a.signal) || !right.isKnown(b.signal)) {
        return true;
    }
    return left.hash(a.signal) == right.hash(b.signal) &&
           (left.isInverted(a.signal) != right.isInverted(b.signal)) == (a.inverted != b.inverted);
}

bool Correspondence::addNewClasses()
{
    bool added = false;
    for (Members &members : groupsBy(m_everywhere, true)) {
        const Member leader = members.front();
        members.erase(std::remove_if(members.begin(), members.end(),
                                     [&](const Member &member) { return !mayBeEqual(leader, member); }),
                      members.end());
        if (members.front().side != members.back().side) {
            addClass(std::move(members));
            added = true;
        }
    }
    return added;
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
