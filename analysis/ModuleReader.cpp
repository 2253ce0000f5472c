#include "analysis/ModuleReader.h"

#include "analysis/DeviceCells.h"
#include "analysis/ModelBuilder.h"

#include <DataBase.h>

#include <netlistdb/DesignDatabase.h>

#include <algorithm>
#include <stdexcept>

namespace kvr::netlistdb::analysis {

namespace {

constexpr std::size_t MOST_PINS = std::size_t{1} << 30;
constexpr std::size_t PINS_AT_ONCE = 64; ///< whose nets are looked up together

} // namespace

std::uint32_t ModuleReader::PortNumbers::numberOf(const Verific::Port *port, std::uint32_t guess) const
{
    return guess < ports.size() && ports[guess] == port ? guess : index.find(port);
}

bool ModuleReader::isModule(const Verific::Instance &instance)
{
    // Cells of one type mostly stand in a row.
    if (instance.View() != m_leafView) {
        if (!CellModels::isLeaf(instance.View())) {
            return !isDeviceCell(deviceCellName(instance));
        }
        m_leafView = instance.View();
    }
    return false;
}

ModuleGraph ModuleReader::read(const Verific::Netlist &netlist, std::uint32_t number)
{
    m_number = number;
    m_graph = ModuleGraph();
    m_graph.netlist = &netlist;
    readNets(netlist);
    readPorts(netlist);
    readCells(netlist);
    connectMemoryPorts();
    findSources();
    return std::move(m_graph);
}

void ModuleReader::readNets(const Verific::Netlist &netlist)
{
    m_nets.clear();
    m_nets.reserve(netlist.GetNets()->Size());
    Verific::MapIter nets;
    const Verific::Net *net = nullptr;
    FOREACH_NET_OF_NETLIST (&netlist, nets, net) {
        m_nets.push_back(net);
    }
    m_netIndex.build(m_nets);
    m_graph.m_nets = static_cast<std::uint32_t>(m_nets.size());
    m_graph.firstNet = static_cast<std::uint32_t>(m_items.size());
    m_items.reserve(m_items.size() + m_nets.size());
    for (const Verific::Net *each : m_nets) {
        m_items.push_back(m_database.netItem(each, m_source));
    }
}

void ModuleReader::readPorts(const Verific::Netlist &netlist)
{
    m_graph.ports.reserve(netlist.GetPorts()->Size());
    Verific::MapIter ports;
    const Verific::Port *port = nullptr;
    FOREACH_PORT_OF_NETLIST (&netlist, ports, port) {
        const Verific::Net *const net = port->GetNet();
        m_graph.ports.push_back({port, net != nullptr ? netOf(net) : NONE, port->IsOutput() == 0,
                                 port->IsOutput() != 0 || port->IsInout() != 0});
    }
}

const ModuleReader::PortNumbers &ModuleReader::portsOf(const Verific::Netlist &view)
{
    if (&view == m_lastView) {
        return *m_lastPorts;
    }
    const auto [found, isNew] = m_ports.try_emplace(&view);
    PortNumbers &numbers = found->second;
    if (isNew) {
        Verific::MapIter ports;
        const Verific::Port *port = nullptr;
        FOREACH_PORT_OF_NETLIST (&view, ports, port) {
            numbers.ports.push_back(port);
        }
        numbers.index.build(numbers.ports);
    }
    m_lastView = &view;
    m_lastPorts = &numbers;
    return numbers;
}

void ModuleReader::readCells(const Verific::Netlist &netlist)
{
    const std::size_t cells = netlist.GetInsts()->Size();
    m_graph.m_cells.reserve(cells);
    m_graph.m_firstPin.reserve(cells + 1);
    m_graph.m_firstPin.push_back(0);
    m_graph.m_pinNets.reserve(cells * 8); // memory that stays untouched costs nothing
    Verific::MapIter instances;
    const Verific::Instance *instance = nullptr;
    FOREACH_INSTANCE_OF_NETLIST (&netlist, instances, instance) {
        readCell(*instance);
    }
    numberPins();
    m_graph.m_pinNets.shrink_to_fit();
    m_graph.subs.shrink_to_fit();
}

void ModuleReader::readCell(const Verific::Instance &instance)
{
    const Verific::Netlist *const view = instance.View();
    const auto firstPin = static_cast<std::uint32_t>(m_graph.m_pinNets.size());
    if (view != nullptr) {
        const PortNumbers &ports = portsOf(*view);
        m_graph.m_pinNets.resize(firstPin + ports.ports.size(), NONE);
        if (m_graph.m_pinNets.size() >= MOST_PINS) {
            throw std::length_error("ClockMap: a module has more than 2^30 pins");
        }
        std::uint32_t guess = 0;
        Verific::MapIter pins;
        Verific::PortRef *pin = nullptr;
        FOREACH_PORTREF_OF_INST (&instance, pins, pin) {
            const std::uint32_t number = pin->GetPort() != nullptr ? ports.numberOf(pin->GetPort(), guess) : NONE;
            if (number != NONE && pin->GetNet() != nullptr) {
                m_pinNets.push_back(pin->GetNet());
                m_pinPositions.push_back(firstPin + number);
                guess = number + 1;
            }
        }
        if (m_pinNets.size() >= PINS_AT_ONCE) {
            numberPins();
        }
    }
    const auto cell = static_cast<std::uint32_t>(m_graph.m_cells.size());
    if (isModule(instance) && m_modules.at(view) < m_number) {
        m_graph.m_cells.push_back(static_cast<std::uint32_t>(m_graph.subs.size()) | ModuleGraph::SUB);
        m_graph.subs.push_back({&instance, cell, m_modules.at(view)});
    } else {
        const std::uint32_t model = m_models.modelOf(instance);
        m_graph.m_cells.push_back(model);
        if (m_models[model].isRegister()) {
            joinParts(instance, cell, m_models[model]);
        }
        if (m_models[model].kind == CellKind::Memory) {
            noteMemoryPort(instance, cell, m_models[model]);
        }
    }
    m_graph.m_firstPin.push_back(static_cast<std::uint32_t>(m_graph.m_pinNets.size()));
}

void ModuleReader::numberPins()
{
    m_netIndex.findAll(m_pinNets,
                       [this](std::size_t pin, std::uint32_t net) { m_graph.m_pinNets[m_pinPositions[pin]] = net; });
    m_pinNets.clear();
    m_pinPositions.clear();
}

void ModuleReader::joinParts(const Verific::Instance &instance, std::uint32_t cell, const CellModel &model)
{
    const Verific::Instance *const first = CellModels::firstPartOf(instance);
    if (first == nullptr) {
        return;
    }
    numberPins();
    const std::uint32_t firstPin = m_graph.m_firstPin[cell];
    m_graph.m_pinNets.resize(firstPin + model.pins.size(), NONE);
    const CellModel &ofFirst = m_models[m_models.modelOf(*first)];
    bool repeats = false;
    Verific::MapIter pins;
    Verific::PortRef *pin = nullptr;
    FOREACH_PORTREF_OF_INST (first, pins, pin) {
        const std::uint32_t net = netOf(pin->GetNet());
        for (std::uint32_t own = 0; own < model.pins.size(); ++own) {
            if (model.pins[own].isBorrowed && model.pins[own].port == pin->GetPort()) {
                m_graph.m_pinNets[firstPin + own] = net;
            }
        }
        for (const CellModel::ClockPin &clock : ofFirst.clocks) {
            const auto isOn = [&](const CellModel::ClockPin &own) {
                return m_graph.m_pinNets[firstPin + own.pin] == net;
            };
            repeats = repeats || (ofFirst.pins[clock.pin].port == pin->GetPort() &&
                                  std::any_of(model.clocks.begin(), model.clocks.end(), isOn));
        }
    }
    if (repeats) {
        m_graph.repeats.push_back(cell);
    }
}

void ModuleReader::noteMemoryPort(const Verific::Instance &instance, std::uint32_t cell, const CellModel &model)
{
    const std::string_view memory = parameterOf(instance, "MEMID");
    if (memory.empty()) {
        return;
    }
    numberPins();
    const bool isRead =
        std::any_of(model.pins.begin(), model.pins.end(), [](const CellModel::Pin &pin) { return pin.isOutput; });
    if (isRead && model.clocks.empty()) {
        m_reads.emplace_back(cell, memory);
    }
    for (const CellModel::ClockPin &clock : model.clocks) {
        const std::uint32_t net = m_graph.m_pinNets[m_graph.m_firstPin[cell] + clock.pin];
        if (!isRead && net != NONE) {
            m_writeClocks[memory].push_back(net);
        }
    }
}

void ModuleReader::connectMemoryPorts()
{
    for (const auto &[read, memory] : m_reads) {
        for (const std::uint32_t net : m_writeClocks[memory]) {
            m_graph.writes.push_back({read, net});
        }
    }
    m_reads.clear();
    m_writeClocks.clear();
}

void ModuleReader::findSources()
{
    // Ports of the module first, then pins, both in their order.
    std::vector<std::uint32_t> counts(m_nets.size() + 1, 0);
    const auto eachSource = [&](auto visit) {
        for (std::uint32_t port = 0; port < m_graph.ports.size(); ++port) {
            if (m_graph.ports[port].isInput && m_graph.ports[port].net != NONE) {
                visit(m_graph.ports[port].net, NetSource::ofPort(port));
            }
        }
        for (std::uint32_t cell = 0; cell < m_graph.cellCount(); ++cell) {
            const std::uint32_t first = m_graph.m_firstPin[cell];
            const std::uint32_t pins = m_graph.m_firstPin[cell + 1] - first;
            const CellModel *const model = m_graph.isSub(cell) ? nullptr : &m_models[m_graph.modelOf(cell)];
            const Verific::Netlist *const view =
                model == nullptr ? m_graph.subs[m_graph.subOf(cell)].instance->View() : nullptr;
            const PortNumbers *const ports = view != nullptr ? &portsOf(*view) : nullptr;
            for (std::uint32_t pin = 0; pin < pins; ++pin) {
                const std::uint32_t net = m_graph.m_pinNets[first + pin];
                const bool drives = model != nullptr
                                        ? model->pins[pin].isOutput
                                        : ports->ports[pin]->IsOutput() != 0 || ports->ports[pin]->IsInout() != 0;
                if (net != NONE && drives) {
                    visit(net, NetSource::ofPin(first + pin));
                }
            }
        }
    };
    eachSource([&](std::uint32_t net, NetSource) { ++counts[net + 1]; });
    for (std::size_t net = 0; net < m_nets.size(); ++net) {
        counts[net + 1] += counts[net];
    }
    std::vector<NetSource> sorted(counts.back(), NetSource::ofPin(0));
    eachSource([&](std::uint32_t net, NetSource source) { sorted[counts[net]++] = source; });
    Lists<NetSource> all;
    std::size_t at = 0;
    for (std::size_t net = 0; net < m_nets.size(); ++net) {
        for (; at < counts[net]; ++at) {
            all.add(sorted[at]);
        }
        all.endList();
    }
    m_graph.sources = NetSources(all);

    const std::size_t blocks = m_graph.m_pinNets.size() / ModuleGraph::BLOCK + 1;
    m_graph.m_cellOfBlock.reserve(blocks);
    for (std::uint32_t cell = 0; cell < m_graph.cellCount(); ++cell) {
        while (m_graph.m_cellOfBlock.size() * ModuleGraph::BLOCK < m_graph.m_firstPin[cell + 1]) {
            m_graph.m_cellOfBlock.push_back(cell);
        }
    }
    m_graph.m_cellOfBlock.shrink_to_fit();
}

} // namespace kvr::netlistdb::analysis
