#include "Instance.h"

#include "Net.h"
#include "Netlist.h"
#include "NetlistReclaimer.h"
#include "ParamTable.h"
#include "PinBlock.h"
#include "Port.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace Verific {

namespace {

/// Instances with up to this many pin places are searched pin by pin.
constexpr unsigned MOST_SEARCHED_PINS = 48;
/// Bounds of the blocks that are sized by guess.
constexpr unsigned MOST_FIRST_PINS = 64;
constexpr unsigned LEAST_MORE_PINS = 4;
constexpr unsigned MOST_MORE_PINS = 16384;

constexpr unsigned LOOP_ENDED = 0xFFFFFFFFu;

} // namespace

Instance::Instance(const char *name, Netlist *view) : Instance(SharedName(name), view) {}

Instance::Instance(SharedName name, Netlist *view) : DesignObj(std::move(name)), m_view(view)
{
    if (m_view != nullptr) {
        Set &references = m_view->m_references;
        if (references.sparse()) {
            references.compact([](void *moved, unsigned slot) { static_cast<Instance *>(moved)->m_viewSlot = slot; });
        }
        m_viewSlot = references.append(this);
    }
}

Instance::~Instance()
{
    if (m_owner != nullptr && m_owner->m_dying) {
        freeBlocks(); // the nets go as well
    } else {
        dropPins();
        if (m_owner != nullptr) {
            m_owner->m_insts.removeSlot(m_slot);
        }
    }
    ParamTable::release(m_params);
    if (m_view != nullptr) {
        m_view->m_references.removeSlot(m_viewSlot);
        if (m_view->m_reclaim.lifetime != Lifetime::OWNED || m_view->m_reclaim.doomed) {
            const NetlistReclaimer::Deletion deletion;
            NetlistReclaimer::noteLostUser(*m_view, m_owner != nullptr && m_owner->m_dying ? m_owner : nullptr);
        }
    }
}

unsigned Instance::Connect(const Port *port, Net *net)
{
    if (port == nullptr || m_view == nullptr || port->m_owner != m_view ||
        (net != nullptr && (m_owner == nullptr || net->m_owner != m_owner))) {
        return 0;
    }
    PortRef *pin = findPin(port);
    if (pin != nullptr) {
        if (pin->m_net == net) {
            return 1;
        }
        dropPin(pin);
    }
    if (net == nullptr) {
        return 0;
    }
    takePin(spacePin(), port, net);
    return 1;
}

unsigned Instance::Disconnect(const Port *port)
{
    PortRef *pin = findPin(port);
    if (pin == nullptr) {
        return 0;
    }
    dropPin(pin);
    return 1;
}

Net *Instance::GetNet(const Port *port) const
{
    const PortRef *pin = findPin(port);
    return pin != nullptr ? pin->m_net : nullptr;
}

unsigned Instance::Type() const
{
    return m_view != nullptr ? m_view->Type() : static_cast<unsigned>(PRIM_NONE);
}

unsigned Instance::IsOperator() const
{
    return m_view != nullptr && m_view->IsOperator();
}

unsigned Instance::IsPrimitive() const
{
    return m_view != nullptr && m_view->IsPrimitive();
}

Map *Instance::GetParameters() const
{
    return m_params != nullptr ? m_params->map() : nullptr;
}

void Instance::AddParam(const char *key, const char *value)
{
    if (key == nullptr) {
        return;
    }
    if (m_params == nullptr || m_params->shared()) {
        auto table = m_params != nullptr ? m_params->clone() : std::make_unique<ParamTable>();
        table->set(SharedName(key), SharedName(value));
        ParamTable::release(m_params);
        m_params = table.release();
    } else {
        m_params->set(SharedName(key), SharedName(value));
    }
}

void Instance::ShareParams(const Instance &other)
{
    ParamTable::retain(other.m_params);
    ParamTable::release(std::exchange(m_params, other.m_params));
}

bool Instance::nextPortRef(MapIter &iter, PortRef *&ref) const
{
    // The iterator holds block and place within it; before the first step there is no block.
    unsigned at = iter.position();
    auto *block = const_cast<PinBlock *>(static_cast<const PinBlock *>(iter.source()));
    if (block == nullptr && at == 0) {
        block = m_pins;
    }
    for (; block != nullptr; block = block->next, at = 0) {
        for (; at < block->used; ++at) {
            PortRef *pin = block->pins() + at;
            if (pin->m_port != nullptr) {
                ref = pin;
                iter.setSource(block);
                iter.setPosition(at + 1);
                return true;
            }
        }
    }
    iter.setSource(nullptr);
    iter.setPosition(LOOP_ENDED);
    ref = nullptr;
    return false;
}

void Instance::reservePins(unsigned count)
{
    unsigned room = 0;
    PinBlock **end = &m_pins;
    for (; *end != nullptr; end = &(*end)->next) {
        room += (*end)->capacity;
    }
    if (count > room) {
        *end = PinBlock::make(count - room);
        m_pinCapacity = room == 0 && count <= UINT16_MAX ? static_cast<std::uint16_t>(count) : std::uint16_t{0};
    }
}

PortRef *Instance::findPin(const Port *port) const
{
    if (m_pinCount == 0 || port == nullptr) {
        return nullptr;
    }
    // Most pins are connected in the order of the ports, and all ports at that.
    const unsigned likely = port->m_slot;
    if (likely < m_pins->used && m_pins->pins()[likely].m_port == port) {
        return m_pins->pins() + likely;
    }
    if (m_pinIndex == nullptr) {
        if (!m_pinsMixed && port->m_owner == m_view && likely > lastPin()->m_port->m_slot) {
            return nullptr;
        }
        unsigned places = 0;
        for (const PinBlock *block = m_pins; block != nullptr; block = block->next) {
            places += block->used;
        }
        if (places <= MOST_SEARCHED_PINS) {
            for (PinBlock *block = m_pins; block != nullptr; block = block->next) {
                for (unsigned at = 0; at < block->used; ++at) {
                    if (block->pins()[at].m_port == port) {
                        return block->pins() + at;
                    }
                }
            }
            return nullptr;
        }
        indexPins();
    }
    const auto found = m_pinIndex->find(port);
    return found != m_pinIndex->end() ? found->second : nullptr;
}

PortRef *Instance::lastPin() const
{
    PinBlock *block = m_pins;
    if (block == nullptr || block->used == 0) {
        return nullptr;
    }
    while (block->next != nullptr && block->next->used > 0) {
        block = block->next;
    }
    return block->pins() + (block->used - 1);
}

PortRef *Instance::spacePin()
{
    if (m_pins == nullptr) {
        m_pins = PinBlock::make(std::clamp(m_view->m_ports.Size(), 1u, MOST_FIRST_PINS));
        m_pinCapacity = static_cast<std::uint16_t>(m_pins->capacity);
        return m_pins->space();
    }
    PinBlock *block = m_pins;
    while (block->full() && block->next != nullptr) {
        block = block->next;
    }
    while (block->next != nullptr && block->next->used > 0) {
        block = block->next;
    }
    if (!block->full()) {
        return block->space();
    }
    if (block->next == nullptr) {
        // Blocks without connected pins would pile up where pins are reconnected often.
        unsigned room = 0;
        for (PinBlock **link = &m_pins; *link != nullptr;) {
            PinBlock *each = *link;
            if (each != block && each->idle()) {
                *link = each->next;
                PinBlock::free(each);
            } else {
                room += each->capacity;
                link = &each->next;
            }
        }
        m_pinCapacity = 0;
        block->next = PinBlock::make(std::clamp(room, LEAST_MORE_PINS, MOST_MORE_PINS));
    }
    return block->next->space();
}

void Instance::takePin(PortRef *pin, const Port *port, Net *net)
{
    if (m_pinIndex != nullptr) {
        m_pinIndex->emplace(port, pin);
    }
    const PortRef *last = lastPin();
    m_pinsMixed = last != nullptr && (m_pinsMixed || last->m_port->m_slot > port->m_slot);
    pin->m_port = const_cast<Port *>(port);
    pin->m_net = net;
    pin->m_inst = this;
    PinBlock *block = m_pins;
    while (!block->holds(pin)) {
        block = block->next;
    }
    ++block->used;
    ++m_pinCount;
    net->link(pin, port->IsOutput() != 0);
}

void Instance::appendPin(Port *port, Net *net)
{
    PinBlock *block = m_pins;
    PortRef *pin = block->space();
    pin->m_port = port;
    pin->m_net = net;
    pin->m_inst = this;
    m_pinsMixed = m_pinsMixed || (block->used > 0 && (pin - 1)->m_port->m_slot > port->m_slot);
    ++block->used;
    ++m_pinCount;
    net->link(pin, port->IsOutput() != 0);
}

std::uint64_t Instance::placeOf(const PortRef *pin) const
{
    std::uint64_t before = 0;
    PinBlock *block = m_pins;
    while (!block->holds(pin)) {
        before += block->capacity;
        block = block->next;
    }
    return before + static_cast<std::uint64_t>(pin - block->pins());
}

void Instance::dropPin(PortRef *pin)
{
    pin->m_net->unlink(pin, pin->m_port->IsOutput() != 0);
    if (m_pinIndex != nullptr) {
        m_pinIndex->erase(pin->m_port);
    }
    pin->m_port = nullptr;
    pin->m_net = nullptr;
    --m_pinCount;
    // Disconnected places after the last connected pin become free.
    for (;;) {
        PinBlock *block = m_pins;
        while (block->next != nullptr && block->next->used > 0) {
            block = block->next;
        }
        while (block->used > 0 && block->pins()[block->used - 1].m_port == nullptr) {
            --block->used;
        }
        if (block->used > 0 || block == m_pins) {
            return;
        }
    }
}

void Instance::dropPins()
{
    for (PinBlock *block = m_pins; block != nullptr; block = block->next) {
        for (unsigned at = 0; at < block->used; ++at) {
            PortRef *pin = block->pins() + at;
            if (pin->m_port != nullptr) {
                pin->m_net->unlink(pin, pin->m_port->IsOutput() != 0);
            }
        }
    }
    freeBlocks();
}

void Instance::freeBlocks()
{
    if (m_pins != nullptr && m_pinCapacity != 0) {
        PinBlock::free(std::exchange(m_pins, nullptr), m_pinCapacity);
    }
    while (m_pins != nullptr) {
        PinBlock::free(std::exchange(m_pins, m_pins->next));
    }
    delete m_pinIndex;
    m_pinIndex = nullptr;
    m_pinCount = 0;
}

void Instance::indexPins() const
{
    auto index = std::make_unique<PinIndex>();
    index->reserve(m_pinCount);
    for (PinBlock *block = m_pins; block != nullptr; block = block->next) {
        for (unsigned at = 0; at < block->used; ++at) {
            PortRef *pin = block->pins() + at;
            if (pin->m_port != nullptr) {
                index->emplace(pin->m_port, pin);
            }
        }
    }
    m_pinIndex = index.release();
}

} // namespace Verific
