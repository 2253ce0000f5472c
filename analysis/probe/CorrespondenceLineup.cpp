// Classes in a run: their values are chosen, and they are looked at.

#include "analysis/probe/Correspondence.h"

#include <algorithm>

namespace kvr::netlistdb::analysis::probe {

namespace {

constexpr std::uint64_t MUCH_CHOSEN = 0x5555555555555555ULL;
constexpr std::uint64_t MUCH_LEANING = 0x00FF00FF00FF00FFULL;

/// A random value for a class. In half of the runs all bits of an elaborated register lean to the same side, another
/// one at every step: carries run through counters, and numbers are 0, or as large as can be, far more often than by
/// chance.
inline std::uint64_t valueFor(Random &random, std::uint32_t lean, std::uint64_t step)
{
    const std::uint64_t side = mixed(step ^ lean);
    const std::uint64_t seldom = random.seldom(4);
    const std::uint64_t leaning = (seldom & side) | (~seldom & ~side);
    return (leaning & MUCH_LEANING) | (random.next() & ~MUCH_LEANING);
}

} // namespace

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
    Lanes *const values[] = {m_bench.elaborated.change(), m_bench.postMap.change()};
    const std::uint64_t step = m_bench.random().next();
    const Random numbers = m_bench.random();
    m_bench.random().skip(NUMBERS_OF_CLASS * m_lineup.places.size());
    std::size_t differing = 0;
    const Member *first = m_lineup.members.data();
    const Member *const last = first + m_lineup.members.size();
    for (Lineup::Place &place : m_lineup.places) {
        const Member *const end = m_lineup.members.data() + place.end;
        std::uint64_t known = ALL_LANES;
        std::uint64_t ones = 0;
        std::uint64_t zeros = 0;
        for (const Member *member = first; member != end; ++member) {
            if (member + FETCHED_AHEAD < last) {
                __builtin_prefetch(values[member[FETCHED_AHEAD].side] + member[FETCHED_AHEAD].signal, 1);
            }
            const Lanes value = values[member->side][member->signal];
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
            Lanes &own = values[first->side][first->signal];
            own = inLanes(lanes, lanesOf(first->inverted ? ~value : value), own);
        }
    }
    return differing;
}

} // namespace kvr::netlistdb::analysis::probe
