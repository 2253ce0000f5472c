#include "search/ModuleMemo.h"

#include <netlistdb/IVDBNetlist.h>

namespace kvr::netlistdb {

ModuleFacts &ModuleMemo::add(const IVDBNetlist *netlist)
{
    if ((m_modules.size() + 1) * 2 > m_slots.size()) {
        grow();
    }
    ModuleFacts known;
    known.netlist = netlist;
    known.isUserDeclared = netlist != nullptr && netlist->isUserDeclared();
    m_modules.push_back(known);
    place(&m_modules.back());
    return m_modules.back();
}

void ModuleMemo::place(ModuleFacts *known)
{
    std::size_t slot = slotOf(known->netlist);
    while (m_slots[slot].known != nullptr) {
        slot = (slot + 1) & (m_slots.size() - 1);
    }
    m_slots[slot] = {known->netlist, known};
}

void ModuleMemo::grow()
{
    m_slots = std::vector<Slot>(m_slots.size() * 2);
    --m_shift;
    for (ModuleFacts &known : m_modules) {
        place(&known);
    }
}

} // namespace kvr::netlistdb
