#include "analysis/probe/Locator.h"

#include "analysis/probe/NetNames.h"

#include <DataBase.h>

#include <netlistdb/DesignDatabase.h>
#include <netlistdb/IVDBInstance.h>
#include <netlistdb/IVDBNet.h>
#include <netlistdb/NameText.h>

#include <algorithm>
#include <stdexcept>

namespace kvr::netlistdb::analysis::probe {

Locator::Locator(const BitGraph &graph, IVDBInstance *root) : m_graph(graph), m_root(root)
{
    for (const ModuleGraph &module : graph.hierarchy.modules) {
        m_firstSub.push_back(static_cast<std::uint32_t>(m_subs.size()));
        for (const ModuleGraph::SubInstance &sub : module.subs) {
            m_subs.push_back(sub.instance);
        }
    }
    m_itemIndex.build(graph.hierarchy.items);
    m_subIndex.build(m_subs);
    m_firstNet.assign(graph.signalCount + 1, 0);
    for (const Signal signal : graph.signals) {
        ++m_firstNet[signal + 1];
    }
    for (std::size_t signal = 0; signal < graph.signalCount; ++signal) {
        m_firstNet[signal + 1] += m_firstNet[signal];
    }
    m_nets.resize(graph.signals.size());
    std::vector<std::uint32_t> next(m_firstNet.begin(), m_firstNet.end() - 1);
    for (std::uint32_t net = 0; net < graph.signals.size(); ++net) {
        m_nets[next[graph.signals[net]]++] = net;
    }
    orderNets();
    findInstances();
}

/// Puts declared nets first, and hashes the names of those that share a wire.
void Locator::orderNets()
{
    const std::vector<std::uint64_t> prefixes = prefixesOf(m_graph);
    m_firstHash.reserve(m_graph.signalCount);
    for (Signal signal = 0; signal < m_graph.signalCount; ++signal) {
        m_firstHash.push_back(static_cast<std::uint32_t>(m_nameHashes.size()));
        const auto first = m_nets.begin() + m_firstNet[signal];
        const auto last = m_nets.begin() + m_firstNet[signal + 1];
        if (last - first < 2) {
            continue;
        }
        std::stable_partition(first, last, [&](std::uint32_t net) {
            const IVDBNet *const item = netItem(placeOf(net));
            return item != nullptr && !nameText(*item).empty() && nameText(*item).front() != '$';
        });
        for (auto net = first; net != last; ++net) {
            const NetPlace place = placeOf(*net);
            const IVDBNet *const item = netItem(place);
            m_nameHashes.push_back(hashOfPath(item != nullptr ? nameText(*item) : "", prefixes[place.occurrence]));
        }
    }
}

/// The items of all occurrences, those above first.
void Locator::findInstances()
{
    m_instanceItems.assign(m_graph.occurrences.size(), nullptr);
    m_instanceItems[0] = m_root;
    for (std::uint32_t at = 1; at < m_graph.occurrences.size(); ++at) {
        const Occurrence &own = m_graph.occurrences[at];
        IVDBInstance *const above = m_instanceItems[own.parent];
        if (above == nullptr) {
            continue;
        }
        const ModuleGraph::SubInstance &sub = m_graph.moduleOf(own.parent).subs[own.sub];
        const std::vector<IVDBInstance *> &children = above->getSubInstances();
        IVDBInstance *const item = sub.cell < children.size() ? children[sub.cell] : nullptr;
        if (item != nullptr && m_graph.database.sourceInstance(item, m_graph.source) == sub.instance) {
            m_instanceItems[at] = item;
        }
    }
}

std::uint32_t Locator::occurrenceOf(const IVDBInstance *inst) const
{
    std::vector<std::uint32_t> way;
    bool isInside = true;
    for (const IVDBInstance *at = inst; at != m_root; at = at->getOwnerInstance()) {
        const Verific::Instance *const instance =
            at != nullptr ? m_graph.database.sourceInstance(at, m_graph.source) : nullptr;
        if (instance == nullptr) {
            throw std::invalid_argument("CrossProbe: the instance is no instance of the source");
        }
        way.push_back(m_subIndex.find(instance));
        isInside = isInside && way.back() != NONE;
    }
    std::uint32_t occurrence = 0;
    for (std::size_t level = way.size(); level-- > 0 && isInside;) {
        const std::uint32_t sub = way[level] - m_firstSub[m_graph.occurrences[occurrence].module];
        isInside = sub < m_graph.moduleOf(occurrence).subs.size();
        occurrence = m_graph.firstChild[occurrence] + sub;
    }
    return isInside ? occurrence : NONE;
}

Signal Locator::find(const IVDBInstance *inst, const IVDBNet *net) const
{
    if (net == nullptr || m_graph.database.sourceNet(net, m_graph.source) == nullptr) {
        throw std::invalid_argument("CrossProbe: the net is no net of the source");
    }
    const std::uint32_t occurrence = occurrenceOf(inst);
    const std::uint32_t item = m_itemIndex.find(net);
    if (occurrence == NONE || item == NONE) {
        return SIGNAL_UNKNOWN;
    }
    const std::uint32_t number = item - m_graph.moduleOf(occurrence).firstNet;
    if (number >= m_graph.moduleOf(occurrence).netCount()) {
        throw std::invalid_argument("CrossProbe: the net is none of that instance");
    }
    return m_graph.signalOf(occurrence, number);
}

NetPlace Locator::placeOf(std::uint32_t net) const
{
    const auto next = std::upper_bound(
        m_graph.occurrences.begin(), m_graph.occurrences.end(), net,
        [](std::uint32_t number, const Occurrence &occurrence) { return number < occurrence.firstNet; });
    const auto occurrence = static_cast<std::uint32_t>(next - m_graph.occurrences.begin()) - 1;
    return {occurrence, net - m_graph.occurrences[occurrence].firstNet};
}

} // namespace kvr::netlistdb::analysis::probe
