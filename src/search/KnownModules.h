#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

namespace kvr::netlistdb {

class IVDBNetBus;
class IVDBNetlist;
class IVDBPort;

/// What a walk has found out about a module. Modules are few and read-only, their instances are many.
struct KnownModule {
    const IVDBNetlist *netlist;
    bool isUserDeclared;

    // Looked up when the walk comes to the members of the first instance.
    const std::vector<IVDBNetBus *> *buses = nullptr;
    const std::vector<IVDBPort *> *ports = nullptr;
    bool portsArePlain = false;  ///< no port claims to be an instance, a net or a bus
    bool listsOnlyPorts = false; ///< the walk lists no net or bus of it
};

/// The modules that a walk has met, found by address in constant time.
class KnownModules {
  public:
    /// @p netlist may be null: an instance without module counts as generated. Lives as long as this object.
    KnownModule &of(const IVDBNetlist *netlist)
    {
        KnownModule *known = m_slots[slotOf(netlist)];
        return known != nullptr && known->netlist == netlist ? *known : find(netlist);
    }

  private:
    std::size_t slotOf(const IVDBNetlist *netlist) const
    {
        // The upper bits of the product depend on every bit of the address.
        return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(netlist)) * 0x9E3779B97F4A7C15U >> m_shift;
    }
    KnownModule &find(const IVDBNetlist *netlist);
    void place(KnownModule *known);
    void grow();

    unsigned m_shift = 58;
    std::vector<KnownModule *> m_slots = std::vector<KnownModule *>(64); ///< at least half of them are free
    std::deque<KnownModule> m_modules;
};

} // namespace kvr::netlistdb
