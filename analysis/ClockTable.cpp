#include "analysis/ClockTable.h"

#include "analysis/ClockParents.h"
#include "analysis/RegisterCounts.h"

#include <netlistdb/DesignDatabase.h>
#include <netlistdb/IClockDomain.h>
#include <netlistdb/IVDBNet.h>

#include <algorithm>
#include <functional>
#include <numeric>
#include <tuple>
#include <utility>

namespace kvr::netlistdb::analysis {

namespace {

/// True when a person would rather read @p a: nearest to the top, then shortest, then first in byte order.
bool isBetterName(const std::string &a, const std::string &b)
{
    const auto levels = [](const std::string &name) { return std::count(name.begin(), name.end(), '/'); };
    return std::make_tuple(levels(a), a.size(), std::cref(a)) < std::make_tuple(levels(b), b.size(), std::cref(b));
}

} // namespace

ClockTable::ClockTable(const DesignModel &design) : m_ids(design.clocks.back().count(), NONE)
{
    const std::vector<ClockUse> uses = countRegisters(design.hierarchy, design.clocks);
    m_clocks.reserve(uses.size());
    for (const ClockUse &use : uses) {
        const Place place = design.rootOf(use.clock);
        m_ids[use.clock] = static_cast<ClockId>(m_clocks.size());
        m_numbers.push_back(use.clock);
        m_clocks.push_back({design.nameOf(place),
                            design.itemOf(place.context),
                            design.itemOf(place),
                            kindOfRoot(design, place.context.back().module, place.net),
                            use.edges,
                            use.registers,
                            {},
                            {}});
    }
    nameAsInDatabase(design);
    sortByName();
    findParents(design);
}

void ClockTable::sortByName()
{
    std::vector<ClockId> order(m_clocks.size());
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin(), order.end(),
                     [this](ClockId a, ClockId b) { return m_clocks[a].name < m_clocks[b].name; });
    std::vector<Clock> clocks;
    std::vector<std::uint32_t> numbers;
    clocks.reserve(order.size());
    numbers.reserve(order.size());
    for (const ClockId old : order) {
        m_ids[m_numbers[old]] = static_cast<ClockId>(clocks.size());
        numbers.push_back(m_numbers[old]);
        clocks.push_back(std::move(m_clocks[old]));
    }
    m_clocks = std::move(clocks);
    m_numbers = std::move(numbers);
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
    std::vector<std::string> declared(m_clocks.size()); ///< best name of a net that a user declared
    for (const IClockDomain *domain : design.database.listAllClockDomains(design.source)) {
        Context context;
        const DesignModel::ModuleNet net = design.find(domain->getNet());
        if (net.module == NONE || !design.find(domain->getInstance(), context) || context.back().module != net.module) {
            continue;
        }
        const ElectricalRoot root = electricalRoot(design, {std::move(context), net.net});
        const ClockId clock = root.clock != NONE ? m_ids[root.clock] : NONE;
        if (clock == NONE || m_clocks[clock].name == domain->getName()) {
            continue;
        }
        m_clocks[clock].names.push_back(domain->getName());
        if (domain->getNet()->isUserDeclared() && !root.inverted &&
            (declared[clock].empty() || isBetterName(domain->getName(), declared[clock]))) {
            declared[clock] = domain->getName();
        }
    }
    for (ClockId clock = 0; clock < m_clocks.size(); ++clock) {
        std::vector<std::string> &names = m_clocks[clock].names;
        const IVDBNet *const begin = m_clocks[clock].net;
        if (begin != nullptr && !begin->isUserDeclared() && !declared[clock].empty()) {
            names.push_back(std::exchange(m_clocks[clock].name, declared[clock]));
            names.erase(std::find(names.begin(), names.end(), declared[clock]));
        }
        std::sort(names.begin(), names.end());
        names.erase(std::unique(names.begin(), names.end()), names.end());
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
            bytes += sizeof(std::string) + name.capacity();
        }
    }
    return bytes;
}

} // namespace kvr::netlistdb::analysis
