#include "Net.h"

#include "Instance.h"
#include "Netlist.h"
#include "Port.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace Verific {

Net::Net(const char *name) : Net(SharedName(name)) {}

Net::Net(SharedName name) : DesignObj(std::move(name)) {}

Net::~Net()
{
    if (m_bus != nullptr) {
        m_bus->removeElement(this);
    }
    if (m_owner == nullptr || !m_owner->m_dying) { // otherwise pins and ports go with the netlist
        while (m_first != nullptr) {
            m_first->m_inst->dropPin(m_first);
        }
        SetIter iter;
        Port *port = nullptr;
        FOREACH_SET_ITEM (m_ports, iter, &port) {
            port->m_net = nullptr;
        }
        if (m_owner != nullptr) {
            m_owner->m_nets.removeSlot(m_slot);
        }
    }
    delete m_ports;
}

Instance *Net::Driver() const
{
    return m_driver != nullptr ? m_driver->m_inst : nullptr;
}

unsigned Net::IsPwr() const
{
    return m_driver != nullptr && m_driver->m_inst->Type() == PRIM_PWR;
}

unsigned Net::IsGnd() const
{
    return m_driver != nullptr && m_driver->m_inst->Type() == PRIM_GND;
}

void Net::Connect(Port *port)
{
    if (port != nullptr) {
        port->Connect(this);
    }
}

Set *Net::GetPorts() const
{
    static Set none{POINTER_HASH};
    return m_ports != nullptr ? m_ports : &none;
}

bool Net::nextPortRef(SetIter &iter, PortRef *&ref) const
{
    // The iterator holds the next pin, so that the current one may be disconnected.
    ref = iter.position() == 0 ? m_first : const_cast<PortRef *>(static_cast<const PortRef *>(iter.source()));
    iter.setPosition(1);
    iter.setSource(ref != nullptr ? ref->m_next : nullptr);
    return ref != nullptr;
}

void Net::link(PortRef *ref, bool output)
{
    ref->m_next = nullptr;
    if (m_first == nullptr) {
        m_first = ref;
    } else {
        ref->m_prev = m_first->m_prev;
        ref->m_prev->m_next = ref;
    }
    m_first->m_prev = ref;
    ++m_refs;
    if (output) {
        ++m_drivers;
        if (m_driver == nullptr) {
            m_driver = ref;
        }
    }
}

void Net::unlink(PortRef *ref, bool output)
{
    PortRef *next = ref->m_next;
    if (ref == m_first) {
        m_first = next;
    } else {
        ref->m_prev->m_next = next;
    }
    if (next != nullptr) {
        next->m_prev = ref->m_prev;
    } else if (m_first != nullptr) {
        m_first->m_prev = ref->m_prev;
    }
    --m_refs;
    if (!output) {
        return;
    }
    --m_drivers;
    if (ref == m_driver) {
        m_driver = nullptr;
        if (outputPins() > 0) {
            while (!next->m_port->IsOutput()) {
                next = next->m_next;
            }
            m_driver = next;
        }
    }
}

std::vector<std::uint32_t> Net::pinRanks() const
{
    struct PinPlace {
        std::uint32_t inst;
        std::uint32_t position; ///< in order of connection
        std::uint64_t pin;
    };
    std::vector<PinPlace> places;
    places.reserve(m_refs);
    for (const PortRef *ref = m_first; ref != nullptr; ref = ref->m_next) {
        const Instance *inst = ref->m_inst;
        places.push_back({inst->m_slot, static_cast<std::uint32_t>(places.size()), inst->placeOf(ref)});
    }
    std::sort(places.begin(), places.end(), [](const PinPlace &left, const PinPlace &right) {
        return std::tie(left.inst, left.pin) < std::tie(right.inst, right.pin);
    });
    std::vector<std::uint32_t> ranks(places.size());
    for (std::size_t rank = 0; rank < places.size(); ++rank) {
        ranks[places[rank].position] = static_cast<std::uint32_t>(rank);
    }
    return ranks;
}

void Net::applyPinRanks(const std::vector<std::uint32_t> &ranks)
{
    std::vector<PortRef *> sorted;
    sorted.reserve(m_refs);
    for (PortRef *ref = m_first; ref != nullptr; ref = ref->m_next) {
        sorted.push_back(ref);
    }
    m_drivers -= outputPins();
    m_first = nullptr;
    m_driver = nullptr;
    m_refs = 0;
    for (const std::uint32_t rank : ranks) {
        link(sorted[rank], sorted[rank]->IsOutput() != 0);
    }
}

unsigned Net::addPort(Port *port)
{
    if (m_ports == nullptr) {
        m_ports = new Set(POINTER_HASH);
    }
    if (m_ports->sparse()) {
        m_ports->compact([](void *moved, unsigned slot) { static_cast<Port *>(moved)->m_netSlot = slot; });
    }
    const unsigned slot = m_ports->append(port);
    m_drivers += port->IsInput();
    return slot;
}

void Net::removePort(unsigned slot, bool input)
{
    m_ports->removeSlot(slot);
    m_drivers -= input ? 1 : 0;
}

unsigned Net::outputPins() const
{
    unsigned inputs = 0;
    SetIter iter;
    Port *port = nullptr;
    FOREACH_SET_ITEM (m_ports, iter, &port) {
        inputs += port->IsInput();
    }
    return m_drivers - inputs;
}

RamNet::RamNet(const char *name, unsigned bits) : RamNet(SharedName(name), bits) {}

RamNet::RamNet(SharedName name, unsigned bits) : Net(std::move(name)), m_bits(bits) {}

NetBus::NetBus(const char *name, int left, int right) : NetBus(SharedName(name), left, right) {}

NetBus::NetBus(SharedName name, int left, int right) : DesignObj(std::move(name)), m_elements(left, right) {}

NetBus::~NetBus()
{
    for (Net *net : m_elements.bits()) {
        if (net != nullptr) {
            net->m_bus = nullptr;
        }
    }
    if (m_owner != nullptr && !m_owner->m_dying) {
        m_owner->m_netBuses.removeSlot(m_slot);
    }
}

void NetBus::SetElement(int index, Net *net)
{
    const std::uint64_t offset = m_elements.offsetOf(index);
    Net *before = m_elements.at(index);
    if (offset >= m_elements.width() || before == net) {
        return;
    }
    if (before != nullptr) {
        before->m_bus = nullptr;
    }
    if (net != nullptr && net->m_bus != nullptr) {
        net->m_bus->removeElement(net);
    }
    m_elements.put(offset, net);
    if (net != nullptr) {
        net->m_bus = this;
    }
}

void NetBus::removeElement(Net *net)
{
    m_elements.remove(net, static_cast<std::int64_t>(m_elements.bits().back()->m_slot) - net->m_slot);
    net->m_bus = nullptr;
}

} // namespace Verific
