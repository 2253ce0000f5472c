#include "design/MatchedNets.h"

#include "design/Design.h"

#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

MatchedNets::MatchedNets(Design &design, PathResolver &resolver, const std::vector<std::string> &paths, bool all)
    : m_design(design), m_all(all)
{
    if (paths.empty()) {
        m_starts.push_back({&design.root(), nullptr});
    }
    for (const std::string &path : paths) {
        if (resolver.isInstanceOnly(path)) {
            m_starts.push_back({&resolver.instance(path), nullptr});
            continue;
        }
        for (const PathResolver::Bit &bit : resolver.nets(path)) {
            if (bit.net != nullptr) {
                m_starts.push_back({bit.instance, bit.net});
            }
        }
    }
}

bool MatchedNets::next(MatchedNet &net)
{
    while (m_next == m_nets.size()) {
        m_nets.clear();
        m_next = 0;
        if (IVDBInstance *const below = m_walk.next()) {
            m_instance = below;
            enter(*below);
        } else if (!m_starts.empty()) {
            const Start start = m_starts.front();
            m_starts.pop_front();
            if (start.net == nullptr) {
                m_walk = LevelWalk(*start.instance);
                continue;
            }
            m_instance = start.instance;
            m_nets.push_back(start.net);
        } else {
            return false;
        }
    }
    net.instance = m_instance;
    net.net = m_nets[m_next++];
    net.name = VDBHelper::getNetFullName(net.net, net.instance);
    return true;
}

void MatchedNets::enter(IVDBInstance &instance)
{
    // Nets inside cells are not what the user declared.
    const bool isLeaf = instance.getSubInstances().empty() && &instance != &m_design.root();
    if (isLeaf || m_design.isBlackBox(*instance.getModule())) {
        return;
    }
    for (const Probe &probe : probesOf(m_design, *instance.getModule())) {
        if (probe.item != nullptr && !probe.item->isSelectableForDebugger()) {
            continue;
        }
        for (IVDBNet *net : probe.bits) {
            if ((m_all || probe.declared) && net != nullptr && net->isSelectableForDebugger()) {
                m_nets.push_back(net);
            }
        }
    }
}

} // namespace kvr::netlistdb::tool
