#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

namespace kvr::netlistdb {

class IVDBNetlist;
class IVDBPort;

/// Whether a walk is to stop at the ports that cannot be anything else.
enum class PlainPorts { Visit, Skip };

/// What a walk has found out about a module. Modules are few and read-only, their instances are many.
struct ModuleFacts {
    const IVDBNetlist *netlist = nullptr;
    bool isUserDeclared = false;

    // Looked up when the walk comes to the members of the first instance.
    const std::vector<IVDBPort *> *ports = nullptr;
    bool portsArePlain = false;  ///< no port claims to be an instance, a net or a bus
    bool isOurs = false;         ///< exactly a VDBNetlist, whose lists of nets only grow
    bool listsOnlyPorts = false; ///< the walk lists no net or bus of it

    bool listsNothing(PlainPorts plainPorts) const
    {
        return listsOnlyPorts && portsArePlain && plainPorts == PlainPorts::Skip;
    }
};

/// A memo of the modules that a walk has met: an open-addressing hash table by address.
class ModuleMemo {
  public:
    /// @p netlist may be null: an instance without module counts as generated. Lives as long as this object.
    ModuleFacts &of(const IVDBNetlist *netlist)
    {
        std::size_t slot = slotOf(netlist);
        while (m_slots[slot].known != nullptr) {
            if (m_slots[slot].netlist == netlist) {
                return *m_slots[slot].known;
            }
            slot = (slot + 1) & (m_slots.size() - 1);
        }
        return add(netlist);
    }

  private:
    struct Slot {
        const IVDBNetlist *netlist = nullptr;
        ModuleFacts *known = nullptr; ///< null in a free slot
    };

    std::size_t slotOf(const IVDBNetlist *netlist) const
    {
        // The upper bits of the product depend on every bit of the address.
        return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(netlist)) * 0x9E3779B97F4A7C15U >> m_shift;
    }
    ModuleFacts &add(const IVDBNetlist *netlist);
    void place(ModuleFacts *known);
    void grow();

    unsigned m_shift = 58;
    std::vector<Slot> m_slots = std::vector<Slot>(64); ///< a power of two, half of them free
    std::deque<ModuleFacts> m_modules;
};

} // namespace kvr::netlistdb
