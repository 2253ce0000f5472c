#pragma once

#include "clock/ItemLookup.h"

#include "DataBase.h"

#include <netlistdb/IVDBInstance.h>
#include <netlistdb/InstanceNetSet.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kvr::netlistdb {

/// Climbs from a net inside an instance to the nets of the owner that enter through its ports. Made for one query or
/// pre-pass, during which the netlist does not change.
class Climb {
  public:
    explicit Climb(const ItemLookup &items) : m_items(items) {}

    /// Calls @p visit(owner, net) for every net of the owner of @p instance that enters it as @p net: through a port,
    /// other than an output, that meets @p net inside. In the order of the instance's pins; ends at a pin whose net has
    /// no item. Nothing is visited when the instance is null, has no owner or anything on the way has no counterpart.
    template <typename Visit> void above(const IVDBInstance *instance, const Verific::Net *net, Visit visit)
    {
        IVDBInstance *owner = instance != nullptr ? instance->getOwnerInstance() : nullptr;
        if (net == nullptr || owner == nullptr || owner->getModule() == nullptr ||
            m_items.find(owner->getModule()) == nullptr) {
            return;
        }
        const Verific::Instance *source = m_items.find(instance);
        const Verific::Set *ports = net->GetPorts();
        if (source == nullptr || ports->Size() == 0) {
            return;
        }
        if (ports->Size() == 1) {
            // The usual case: no need to look through all the pins for one port.
            const auto *port = static_cast<const Verific::Port *>(ports->GetLast());
            const Verific::Net *outside = port->IsOutput() ? nullptr : source->GetNet(port);
            IVDBNet *item = outside != nullptr ? m_items.find(outside) : nullptr;
            if (item != nullptr) {
                visit(InstanceNet(owner, item));
            }
            return;
        }
        for (const Verific::Net *outside : netsThrough(*source, *ports)) {
            IVDBNet *item = outside != nullptr ? m_items.find(outside) : nullptr;
            if (item == nullptr) {
                return;
            }
            visit(InstanceNet(owner, item));
        }
    }

  private:
    /// Where a pin stands among the pins of its instance.
    struct Place {
        std::size_t number;
        const Verific::Net *net;
    };
    using Pins = std::unordered_map<const Verific::Port *, Place>;
    using PinsOfInstances = std::unordered_map<const Verific::Instance *, Pins>;

    /// The nets on those pins of @p source that belong to @p ports and are no outputs, in the order of the pins. Walks
    /// all pins the first time that an instance is asked about, and remembers them the second time: many nets of one
    /// instance may have several ports.
    std::vector<const Verific::Net *> netsThrough(const Verific::Instance &source, const Verific::Set &ports)
    {
        if (m_pins == nullptr) {
            m_pins = std::make_unique<PinsOfInstances>();
        }
        const auto [pins, isFirst] = m_pins->try_emplace(&source);
        if (!isFirst && pins->second.empty()) {
            remember(source, pins->second);
        }
        return isFirst ? netsByWalking(source, ports) : netsByLookUp(pins->second, ports);
    }

    static std::vector<const Verific::Net *> netsByWalking(const Verific::Instance &source, const Verific::Set &ports)
    {
        std::vector<const Verific::Net *> nets;
        Verific::MapIter pins;
        Verific::PortRef *pin = nullptr;
        FOREACH_PORTREF_OF_INST (&source, pins, pin) {
            const Verific::Port *port = pin->GetPort();
            if (port != nullptr && !port->IsOutput() && ports.Get(port) != nullptr) {
                nets.push_back(pin->GetNet());
            }
        }
        return nets;
    }

    static std::vector<const Verific::Net *> netsByLookUp(const Pins &pins, const Verific::Set &ports)
    {
        std::vector<Place> places;
        Verific::SetIter each;
        const Verific::Port *port = nullptr;
        FOREACH_SET_ITEM (&ports, each, &port) {
            const auto pin = port->IsOutput() ? pins.end() : pins.find(port);
            if (pin != pins.end()) {
                places.push_back(pin->second);
            }
        }
        std::sort(places.begin(), places.end(), [](const Place &a, const Place &b) { return a.number < b.number; });
        std::vector<const Verific::Net *> nets;
        nets.reserve(places.size());
        for (const Place &place : places) {
            nets.push_back(place.net);
        }
        return nets;
    }

    static void remember(const Verific::Instance &source, Pins &places)
    {
        std::size_t number = 0;
        Verific::MapIter pins;
        Verific::PortRef *pin = nullptr;
        FOREACH_PORTREF_OF_INST (&source, pins, pin) {
            places.try_emplace(pin->GetPort(), Place{number++, pin->GetNet()});
        }
    }

    const ItemLookup &m_items;
    std::unique_ptr<PinsOfInstances> m_pins; ///< made on demand: most climbs need none
};

} // namespace kvr::netlistdb
