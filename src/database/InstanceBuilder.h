#pragma once

#include "database/ImportSteps.h"
#include "model/InstanceTraits.h"

#include <functional>
#include <unordered_map>
#include <vector>

namespace Verific {
class Instance;
}

namespace kvr::netlistdb {

class ClockAnalysis;
class VDBInstance;
class VDBObjectPool;

/// Makes the items of instances. What all occurrences of an instance have in common is worked out once.
class InstanceBuilder {
  public:
    /// An instance of the netlist database, with what the items of its occurrences need.
    struct Child {
        const Verific::Instance *instance;
        const Verific::Netlist *netlist; ///< what it is an instance of
        IVDBNetlist *module;             ///< the one built from that
        InstanceTraits traits;
        bool hasInstances; ///< in that netlist
        bool isBlackBox;
    };
    /// The instances of a netlist in their order, up to the first whose view is not in the hierarchy.
    struct Children {
        std::vector<Child> all;
        bool complete = true; ///< there is no such view
    };

    InstanceBuilder(ClockAnalysis &clocks, VDBObjectPool &pool, const ModuleMap &modules)
        : m_clocks(clocks), m_pool(pool), m_modules(modules)
    {
    }
    InstanceBuilder(const InstanceBuilder &) = delete;
    InstanceBuilder &operator=(const InstanceBuilder &) = delete;

    /// Calls @p visit for the instances of @p netlist in their order; false when the view of one is not in the
    /// hierarchy, which ends it there.
    bool forEachChild(const Verific::Netlist &netlist, const std::function<void(Child &&)> &visit) const;
    /// The instances of @p netlist; they stay with this object.
    const Children &childrenOf(const Verific::Netlist &netlist);
    /// Makes the item of @p child below @p owner, which takes it, and registers it.
    VDBInstance *add(VDBInstance &owner, const Child &child);

  private:
    ClockAnalysis &m_clocks;
    VDBObjectPool &m_pool;
    const ModuleMap &m_modules;
    std::unordered_map<const Verific::Netlist *, Children> m_children;
};

} // namespace kvr::netlistdb
