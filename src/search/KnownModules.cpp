#include "search/KnownModules.h"

#include <netlistdb/IVDBNetlist.h>

namespace kvr::netlistdb {

KnownModule &KnownModules::find(const IVDBNetlist *netlist)
{
    for (std::size_t slot = slotOf(netlist); m_slots[slot] != nullptr; slot = (slot + 1) % m_slots.size()) {
        if (m_slots[slot]->netlist == netlist) {
            return *m_slots[slot];
        }
    }
    m_modules.push_back({netlist, netlist != nullptr && netlist->isUserDeclared()});
    if (m_modules.size() * 2 > m_slots.size()) {
        grow();
    } else {
        place(&m_modules.back());
    }
    return m_modules.back();
}

void KnownModules::place(KnownModule *known)
{
    std::size_t slot = slotOf(known->netlist);
    while (m_slots[slot] != nullptr) {
        slot = (slot + 1) % m_slots.size();
    }
    m_slots[slot] = known;
}

void KnownModules::grow()
{
    --m_shift;
    m_slots.assign(m_slots.size() * 2, nullptr);
    for (KnownModule &known : m_modules) {
        place(&known);
    }
}

} // namespace kvr::netlistdb
