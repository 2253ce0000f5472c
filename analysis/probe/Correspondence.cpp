#include "analysis/probe/Correspondence.h"

#include <algorithm>
#include <array>

namespace kvr::netlistdb::analysis::probe {

namespace {

constexpr int MANY = 1'000'000; ///< wires
constexpr int WARM_UP = 8;
constexpr int FROM_RESET = 56; ///< at least; more in small designs
constexpr int EVERYWHERE = 32; ///< the same
constexpr int LONG_RUN = 128;  ///< to see registers that hardly ever change
constexpr std::uint64_t MUCH_CHOSEN = 0x5555555555555555ULL;
constexpr int SHORT_RUN = 8; ///< when something differs, what comes behind hardly tells more
constexpr int MOST_ROUNDS = 24;
constexpr std::uint8_t MOST_STRIKES = 3;
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

void Correspondence::addClass(Members members, const Class &like)
{
    for (const Member &member : members) {
        m_classOf[member.side][member.signal] = static_cast<std::uint32_t>(m_classes.size());
    }
    m_classes.push_back({std::move(members), like.strikes, like.isFree, false});
}

/// Takes pairs of one name out of a group of several registers that behave alike.
void Correspondence::addByNames(Members &members, const Class &like)
{
    const auto find = [&](Side side, Signal signal) {
        return std::find_if(members.begin(), members.end(),
                            [&](const Member &member) { return member.side == side && member.signal == signal; });
    };
    for (std::size_t at = 0; at < members.size() && !members.empty();) {
        const Member own = members[at];
        if (own.side != ELABORATED) {
            break;
        }
        const auto first = std::lower_bound(m_names.wires.begin(), m_names.wires.end(), WirePair{own.signal, 0});
        auto other = members.end();
        for (auto pair = first; pair != m_names.wires.end() && pair->elaborated == own.signal && other == members.end();
             ++pair) {
            other = find(POST_MAP, pair->postMap);
        }
        if (other == members.end()) {
            ++at;
            continue;
        }
        addClass({own, *other}, like);
        members.erase(other);
        members.erase(members.begin() + static_cast<std::ptrdiff_t>(at));
    }
}

void Correspondence::makeFirstClasses()
{
    for (Members &members : groupsBy(m_fromReset, false)) {
        addClass(std::move(members), {});
    }
    const auto isRegister = [&](Side side, Signal signal) {
        return isCandidate(side, signal) && !isInClass(side, signal) &&
               !m_graphs[side]->partOf(m_graphs[side]->nodes[m_graphs[side]->drivers[signal]]).isLogic();
    };
    for (std::size_t at = 0; at < m_names.wires.size(); ++at) {
        const WirePair &pair = m_names.wires[at];
        if ((m_nameFlags[at] & DIFFERED_FROM_RESET) == 0 && isRegister(ELABORATED, pair.elaborated) &&
            isRegister(POST_MAP, pair.postMap)) {
            addClass({{pair.elaborated, ELABORATED, false}, {pair.postMap, POST_MAP, false}}, {});
        }
    }
}

void Correspondence::repeatUntilStable()
{
    int steps = m_stepsEverywhere;
    for (int round = 0; round < MOST_ROUNDS; ++round) {
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
}

bool Correspondence::runEverywhere(bool forGood, int steps)
{
    m_bench.load(m_afterReset);
    for (const Side side : {ELABORATED, POST_MAP}) {
        m_everywhere[side].clear(m_graphs[side]->signalCount);
    }
    for (Class &each : m_classes) {
        each.differed = false;
    }
    forceClasses();
    bool held = true;
    const auto nothing = [] {};
    for (int step = 0; step < steps && (held || forGood || step < SHORT_RUN); ++step) {
        if (forGood) {
            m_bench.step([&] { sampleAll(m_everywhere, false); }, [&] { sampleControl(m_everywhere); });
        } else {
            m_bench.step(nothing, nothing);
            for (const Side side : {ELABORATED, POST_MAP}) {
                m_everywhere[side].sample(simulator(side), m_lanes, registers(side));
            }
        }
        held = checkClasses() && held;
        forceClasses();
    }
    return held;
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

bool Correspondence::checkClasses()
{
    bool held = true;
    for (Class &each : m_classes) {
        std::uint64_t ones = 0;
        std::uint64_t zeros = 0;
        for (const Member &member : each.members) {
            const Lanes value = simulator(member.side)[member.signal];
            const Lanes own = member.inverted ? ~value : value;
            ones |= own.one & ~own.zero;
            zeros |= own.zero & ~own.one;
        }
        each.differed = each.differed || (ones & zeros) != 0;
        held = held && !each.differed;
    }
    return held;
}

void Correspondence::forceClasses()
{
    for (const Class &each : m_classes) {
        const std::uint64_t value = m_bench.random().next();
        // Half of the runs are mostly left to themselves: what takes several steps would hardly ever come about.
        std::uint64_t lanes = (m_bench.random().next() & MUCH_CHOSEN) | (m_bench.random().seldom(4) & ~MUCH_CHOSEN);
        if (each.isFree) {
            continue;
        }
        for (const Member &member : each.members) {
            lanes |= ~simulator(member.side)[member.signal].known();
        }
        for (const Member &member : each.members) {
            Simulator &own = member.side == ELABORATED ? m_bench.elaborated : m_bench.postMap;
            own.set(member.signal, inLanes(lanes, lanesOf(member.inverted ? ~value : value), own[member.signal]));
        }
    }
}

/// Members of a class that differed stay together as far as they were equal. Where none were, the class goes on without
/// its value being chosen: the netlists may rely on states that registers have only together. When it differs again,
/// the registers that it depends on are left to themselves, too. Only what differs even then is given up.
void Correspondence::splitClasses()
{
    std::vector<Class> old;
    old.swap(m_classes);
    for (const Side side : {ELABORATED, POST_MAP}) {
        std::fill(m_classOf[side].begin(), m_classOf[side].end(), NONE);
    }
    std::vector<std::size_t> again;
    for (Class &each : old) {
        if (!each.differed) {
            const Class like = each;
            addClass(std::move(each.members), like);
        } else if (!splitClass(each) && each.strikes < MOST_STRIKES) {
            each.isFree = true;
            ++each.strikes;
            const std::size_t first = m_classes.size();
            addByNames(each.members, each);
            if (!each.members.empty() && each.members.front().side != each.members.back().side &&
                m_classes.size() == first) {
                const Class like = each;
                addClass(std::move(each.members), like);
            }
            for (std::size_t added = first; added < m_classes.size() && each.strikes > 1; ++added) {
                again.push_back(added);
            }
        }
    }
    for (const std::size_t number : again) {
        freeSupport(m_classes[number]);
    }
}

/// Leaves the registers that the next value of a class depends on to themselves.
void Correspondence::freeSupport(const Class &of)
{
    for (const Member &member : of.members) {
        const BitGraph &graph = *m_graphs[member.side];
        std::vector<bool> seen(graph.signalCount, false);
        std::vector<Signal> open;
        const Node &own = graph.nodes[graph.drivers[member.signal]];
        const Span<Signal> inputs = graph.inputsOf(own);
        const Part &part = graph.partOf(own);
        if (part.op == Op::FlipFlop) {
            const Span<Signal> outputs = graph.outputsOf(own);
            const auto bit =
                static_cast<std::size_t>(std::find(outputs.begin(), outputs.end(), member.signal) - outputs.begin());
            open = {inputs[1], inputs[2], inputs[3], inputs[4 + bit]};
        } else {
            open.assign(inputs.begin(), inputs.end());
        }
        while (!open.empty()) {
            const Signal signal = open.back();
            open.pop_back();
            if (seen[signal]) {
                continue;
            }
            seen[signal] = true;
            const std::uint32_t driver = graph.drivers[signal];
            if (m_classOf[member.side][signal] != NONE) {
                m_classes[m_classOf[member.side][signal]].isFree = true;
            } else if (driver != NONE && graph.partOf(graph.nodes[driver]).isLogic()) {
                const Span<Signal> in = graph.inputsOf(graph.nodes[driver]);
                open.insert(open.end(), in.begin(), in.end());
            }
        }
    }
}

/// Returns false when no two members of different sides stay together.
bool Correspondence::splitClass(const Class &old)
{
    const auto keyOf = [&](const Member &member) {
        const Signatures &own = m_everywhere[member.side];
        return std::make_pair(own.hash(member.signal), own.isInverted(member.signal) != member.inverted);
    };
    Members members;
    for (const Member &member : old.members) {
        if (m_everywhere[member.side].isKnown(member.signal)) {
            members.push_back(member);
        }
    }
    std::stable_sort(members.begin(), members.end(),
                     [&](const Member &a, const Member &b) { return keyOf(a) < keyOf(b); });
    bool found = false;
    for (std::size_t first = 0; first < members.size();) {
        std::size_t last = first;
        while (last < members.size() && keyOf(members[last]) == keyOf(members[first])) {
            ++last;
        }
        const Members part(members.begin() + static_cast<std::ptrdiff_t>(first),
                           members.begin() + static_cast<std::ptrdiff_t>(last));
        if (part.front().side != part.back().side) {
            addClass(part, old);
            found = true;
        }
        first = last;
    }
    return found;
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
            addClass(std::move(members), {});
            added = true;
        }
    }
    return added;
}

bool Correspondence::areCompatible(Signal elaborated, Signal postMap) const
{
    const auto isChosen = [&](Side side, Signal signal) {
        const std::uint32_t driver = m_graphs[side]->drivers[signal];
        return isCandidate(side, signal) && m_graphs[side]->partOf(m_graphs[side]->nodes[driver]).op == Op::FlipFlop;
    };
    return !isChosen(ELABORATED, elaborated) || !isChosen(POST_MAP, postMap) ||
           (m_classOf[ELABORATED][elaborated] == m_classOf[POST_MAP][postMap] && isInClass(POST_MAP, postMap));
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
