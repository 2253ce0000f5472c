#include "NetlistCopier.h"

#include "Instance.h"
#include "Net.h"
#include "Netlist.h"
#include "ParamTable.h"
#include "Port.h"

#include <algorithm>
#include <utility>

namespace Verific {

namespace {

/// Passes @p object to @p netlist, which has room for it.
template <typename Object> Object *give(Netlist &netlist, std::unique_ptr<Object> object)
{
    netlist.Add(object.get());
    return object.release();
}

/// Enters into @p copied the copy of every entry of @p from, which is at the same place in @p to.
void reportTable(Map &copied, const Map *from, const Map *to)
{
    MapIter fromIter;
    MapIter toIter;
    void *original = nullptr;
    void *copy = nullptr;
    fromIter.First(from);
    toIter.First(to);
    while (fromIter.Next(nullptr, &original) != 0 && toIter.Next(nullptr, &copy) != 0) {
        copied.Insert(original, copy, 1);
    }
}

} // namespace

Netlist *Netlist::Copy(Map *copied) const
{
    if (m_disposable && copied == nullptr && NumOfRefs() == 0) {
        return const_cast<Netlist *>(this)->moveContents();
    }
    return NetlistCopier(*this).run(copied).release();
}

NetlistCopier::NetlistCopier(const Netlist &source) : m_source(source) {}

std::unique_ptr<Netlist> NetlistCopier::run(Map *copied)
{
    m_copy = m_source.makeAlike();
    m_copy->m_reclaim.partial = true;
    copyPorts();
    copyPortBuses();
    copyNets();
    copyNetBuses();
    copyInstances();
    orderPins();
    if (copied != nullptr) {
        copied->reserve(copied->slots() + m_source.m_ports.Size() + m_source.m_nets.Size() + m_source.m_insts.Size());
        reportTable(*copied, &m_source.m_ports, &m_copy->m_ports);
        reportTable(*copied, &m_source.m_nets, &m_copy->m_nets);
        reportTable(*copied, &m_source.m_insts, &m_copy->m_insts);
    }
    m_copy->m_reclaim.partial = false;
    return std::move(m_copy);
}

void NetlistCopier::copyPorts()
{
    m_copy->m_ports.reserve(m_source.m_ports.Size());
    m_ports.resize(m_source.m_ports.slots());
    MapIter iter;
    Port *port = nullptr;
    FOREACH_MAP_ITEM (&m_source.m_ports, iter, nullptr, &port) {
        Port *copy = give(*m_copy, std::unique_ptr<Port>(new Port(port->m_name, port->m_dir)));
        copy->copyTraits(*port);
        m_ports[port->m_slot] = copy;
    }
    if (m_source.m_clock != nullptr) {
        m_copy->m_clock = m_ports[m_source.m_clock->m_slot];
    }
    if (m_source.m_input != nullptr) {
        m_copy->m_input = m_ports[m_source.m_input->m_slot];
    }
}

void NetlistCopier::copyPortBuses()
{
    m_copy->m_portBuses.reserve(m_source.m_portBuses.Size());
    MapIter iter;
    PortBus *bus = nullptr;
    FOREACH_MAP_ITEM (&m_source.m_portBuses, iter, nullptr, &bus) {
        PortBus *copy =
            give(*m_copy,
                 std::unique_ptr<PortBus>(new PortBus(bus->m_name, bus->LeftIndex(), bus->RightIndex(), bus->m_dir)));
        copy->copyTraits(*bus);
        const BusElements<Port>::Bits &from = bus->m_elements.bits();
        BusElements<Port>::Bits &to = copy->m_elements.bits();
        to.resize(from.size());
        for (std::size_t at = 0; at < from.size(); ++at) {
            if (from[at] != nullptr && from[at]->m_owner == &m_source) {
                to[at] = m_ports[from[at]->m_slot];
                to[at]->m_bus = copy;
            }
        }
        copy->m_elements.trim();
    }
}

void NetlistCopier::copyNets()
{
    m_copy->m_nets.reserve(m_source.m_nets.Size());
    m_nets.resize(m_source.m_nets.slots());
    MapIter iter;
    Net *net = nullptr;
    FOREACH_MAP_ITEM (&m_source.m_nets, iter, nullptr, &net) {
        std::unique_ptr<Net> made(net->IsRamNet() ? new RamNet(net->m_name, net->Size()) : new Net(net->m_name));
        Net *copy = give(*m_copy, std::move(made));
        copy->copyTraits(*net);
        m_nets[net->m_slot] = {copy, net->m_first};
        if (net->m_ports == nullptr) {
            continue;
        }
        SetIter portIter;
        Port *port = nullptr;
        FOREACH_SET_ITEM (net->m_ports, portIter, &port) {
            m_ports[port->m_slot]->Connect(copy);
        }
    }
}

void NetlistCopier::copyNetBuses()
{
    m_copy->m_netBuses.reserve(m_source.m_netBuses.Size());
    MapIter iter;
    NetBus *bus = nullptr;
    FOREACH_MAP_ITEM (&m_source.m_netBuses, iter, nullptr, &bus) {
        NetBus *copy =
            give(*m_copy, std::unique_ptr<NetBus>(new NetBus(bus->m_name, bus->LeftIndex(), bus->RightIndex())));
        copy->copyTraits(*bus);
        const BusElements<Net>::Bits &from = bus->m_elements.bits();
        BusElements<Net>::Bits &to = copy->m_elements.bits();
        to.resize(from.size());
        for (std::size_t at = 0; at < from.size(); ++at) {
            if (from[at] != nullptr && from[at]->m_owner == &m_source) {
                to[at] = m_nets[from[at]->m_slot].copy;
                to[at]->m_bus = copy;
            }
        }
        copy->m_elements.trim();
    }
}

void NetlistCopier::copyInstances()
{
    m_copy->m_insts.reserve(m_source.m_insts.Size());
    MapIter iter;
    Instance *inst = nullptr;
    FOREACH_MAP_ITEM (&m_source.m_insts, iter, nullptr, &inst) {
        Instance *copy = give(*m_copy, std::unique_ptr<Instance>(new Instance(inst->m_name, inst->m_view)));
        copy->copyTraits(*inst);
        ParamTable::retain(inst->m_params);
        copy->m_params = inst->m_params;
        copyPins(inst, copy);
    }
}

void NetlistCopier::copyPins(const Instance *from, Instance *to)
{
    to->reservePins(from->m_pinCount);
    MapIter iter;
    PortRef *ref = nullptr;
    FOREACH_PORTREF_OF_INST (from, iter, ref) {
        CopiedNet &net = m_nets[ref->m_net->m_slot];
        if (net.expected == ref) {
            net.expected = ref->m_next;
        } else {
            m_mixed.push_back(ref->m_net);
        }
        to->appendPin(ref->m_port, net.copy);
    }
}

void NetlistCopier::orderPins()
{
    std::sort(m_mixed.begin(), m_mixed.end());
    m_mixed.erase(std::unique(m_mixed.begin(), m_mixed.end()), m_mixed.end());
    for (const Net *net : m_mixed) {
        m_nets[net->m_slot].copy->applyPinRanks(net->pinRanks());
    }
}

} // namespace Verific
