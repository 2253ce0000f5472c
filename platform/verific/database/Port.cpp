#include "Port.h"

#include "Instance.h"
#include "Net.h"
#include "Netlist.h"

#include <utility>

namespace Verific {

Port::Port(const char *name, unsigned dir) : Port(SharedName(name), dir) {}

Port::Port(SharedName name, unsigned dir) : DesignObj(std::move(name)), m_dir(dir) {}

Port::~Port()
{
    if (m_bus != nullptr) {
        m_bus->removeElement(this);
    }
    if (m_owner != nullptr && m_owner->m_dying) {
        return; // net and pins are deleted with the netlist
    }
    Connect(nullptr);
    if (m_owner != nullptr) {
        SetIter iter;
        Instance *inst = nullptr;
        FOREACH_SET_ITEM (&m_owner->m_references, iter, &inst) {
            inst->Disconnect(this);
        }
        if (m_owner->m_clock == this) {
            m_owner->m_clock = nullptr;
        }
        if (m_owner->m_input == this) {
            m_owner->m_input = nullptr;
        }
        m_owner->m_ports.removeSlot(m_slot);
    }
}

void Port::Connect(Net *net)
{
    if (net == m_net || (net != nullptr && (m_owner == nullptr || net->m_owner != m_owner))) {
        return;
    }
    Net *earlier = m_net;
    const unsigned earlierSlot = m_netSlot;
    if (net != nullptr) {
        m_netSlot = net->addPort(this);
    }
    m_net = net;
    if (earlier != nullptr) {
        earlier->removePort(earlierSlot, IsInput() != 0);
    }
}

PortBus::PortBus(const char *name, int left, int right, unsigned dir) : PortBus(SharedName(name), left, right, dir) {}

PortBus::PortBus(SharedName name, int left, int right, unsigned dir)
    : DesignObj(std::move(name)), m_elements(left, right), m_dir(dir)
{
}

PortBus::~PortBus()
{
    for (Port *port : m_elements.bits()) {
        if (port != nullptr) {
            port->m_bus = nullptr;
        }
    }
    if (m_owner != nullptr && !m_owner->m_dying) {
        m_owner->m_portBuses.removeSlot(m_slot);
    }
}

unsigned PortBus::Size() const
{
    return m_elements.size();
}

void PortBus::SetElement(int index, Port *port)
{
    const std::uint64_t offset = m_elements.offsetOf(index);
    Port *before = m_elements.at(index);
    if (offset >= m_elements.width() || before == port) {
        return;
    }
    if (before != nullptr) {
        before->m_bus = nullptr;
    }
    if (port != nullptr && port->m_bus != nullptr) {
        port->m_bus->removeElement(port);
    }
    m_elements.put(offset, port);
    if (port != nullptr) {
        port->m_bus = this;
    }
}

void PortBus::removeElement(Port *port)
{
    m_elements.remove(port, static_cast<std::int64_t>(m_elements.bits().back()->m_slot) - port->m_slot);
    port->m_bus = nullptr;
}

} // namespace Verific
