#include "clock/ElaboratedPrepass.h"

#include "clock/HighestNet.h"
#include "clock/ItemLookup.h"
#include "netlist/verific_queries.h"

#include "DataBase.h"

#include <netlistdb/IVDBInstance.h>

#include <algorithm>
#include <deque>
#include <functional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace kvr::netlistdb {

namespace ask = verific_queries;

namespace {

/// The clock nets of all registers of one kind that stand in one module, each once.
class RegisterClocks {
  public:
    explicit RegisterClocks(const ItemLookup &items) : m_items(items) {}

    /// The nets on the clock port of every instance of @p registerNetlist in @p module.
    const std::vector<IVDBNet *> &of(const Verific::Netlist *registerNetlist, const Verific::Netlist *module)
    {
        const auto [byModule, isNew] = m_clocks.try_emplace(registerNetlist);
        if (isNew) {
            collect(registerNetlist, byModule->second);
        }
        return byModule->second[module];
    }

  private:
    using ByModule = std::unordered_map<const Verific::Netlist *, std::vector<IVDBNet *>>;

    void collect(const Verific::Netlist *registerNetlist, ByModule &byModule) const
    {
        const Verific::Port *clockPort = ask::clockPort(*registerNetlist);
        if (clockPort == nullptr) {
            return;
        }
        Verific::SetIter references;
        Verific::Instance *instance = nullptr;
        FOREACH_REFERENCE_OF_NETLIST (registerNetlist, references, instance) {
            Verific::MapIter pins;
            Verific::PortRef *pin = nullptr;
            FOREACH_PORTREF_OF_INST (instance, pins, pin) {
                if (pin->GetPort() == clockPort) {
                    byModule[instance->Owner()].push_back(m_items.find(pin->GetNet()));
                }
            }
        }
        for (auto &entry : byModule) {
            std::vector<IVDBNet *> &nets = entry.second;
            std::sort(nets.begin(), nets.end(), std::less<IVDBNet *>());
            nets.erase(std::unique(nets.begin(), nets.end()), nets.end());
        }
    }

    const ItemLookup &m_items;
    std::unordered_map<const Verific::Netlist *, ByModule> m_clocks;
};

/// The clock nets of all registers, each in the instance whose module holds the register.
std::set<InstanceNet> registerClocksBelow(IVDBInstance *root, const ItemLookup &items)
{
    std::set<InstanceNet> clocks;
    RegisterClocks registerClocks(items);
    std::deque<IVDBInstance *> queue;
    if (root != nullptr) {
        queue.push_back(root);
    }
    IVDBInstance *lastParent = nullptr;
    std::unordered_set<const Verific::Netlist *> doneInParent; // registers of one kind give the same nets once a parent
    for (; !queue.empty(); queue.pop_front()) {
        IVDBInstance *instance = queue.front();
        const Verific::Netlist *netlist = items.find(instance->getModule());
        if (netlist == nullptr) {
            continue;
        }
        if (ask::isRegister(*netlist)) {
            IVDBInstance *parent = instance->getOwnerInstance() != nullptr ? instance->getOwnerInstance() : root;
            if (parent != lastParent) {
                lastParent = parent;
                doneInParent.clear();
            }
            if (doneInParent.insert(netlist).second) {
                for (IVDBNet *net : registerClocks.of(netlist, items.find(parent->getModule()))) {
                    clocks.emplace(parent, net);
                }
            }
        }
        if (ask::mayDescend(*netlist)) {
            const std::vector<IVDBInstance *> &children = instance->getSubInstances();
            queue.insert(queue.end(), children.begin(), children.end());
        }
    }
    return clocks;
}

} // namespace

std::set<InstanceNet> elaboratedClocks(IVDBInstance *root, const ItemLookup &items)
{
    std::set<InstanceNet> highest;
    HighestNet climb(items, root);
    for (const InstanceNet &clock : registerClocksBelow(root, items)) {
        highest.insert(climb.ofOneOfMany(clock));
    }
    return highest;
}

} // namespace kvr::netlistdb
