#include "Netlist.h"

#include "Instance.h"
#include "Library.h"
#include "Net.h"
#include "NetlistReclaimer.h"
#include "OwnerTable.h"
#include "Port.h"

#include <memory>
#include <utility>
#include <vector>

namespace Verific {

namespace {

template <typename Object, typename Visit> void forEachIn(const Map &table, Visit visit)
{
    for (unsigned slot = 0; slot < table.slots(); ++slot) {
        if (auto *object = static_cast<Object *>(table.valueAt(slot))) {
            visit(object);
        }
    }
}

template <typename Object> void deleteAll(Map &table)
{
    forEachIn<Object>(table, [](Object *object) { delete object; });
    table.Reset();
}

} // namespace

Netlist::Netlist(const char *view_name) : DesignObj(view_name) {}

Netlist::Netlist(SharedName view_name) : DesignObj(std::move(view_name)) {}

Netlist::~Netlist()
{
    const NetlistReclaimer::Deletion deletion;
    m_dying = true;
    if (m_owner != nullptr) {
        m_owner->m_netlists.removeSlot(m_slot);
    }
    for (unsigned slot = 0; slot < m_references.slots(); ++slot) {
        auto *inst = static_cast<Instance *>(m_references.itemAt(slot));
        if (inst == nullptr) {
            continue;
        }
        if (inst->m_owner == nullptr || !inst->m_owner->m_dying) {
            inst->dropPins();
        }
        inst->m_view = nullptr;
        inst->m_viewSlot = Set::NO_SLOT;
    }
    deleteInstances();
    deleteAll<NetBus>(m_netBuses);
    deleteAll<PortBus>(m_portBuses);
    deleteAll<Net>(m_nets);
    deleteAll<Port>(m_ports);
    if (m_owner != nullptr) {
        m_owner->deleteIfAbandoned();
    }
}

void Netlist::deleteInstances()
{
    m_dying = true;
    deleteAll<Instance>(m_insts);
}

std::unique_ptr<Netlist> Netlist::makeAlike() const
{
    std::unique_ptr<Netlist> alike(new Netlist(m_name));
    alike->copyTraits(*this);
    alike->m_type = m_type;
    alike->m_blackBox = m_blackBox;
    alike->m_register = m_register;
    alike->m_operator = m_operator;
    return alike;
}

Netlist *Netlist::moveContents()
{
    Netlist *const moved = makeAlike().release();
    std::swap(moved->m_clock, m_clock);
    std::swap(moved->m_input, m_input);
    moved->m_ports.swap(m_ports);
    moved->m_portBuses.swap(m_portBuses);
    moved->m_nets.swap(m_nets);
    moved->m_netBuses.swap(m_netBuses);
    moved->m_insts.swap(m_insts);
    const auto adopt = [moved](auto *object) { object->m_owner = moved; };
    forEachIn<Port>(moved->m_ports, adopt);
    forEachIn<PortBus>(moved->m_portBuses, adopt);
    forEachIn<Net>(moved->m_nets, adopt);
    forEachIn<NetBus>(moved->m_netBuses, adopt);
    forEachIn<Instance>(moved->m_insts, adopt);
    return moved;
}

void Netlist::deleteWithCell()
{
    if (m_owner->m_restored && m_owner->NumOfNetlists() == 1) {
        m_owner->m_abandoned = true;
    }
    delete this;
}

bool Netlist::inLibset() const
{
    return m_owner != nullptr && m_owner->m_owner != nullptr && m_owner->m_owner->m_owner != nullptr;
}

bool Netlist::handsOnViews() const
{
    return m_owner == nullptr ? !m_reclaim.partial : m_reclaim.lifetime == Lifetime::WHILE_USED;
}

const char *Netlist::CellBaseName() const
{
    return m_owner != nullptr ? m_owner->Name() : nullptr;
}

unsigned Netlist::Add(Port *port)
{
    if (port == nullptr || port->m_owner != nullptr) {
        return 0;
    }
    port->m_slot = addToTable(m_ports, port->Name(), port, [](Port *moved, unsigned slot) { moved->m_slot = slot; });
    port->m_owner = this;
    return 1;
}

unsigned Netlist::Add(PortBus *bus)
{
    if (bus == nullptr || bus->m_owner != nullptr) {
        return 0;
    }
    bus->m_slot =
        addToTable(m_portBuses, bus->Name(), bus, [](PortBus *moved, unsigned slot) { moved->m_slot = slot; });
    bus->m_owner = this;
    return 1;
}

unsigned Netlist::Add(Net *net)
{
    if (net == nullptr || net->m_owner != nullptr) {
        return 0;
    }
    net->m_slot = addToTable(m_nets, net->Name(), net, [](Net *moved, unsigned slot) { moved->m_slot = slot; });
    net->m_owner = this;
    return 1;
}

unsigned Netlist::Add(NetBus *bus)
{
    if (bus == nullptr || bus->m_owner != nullptr) {
        return 0;
    }
    bus->m_slot = addToTable(m_netBuses, bus->Name(), bus, [](NetBus *moved, unsigned slot) { moved->m_slot = slot; });
    bus->m_owner = this;
    return 1;
}

unsigned Netlist::Add(Instance *inst)
{
    if (inst == nullptr || inst->m_owner != nullptr) {
        return 0;
    }
    inst->m_slot =
        addToTable(m_insts, inst->Name(), inst, [](Instance *moved, unsigned slot) { moved->m_slot = slot; });
    inst->m_owner = this;
    return 1;
}

Port *Netlist::GetPort(const char *name, unsigned) const
{
    return static_cast<Port *>(m_ports.GetValue(name));
}

PortBus *Netlist::GetPortBus(const char *name) const
{
    return static_cast<PortBus *>(m_portBuses.GetValue(name));
}

Net *Netlist::GetNet(const char *name) const
{
    return static_cast<Net *>(m_nets.GetValue(name));
}

NetBus *Netlist::GetNetBus(const char *name) const
{
    return static_cast<NetBus *>(m_netBuses.GetValue(name));
}

Instance *Netlist::GetInst(const char *name) const
{
    return static_cast<Instance *>(m_insts.GetValue(name));
}

void Netlist::Hierarchy(Set &netlists, unsigned include_leaves) const
{
    Set visited(POINTER_HASH);
    std::vector<const Netlist *> queue{this};
    visited.Insert(this);
    netlists.Insert(this);
    for (std::size_t at = 0; at < queue.size(); ++at) {
        const Netlist *previous = nullptr;
        MapIter iter;
        Instance *inst = nullptr;
        FOREACH_MAP_ITEM (&queue[at]->m_insts, iter, nullptr, &inst) {
            const Netlist *view = inst->View();
            if (view == nullptr || view == previous) {
                continue;
            }
            previous = view;
            if (include_leaves == 0 && (view->IsOperator() || view->IsPrimitive())) {
                continue;
            }
            if (visited.Insert(view) != 0) {
                queue.push_back(view);
                netlists.Insert(view);
            }
        }
    }
}

void Netlist::MakeRegister(Port *clock)
{
    m_register = true;
    m_clock = clock != nullptr && clock->Owner() == this ? clock : nullptr;
}

void Netlist::MakePrimitive(unsigned type, Port *input)
{
    m_type = type;
    m_input = input != nullptr && input->Owner() == this ? input : nullptr;
}

} // namespace Verific
