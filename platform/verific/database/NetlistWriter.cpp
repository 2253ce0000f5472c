#include "NetlistWriter.h"

#include "Instance.h"
#include "Library.h"
#include "Net.h"
#include "Netlist.h"
#include "Port.h"
#include "SavedFile.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

#include <capnp/message.h>
#include <kj/exception.h>

namespace Verific {

using saved::Row;
using saved::storeList;

namespace {

/// Size of a table after the design was found to fit the format.
std::uint32_t count(std::uint64_t size)
{
    return saved::checkedSize(size);
}

template <typename Object> void enter(const Object *object, std::vector<const Object *> &objects, Row &row)
{
    if (row == 0) {
        objects.push_back(object);
        row = count(objects.size());
    }
}

} // namespace

unsigned Netlist::SaveToFile(const char *file_name) const
{
    if (file_name == nullptr) {
        return 0;
    }
    try {
        capnp::MallocMessageBuilder message;
        {
            NetlistWriter writer(*this);
            if (!writer.gather()) {
                return 0;
            }
            writer.store(message.initRoot<saved::SavedNetlist>());
        }
        return saved_file::write(file_name, message) ? 1 : 0;
    } catch (const std::length_error &) {
        return 0;
    } catch (const kj::Exception &) {
        return 0;
    }
}

NetlistWriter::Places::Places(const Map &table)
{
    if (table.slots() == table.Size()) {
        return;
    }
    m_places.resize(table.slots());
    std::uint32_t place = 0;
    for (unsigned slot = 0; slot < table.slots(); ++slot) {
        if (table.valueAt(slot) != nullptr) {
            m_places[slot] = place++;
        }
    }
}

NetlistWriter::NetlistWriter(const Netlist &top) : m_top(top) {}

bool NetlistWriter::gather()
{
    gatherRows();
    if (!saved::isAcyclic(children())) {
        return false;
    }
    for (const Library *library : m_libraries) {
        addObject(*library, m_libraryColumns);
    }
    for (const Cell *cell : m_cells) {
        addObject(*cell, m_cellColumns);
        m_cellLibraries.push_back(cell->m_owner != nullptr ? m_rows[cell->m_owner] : 0);
    }
    std::uint64_t instances = 0;
    for (const Netlist *netlist : m_netlists) {
        m_portPlaces.emplace_back(netlist->m_ports);
        m_instancePlaces.emplace_back(netlist->m_insts);
        m_firstInstance.push_back(instances);
        instances += netlist->m_insts.Size();
    }
    count(instances);
    m_latestShape.resize(m_netlists.size());
    for (Row row = 0; row < m_netlists.size(); ++row) {
        addNetlist(row);
    }
    for (Row row = 0; row < m_netlists.size(); ++row) {
        addReferences(row);
    }
    return true;
}

/// Libraries, cells and netlists are written in the order of their owners.
void NetlistWriter::gatherRows()
{
    Set hierarchy(POINTER_HASH);
    m_top.Hierarchy(hierarchy, 1);
    SetIter iter;
    Netlist *netlist = nullptr;
    FOREACH_SET_ITEM (&hierarchy, iter, &netlist) {
        m_netlists.push_back(netlist);
        if (const Cell *cell = netlist->m_owner) {
            enter(cell, m_cells, m_rows[cell]);
            if (cell->m_owner != nullptr) {
                enter<Library>(cell->m_owner, m_libraries, m_rows[cell->m_owner]);
            }
        }
    }
    const auto byOwner = [this](const auto *left, const auto *right) {
        const auto key = [this](const auto *object) {
            const auto owner = object->m_owner != nullptr ? m_rows.find(object->m_owner) : m_rows.end();
            const Row row = owner != m_rows.end() ? owner->second : std::numeric_limits<Row>::max();
            return std::make_pair(row, object->m_owner != nullptr ? object->m_slot : 0);
        };
        return key(left) < key(right);
    };
    const auto arrange = [this](auto &objects, const auto &less) {
        std::stable_sort(objects.begin(), objects.end(), less);
        Row row = 0;
        for (const auto *object : objects) {
            m_rows[object] = ++row;
        }
    };
    arrange(m_libraries, [](const Library *left, const Library *right) {
        const auto key = [](const Library *library) {
            return std::make_pair(library->m_owner != Libset::Global(), library->m_slot);
        };
        return key(left) < key(right);
    });
    arrange(m_cells, byOwner);
    arrange(m_netlists, byOwner);
}

saved::Children NetlistWriter::children() const
{
    saved::Children children(m_netlists.size());
    std::vector<Row> met(m_netlists.size()); // the netlist in which each was met last, plus 1
    for (Row row = 0; row < m_netlists.size(); ++row) {
        const Netlist *previous = nullptr;
        MapIter iter;
        Instance *inst = nullptr;
        FOREACH_MAP_ITEM (&m_netlists[row]->m_insts, iter, nullptr, &inst) {
            if (inst->m_view == nullptr || inst->m_view == previous) {
                continue;
            }
            previous = inst->m_view;
            const Row child = rowOf(previous) - 1;
            if (met[child] != row + 1) {
                met[child] = row + 1;
                children[row].push_back(child);
            }
        }
    }
    return children;
}

Row NetlistWriter::rowOf(const Netlist *netlist) const
{
    const auto found = m_rows.find(netlist);
    return found != m_rows.end() ? found->second : 0;
}

void NetlistWriter::addObject(const DesignObj &object, saved::ObjectColumns &columns)
{
    unsigned flags = 0;
    flags |= object.m_protected ? saved::PROTECTED : 0u;
    flags |= object.m_userDeclared ? saved::USER_DECLARED : 0u;
    columns.add(object.Name(), object.m_linefile, m_shared.attributes(object.m_atts), static_cast<std::uint8_t>(flags),
                m_shared);
}

void NetlistWriter::addNetlist(Row row)
{
    const Netlist &netlist = *m_netlists[row];
    const Places &ports = m_portPlaces[row];
    const Places nets(netlist.m_nets);
    addObject(netlist, m_netlistColumns);
    m_netlistCells.push_back(netlist.m_owner != nullptr ? m_rows[netlist.m_owner] : 0);
    unsigned flags = 0;
    flags |= netlist.m_blackBox ? saved::BLACK_BOX : 0u;
    flags |= netlist.m_register ? saved::REGISTER : 0u;
    flags |= netlist.m_operator ? saved::OPERATOR : 0u;
    m_netlistFlags.push_back(static_cast<std::uint8_t>(flags));
    m_netlistTypes.push_back(netlist.m_type);
    m_netlistClocks.push_back(netlist.m_clock != nullptr ? ports.at(netlist.m_clock->m_slot) + 1 : 0);
    m_netlistInputs.push_back(netlist.m_input != nullptr ? ports.at(netlist.m_input->m_slot) + 1 : 0);
    m_portCounts.push_back(netlist.m_ports.Size());
    m_portBusCounts.push_back(netlist.m_portBuses.Size());
    m_netCounts.push_back(netlist.m_nets.Size());
    m_netBusCounts.push_back(netlist.m_netBuses.Size());
    m_instanceCounts.push_back(netlist.m_insts.Size());
    addPorts(netlist);
    addPortBuses(netlist, ports);
    addNets(netlist, ports, nets);
    addNetBuses(netlist, nets);
    addInstances(netlist, nets);
}

void NetlistWriter::addPorts(const Netlist &netlist)
{
    MapIter iter;
    Port *port = nullptr;
    FOREACH_MAP_ITEM (&netlist.m_ports, iter, nullptr, &port) {
        addObject(*port, m_ports);
        if (port->m_dir > DIR_INOUT) {
            throw std::length_error("direction out of range");
        }
        m_portDirections.push_back(static_cast<std::uint8_t>(port->m_dir));
    }
}

void NetlistWriter::addPortBuses(const Netlist &netlist, const Places &ports)
{
    MapIter iter;
    PortBus *bus = nullptr;
    FOREACH_MAP_ITEM (&netlist.m_portBuses, iter, nullptr, &bus) {
        addObject(*bus, m_portBuses.objects);
        m_portBuses.left.push_back(bus->LeftIndex());
        m_portBuses.right.push_back(bus->RightIndex());
        if (bus->m_dir > DIR_INOUT) {
            throw std::length_error("direction out of range");
        }
        m_portBuses.directions.push_back(static_cast<std::uint8_t>(bus->m_dir));
        m_portBuses.sizes.push_back(count(bus->m_elements.bits().size()));
        for (const Port *port : bus->m_elements.bits()) {
            const bool mine = port != nullptr && port->m_owner == &netlist;
            m_portBuses.elements.push_back(mine ? ports.at(port->m_slot) + 1 : 0);
        }
    }
}

void NetlistWriter::addNets(const Netlist &netlist, const Places &ports, const Places &nets)
{
    const std::size_t portNets = m_portNetPorts.size();
    MapIter iter;
    Net *net = nullptr;
    FOREACH_MAP_ITEM (&netlist.m_nets, iter, nullptr, &net) {
        if (net->IsRamNet()) {
            m_memoryNets.push_back(count(m_nets.size()));
            m_memoryBits.push_back(net->Size());
        }
        addObject(*net, m_nets);
        SetIter portIter;
        Port *port = nullptr;
        FOREACH_SET_ITEM (net->m_ports, portIter, &port) {
            m_portNetPorts.push_back(ports.at(port->m_slot));
            m_portNetNets.push_back(nets.at(net->m_slot));
        }
    }
    m_portNetCounts.push_back(count(m_portNetPorts.size() - portNets));
}

void NetlistWriter::addNetBuses(const Netlist &netlist, const Places &nets)
{
    MapIter iter;
    NetBus *bus = nullptr;
    FOREACH_MAP_ITEM (&netlist.m_netBuses, iter, nullptr, &bus) {
        addObject(*bus, m_netBuses.objects);
        m_netBuses.left.push_back(bus->LeftIndex());
        m_netBuses.right.push_back(bus->RightIndex());
        m_netBuses.sizes.push_back(count(bus->m_elements.bits().size()));
        for (const Net *net : bus->m_elements.bits()) {
            const bool mine = net != nullptr && net->m_owner == &netlist;
            m_netBuses.elements.push_back(mine ? nets.at(net->m_slot) + 1 : 0);
        }
    }
}

void NetlistWriter::addInstances(const Netlist &netlist, const Places &nets)
{
    m_expected.assign(netlist.m_nets.slots(), nullptr);
    MapIter netIter;
    Net *net = nullptr;
    FOREACH_MAP_ITEM (&netlist.m_nets, netIter, nullptr, &net) {
        m_expected[net->m_slot] = net->m_first;
    }
    std::vector<const Net *> mixed;
    MapIter iter;
    Instance *inst = nullptr;
    FOREACH_MAP_ITEM (&netlist.m_insts, iter, nullptr, &inst) {
        m_instanceParameters.set(m_instances.size(), m_shared.parameters(inst->m_params));
        addObject(*inst, m_instances);
        m_instanceShapes.push_back(shapeOf(*inst));
        MapIter pinIter;
        PortRef *ref = nullptr;
        FOREACH_PORTREF_OF_INST (inst, pinIter, ref) {
            const unsigned slot = ref->m_net->m_slot;
            m_pinNets.push_back(nets.at(slot));
            if (m_expected[slot] == ref) {
                m_expected[slot] = ref->m_next;
            } else {
                mixed.push_back(ref->m_net);
            }
        }
    }
    addMixedNets(mixed, nets, m_nets.size() - netlist.m_nets.Size());
}

Row NetlistWriter::shapeOf(const Instance &inst)
{
    const Row view = inst.m_view != nullptr ? rowOf(inst.m_view) : 0;
    m_shapeKey.assign(1, view);
    MapIter iter;
    PortRef *ref = nullptr;
    FOREACH_PORTREF_OF_INST (&inst, iter, ref) {
        m_shapeKey.push_back(m_portPlaces[view - 1].at(ref->m_port->m_slot));
    }
    const std::size_t pins = m_shapeKey.size() - 1;
    // Instances of a view mostly have the shape of the one before.
    if (view != 0 && m_latestShape[view - 1] != 0) {
        const Row latest = m_latestShape[view - 1] - 1;
        if (m_shapeSizes[latest] == pins &&
            std::equal(m_shapeKey.begin() + 1, m_shapeKey.end(),
                       m_shapePorts.begin() + static_cast<std::ptrdiff_t>(m_shapeStarts[latest]))) {
            return latest;
        }
    }
    const auto [found, added] = m_shapes.emplace(m_shapeKey, count(m_shapeViews.size()));
    if (added) {
        m_shapeViews.push_back(view);
        m_shapeSizes.push_back(count(pins));
        m_shapeStarts.push_back(m_shapePorts.size());
        m_shapePorts.insert(m_shapePorts.end(), m_shapeKey.begin() + 1, m_shapeKey.end());
    }
    if (view != 0) {
        m_latestShape[view - 1] = found->second + 1;
    }
    return found->second;
}

void NetlistWriter::addMixedNets(std::vector<const Net *> &mixed, const Places &nets, std::uint64_t firstRow)
{
    std::sort(mixed.begin(), mixed.end(),
              [](const Net *left, const Net *right) { return left->m_slot < right->m_slot; });
    mixed.erase(std::unique(mixed.begin(), mixed.end()), mixed.end());
    for (const Net *net : mixed) {
        m_mixedNets.push_back(count(firstRow + nets.at(net->m_slot)));
        const std::vector<std::uint32_t> ranks = net->pinRanks();
        m_mixedRanks.insert(m_mixedRanks.end(), ranks.begin(), ranks.end());
    }
}

void NetlistWriter::addReferences(Row row)
{
    std::vector<std::uint32_t> rows;
    rows.reserve(m_netlists[row]->m_references.Size());
    const Netlist *owner = nullptr;
    Row ownerRow = 0;
    SetIter iter;
    Instance *inst = nullptr;
    FOREACH_SET_ITEM (&m_netlists[row]->m_references, iter, &inst) {
        if (inst->m_owner == nullptr) {
            continue;
        }
        if (inst->m_owner != owner) {
            owner = inst->m_owner;
            ownerRow = rowOf(owner);
        }
        if (ownerRow != 0) {
            rows.push_back(count(m_firstInstance[ownerRow - 1] + m_instancePlaces[ownerRow - 1].at(inst->m_slot)));
        }
    }
    if (!std::is_sorted(rows.begin(), rows.end())) {
        m_mixedViews.push_back(row);
        m_mixedReferences.insert(m_mixedReferences.end(), rows.begin(), rows.end());
    }
}

void NetlistWriter::store(saved::SavedNetlist::Builder to)
{
    to.setTop(rowOf(&m_top) - 1);
    m_shared.store(to);
    m_libraryColumns.store(to.initLibraries());
    m_cellColumns.store(to.initCells());
    storeList(m_cellLibraries, [&to](unsigned size) { return to.initCellLibraries(size); });
    m_netlistColumns.store(to.initNetlists());
    storeList(m_netlistCells, [&to](unsigned size) { return to.initNetlistCells(size); });
    storeList(m_netlistFlags, [&to](unsigned size) { return to.initNetlistFlags(size); });
    storeList(m_netlistTypes, [&to](unsigned size) { return to.initNetlistTypes(size); });
    storeList(m_netlistClocks, [&to](unsigned size) { return to.initNetlistClocks(size); });
    storeList(m_netlistInputs, [&to](unsigned size) { return to.initNetlistInputs(size); });
    storeList(m_portCounts, [&to](unsigned size) { return to.initPortCounts(size); });
    storeList(m_portBusCounts, [&to](unsigned size) { return to.initPortBusCounts(size); });
    storeList(m_netCounts, [&to](unsigned size) { return to.initNetCounts(size); });
    storeList(m_netBusCounts, [&to](unsigned size) { return to.initNetBusCounts(size); });
    storeList(m_instanceCounts, [&to](unsigned size) { return to.initInstanceCounts(size); });
    storeList(m_portNetCounts, [&to](unsigned size) { return to.initPortNetCounts(size); });
    m_ports.store(to.initPorts());
    storeList(m_portDirections, [&to](unsigned size) { return to.initPortDirections(size); });
    m_portBuses.store(to.initPortBuses());
    m_nets.store(to.initNets());
    storeList(m_memoryNets, [&to](unsigned size) { return to.initMemoryNets(size); });
    storeList(m_memoryBits, [&to](unsigned size) { return to.initMemoryBits(size); });
    m_netBuses.store(to.initNetBuses());
    storeList(m_portNetPorts, [&to](unsigned size) { return to.initPortNetPorts(size); });
    storeList(m_portNetNets, [&to](unsigned size) { return to.initPortNetNets(size); });
    storeList(m_shapeViews, [&to](unsigned size) { return to.initShapeViews(size); });
    storeList(m_shapeSizes, [&to](unsigned size) { return to.initShapeSizes(size); });
    storeList(m_shapePorts, [&to](unsigned size) { return to.initShapePorts(size); });
    m_instances.store(to.initInstances());
    storeList(m_instanceShapes, [&to](unsigned size) { return to.initInstanceShapes(size); });
    storeList(m_instanceParameters.finish(m_instances.size()),
              [&to](unsigned size) { return to.initInstanceParameters(size); });
    storeList(m_pinNets, [&to](unsigned size) { return to.initPinNets(size); });
    storeList(m_mixedNets, [&to](unsigned size) { return to.initMixedNets(size); });
    storeList(m_mixedRanks, [&to](unsigned size) { return to.initMixedRanks(size); });
    storeList(m_mixedViews, [&to](unsigned size) { return to.initMixedViews(size); });
    storeList(m_mixedReferences, [&to](unsigned size) { return to.initMixedReferences(size); });
}

} // namespace Verific
