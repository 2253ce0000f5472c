#include "design/JoinedNets.h"

#include <DataBase.h>
#include <map>
#include <unordered_set>
#include <utility>

namespace kvr::netlistdb::tool {

const Verific::Net *JoinedNets::wireOf(const Verific::Net &net)
{
    return leaderOf(moduleOf(*net.Owner()), &net);
}

const Verific::Port *JoinedNets::portOf(const Verific::Net &wire)
{
    const Module &module = moduleOf(*wire.Owner());
    if (const auto port = module.ports.find(&wire); port != module.ports.end()) {
        return port->second;
    }
    Verific::SetIter si;
    Verific::Port *port = nullptr;
    FOREACH_PORT_OF_NET (&wire, si, port) {
        return port;
    }
    return nullptr;
}

const Verific::Net *JoinedNets::leaderOf(const Module &module, const Verific::Net *net)
{
    for (auto leader = module.leaders.find(net); leader != module.leaders.end(); leader = module.leaders.find(net)) {
        net = leader->second;
    }
    return net;
}

/// What is known of @p netlist, found out from the netlists below it upwards, without recursion: hierarchies may be
/// deeper than the stack.
JoinedNets::Module &JoinedNets::moduleOf(const Verific::Netlist &netlist)
{
    std::vector<const Verific::Netlist *> waiting = {&netlist};
    std::unordered_set<const Verific::Netlist *> entered;
    while (!waiting.empty()) {
        const Verific::Netlist *each = waiting.back();
        if (m_modules.count(each) != 0) {
            waiting.pop_back();
        } else if (!entered.insert(each).second) {
            waiting.pop_back();
            Module module;
            fill(module, *each);
            m_modules.emplace(each, std::move(module));
        } else {
            Verific::MapIter mi;
            Verific::Instance *inst = nullptr;
            FOREACH_INSTANCE_OF_NETLIST (each, mi, inst) {
                const Verific::Netlist *view = inst->View();
                if (view != nullptr && view != waiting.back() && m_modules.count(view) == 0) {
                    waiting.push_back(view);
                }
            }
        }
    }
    return m_modules.at(&netlist);
}

void JoinedNets::fill(Module &module, const Verific::Netlist &netlist)
{
    if (netlist.IsBlackBox() != 0) {
        return;
    }
    Verific::MapIter mi;
    Verific::Instance *inst = nullptr;
    FOREACH_INSTANCE_OF_NETLIST (&netlist, mi, inst) {
        const auto view = m_modules.find(inst->View());
        if (view == m_modules.end()) {
            continue;
        }
        for (const std::vector<const Verific::Port *> &ports : view->second.shorts) {
            const Verific::Net *first = nullptr;
            for (const Verific::Port *port : ports) {
                const Verific::Net *net = inst->GetNet(port);
                net = net != nullptr ? leaderOf(module, net) : nullptr;
                if (net != nullptr && first != nullptr && net != first) {
                    module.leaders.emplace(net, first);
                }
                first = first != nullptr ? first : net;
            }
        }
    }
    std::map<const Verific::Net *, std::vector<const Verific::Port *>> wires;
    std::vector<const Verific::Net *> order;
    Verific::Port *port = nullptr;
    FOREACH_PORT_OF_NETLIST (&netlist, mi, port) {
        if (port->GetNet() != nullptr) {
            const Verific::Net *wire = leaderOf(module, port->GetNet());
            std::vector<const Verific::Port *> &ports = wires[wire];
            if (ports.empty()) {
                order.push_back(wire);
            }
            ports.push_back(port);
        }
    }
    for (const Verific::Net *wire : order) {
        if (!module.leaders.empty()) {
            module.ports.emplace(wire, wires[wire].front());
        }
        if (wires[wire].size() > 1) {
            module.shorts.push_back(wires[wire]);
        }
    }
}

} // namespace kvr::netlistdb::tool
