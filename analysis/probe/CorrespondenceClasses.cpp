// Classes of registers that are taken for the same one: how they come about and fall apart.

#include "analysis/probe/Correspondence.h"

#include <algorithm>
#include <unordered_map>

namespace kvr::netlistdb::analysis::probe {

namespace {

constexpr std::uint8_t MOST_STRIKES = 3;
/// Members of a class that differed: copies of something that hardly ever changes, which chance would tell apart one by
/// one.
constexpr std::size_t MANY_ALIKE = 16;
constexpr unsigned LEAST_ACTIVITY = 4; ///< runs in which a register must have been 0, and 1, to be told from others

/// Adds the wires that the next value of a register depends on: of a flip-flop, those of its bit alone.
void addInputsOf(const BitGraph &graph, Signal output, std::vector<Signal> &inputs)
{
    const Node &node = graph.nodes[graph.drivers[output]];
    const Span<Signal> in = graph.inputsOf(node);
    if (graph.partOf(node).op != Op::FlipFlop) {
        inputs.insert(inputs.end(), in.begin(), in.end());
        return;
    }
    const Span<Signal> outputs = graph.outputsOf(node);
    const std::ptrdiff_t bit = std::find(outputs.begin(), outputs.end(), output) - outputs.begin();
    inputs.insert(inputs.end(), {in[1], in[2], in[3], in[4 + static_cast<std::size_t>(bit)]});
}

} // namespace

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
    std::unordered_map<Signal, std::size_t> others;
    for (std::size_t at = 0; at < members.size(); ++at) {
        if (members[at].side == POST_MAP) {
            others.emplace(members[at].signal, at);
        }
    }
    std::vector<bool> isTaken(members.size(), false);
    for (std::size_t at = 0; at < members.size(); ++at) {
        const Member own = members[at];
        auto pair = std::lower_bound(m_names.wires.begin(), m_names.wires.end(), WirePair{own.signal, 0});
        for (; own.side == ELABORATED && !isTaken[at] && pair != m_names.wires.end() && pair->elaborated == own.signal;
             ++pair) {
            const auto other = others.find(pair->postMap);
            if (other != others.end() && !isTaken[other->second]) {
                isTaken[at] = true;
                isTaken[other->second] = true;
                addClass({own, members[other->second]}, like);
            }
        }
    }
    std::size_t at = 0;
    members.erase(std::remove_if(members.begin(), members.end(), [&](const Member &) { return isTaken[at++]; }),
                  members.end());
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
    freeSupport(again);
}

/// Leaves the registers that the next values of these classes depend on to themselves.
void Correspondence::freeSupport(const std::vector<std::size_t> &classes)
{
    for (const Side side : {ELABORATED, POST_MAP}) {
        const BitGraph &graph = *m_graphs[side];
        std::vector<Signal> open;
        for (const std::size_t number : classes) {
            for (const Member &member : m_classes[number].members) {
                if (member.side == side) {
                    addInputsOf(graph, member.signal, open);
                }
            }
        }
        std::vector<bool> seen(open.empty() ? 0 : graph.signalCount, false);
        while (!open.empty()) {
            const Signal signal = open.back();
            open.pop_back();
            if (seen[signal]) {
                continue;
            }
            seen[signal] = true;
            const std::uint32_t driver = graph.drivers[signal];
            if (m_classOf[side][signal] != NONE) {
                m_classes[m_classOf[side][signal]].isFree = true;
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
    const std::size_t before = m_classes.size();
    for (std::size_t first = 0; first < members.size();) {
        std::size_t last = first;
        while (last < members.size() && keyOf(members[last]) == keyOf(members[first])) {
            ++last;
        }
        Members part(members.begin() + static_cast<std::ptrdiff_t>(first),
                     members.begin() + static_cast<std::ptrdiff_t>(last));
        if (part.size() >= MANY_ALIKE) {
            addByNames(part, old);
        }
        if (!part.empty() && part.front().side != part.back().side) {
            addClass(std::move(part), old);
        }
        first = last;
    }
    return m_classes.size() > before;
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

} // namespace kvr::netlistdb::analysis::probe
