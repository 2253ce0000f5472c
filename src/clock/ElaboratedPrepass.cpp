#include "clock/ElaboratedPrepass.h"

#include "clock/HighestNet.h"
#include "clock/ItemLookup.h"
#include "netlist/verific_queries.h"

#include "DataBase.h"

#include <netlistdb/IVDBInstance.h>
#include <netlistdb/IVDBNetlist.h>

#include <algorithm>
#include <deque>
#include <functional>
#include <unordered_map>
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

/// What the pre-pass asks of a module, once.
struct ClockedModule {
    const Verific::Netlist *netlist; ///< null: not known
    bool isRegister;
    bool mayDescend;
    const IVDBInstance *doneIn; ///< the parent whose registers of this kind were looked at last
};

class ClockedModules {
  public:
    explicit ClockedModules(const ItemLookup &items) : m_items(items) {}

    ClockedModule &of(const IVDBNetlist *module)
    {
        if (m_last == nullptr || module != m_lastModule) {
            m_lastModule = module;
            m_last = &find(module);
        }
        return *m_last;
    }

  private:
    ClockedModule &find(const IVDBNetlist *module)
    {
        const auto [place, isNew] = m_facts.try_emplace(module);
        ClockedModule &facts = place->second;
        if (isNew) {
            const Verific::Netlist *netlist = m_items.find(module);
            const bool isKnown = netlist != nullptr;
            facts = {netlist, isKnown && ask::isRegister(*netlist), isKnown && ask::mayDescend(*netlist), nullptr};
        }
        return facts;
    }

    const ItemLookup &m_items;
    std::unordered_map<const IVDBNetlist *, ClockedModule> m_facts;
    const IVDBNetlist *m_lastModule = nullptr;
    ClockedModule *m_last = nullptr;
};

/// The clock nets of all registers, each in the instance whose module holds the register.
std::set<InstanceNet> registerClocksBelow(IVDBInstance *root, const ItemLookup &items)
{
    std::set<InstanceNet> clocks;
    RegisterClocks registerClocks(items);
    ClockedModules modules(items);
    std::deque<const IVDBInstance *> queue; // without the leaves, which are most of the instances
    const auto visit = [&](const IVDBInstance *instance) {
        ClockedModule &module = modules.of(instance->getModule());
        if (module.isRegister) {
            IVDBInstance *parent = instance->getOwnerInstance() != nullptr ? instance->getOwnerInstance() : root;
            // Registers of one kind give the same nets once a parent.
            if (module.doneIn != parent) {
                module.doneIn = parent;
                for (IVDBNet *net : registerClocks.of(module.netlist, items.find(parent->getModule()))) {
                    clocks.emplace(parent, net);
                }
            }
        }
        if (module.mayDescend && !instance->getSubInstances().empty()) {
            queue.push_back(instance);
        }
    };
    if (root != nullptr) {
        visit(root);
    }
    for (; !queue.empty(); queue.pop_front()) {
        for (const IVDBInstance *child : queue.front()->getSubInstances()) {
            visit(child);
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
