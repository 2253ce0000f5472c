#include "analysis/ClockTable.h"

#include "analysis/ClockParents.h"
#include "analysis/RegisterCounts.h"

#include <netlistdb/DesignDatabase.h>
#include <netlistdb/IClockDomain.h>

#include <algorithm>
#include <numeric>

namespace kvr::netlistdb::analysis {

ClockTable::ClockTable(const DesignModel &design) : m_ids(design.clocks.back().count(), NONE)
{
    const std::vector<ClockUse> uses = countRegisters(design.hierarchy, design.clocks);
    std::vector<Clock> found;
    found.reserve(uses.size());
    for (const ClockUse &use : uses) {
        const Place place = design.rootOf(use.clock);
        found.push_back({design.nameOf(place),
                         design.itemOf(place.context),
                         design.itemOf(place),
                         kindOfRoot(design, place.context.back().module, place.net),
                         use.edges,
                         use.registers,
                         {},
                         {}});
    }
    std::vector<std::uint32_t> order(found.size());
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin(), order.end(),
                     [&](std::uint32_t a, std::uint32_t b) { return found[a].name < found[b].name; });
    m_clocks.reserve(found.size());
    m_numbers.reserve(found.size());
    for (const std::uint32_t place : order) {
        m_ids[uses[place].clock] = static_cast<ClockId>(m_clocks.size());
        m_numbers.push_back(uses[place].clock);
        m_clocks.push_back(std::move(found[place]));
    }
    findParents(design);
    nameAsInDatabase(design);
}

void ClockTable::findParents(const DesignModel &design)
{
    std::vector<std::vector<ClockId>> inputs;
    for (ClockId clock = 0; clock < m_clocks.size(); ++clock) {
        inputs.push_back(clockInputs(design, m_ids, m_clocks[clock].root, m_numbers[clock]));
    }
    for (ClockId clock = 0; clock < m_clocks.size(); ++clock) {
        // Of two clocks of which one comes in through the other, the other is the parent.
        const auto isBehindAnother = [&](ClockId parent) {
            return std::any_of(inputs[clock].begin(), inputs[clock].end(), [&](ClockId other) {
                const bool comesThrough = m_clocks[other].root == ClockRoot::Logic &&
                                          std::binary_search(inputs[other].begin(), inputs[other].end(), parent);
                const bool isLoop = std::binary_search(inputs[parent].begin(), inputs[parent].end(), other);
                return other != parent && comesThrough && !isLoop;
            });
        };
        for (const ClockId parent : inputs[clock]) {
            if (m_clocks[clock].root != ClockRoot::Logic || !isBehindAnother(parent)) {
                m_clocks[clock].parents.push_back(parent);
            }
        }
    }
}

void ClockTable::nameAsInDatabase(const DesignModel &design)
{
    for (const IClockDomain *domain : design.database.listAllClockDomains(design.source)) {
        Context context;
        const DesignModel::ModuleNet net = design.find(domain->getNet());
        if (net.module == NONE || !design.find(domain->getInstance(), context) || context.back().module != net.module) {
            continue;
        }
        const ElectricalRoot root = electricalRoot(design, {std::move(context), net.net});
        const ClockId clock = root.clock != NONE ? m_ids[root.clock] : NONE;
        if (clock != NONE && m_clocks[clock].name != domain->getName()) {
            m_clocks[clock].names.push_back(domain->getName());
        }
    }
    for (Clock &clock : m_clocks) {
        std::sort(clock.names.begin(), clock.names.end());
        clock.names.erase(std::unique(clock.names.begin(), clock.names.end()), clock.names.end());
    }
}

std::vector<bool> ClockTable::ancestorsOf(ClockId clock) const
{
    std::vector<bool> found(m_clocks.size());
    std::vector<ClockId> pending{clock};
    found[clock] = true;
    while (!pending.empty()) {
        const ClockId at = pending.back();
        pending.pop_back();
        for (const ClockId parent : m_clocks[at].parents) {
            if (!found[parent]) {
                found[parent] = true;
                pending.push_back(parent);
            }
        }
    }
    return found;
}

bool ClockTable::related(ClockId a, ClockId b) const
{
    const std::vector<bool> ofA = ancestorsOf(a);
    const std::vector<bool> ofB = ancestorsOf(b);
    for (std::size_t clock = 0; clock < ofA.size(); ++clock) {
        if (ofA[clock] && ofB[clock]) {
            return true;
        }
    }
    return false;
}

std::size_t ClockTable::memory() const
{
    std::size_t bytes = sizeof(*this) + m_clocks.capacity() * sizeof(Clock) +
                        (m_numbers.capacity() + m_ids.capacity()) * sizeof(std::uint32_t);
    for (const Clock &clock : m_clocks) {
        bytes += clock.name.capacity() + clock.parents.capacity() * sizeof(ClockId);
        for (const std::string &name : clock.names) {
            bytes += sizeof(name) + name.capacity();
        }
    }
    return bytes;
}

} // namespace kvr::netlistdb::analysis
