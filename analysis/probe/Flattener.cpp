#include "analysis/probe/Flattener.h"

#include "analysis/ModelBuilder.h"

#include <DataBase.h>

#include <netlistdb/DesignDatabase.h>

#include <algorithm>
#include <stdexcept>

namespace kvr::netlistdb::analysis::probe {

namespace {

constexpr std::size_t MOST_NETS = 0xF0000000U;

bool isBit(char c)
{
    return c == '0' || c == '1';
}

} // namespace

template <typename Visit> void Flattener::forEachLeaf(Visit visit) const
{
    for (std::uint32_t occurrence = 0; occurrence < m_graph.occurrences.size(); ++occurrence) {
        const std::vector<std::uint32_t> &recipes = m_graph.m_cellRecipes[m_graph.occurrences[occurrence].module];
        for (std::uint32_t cell = 0; cell < recipes.size(); ++cell) {
            if (recipes[cell] != NONE) {
                visit(occurrence, cell, m_graph.recipes[recipes[cell]]);
            }
        }
    }
}

void Flattener::run()
{
    readCells();
    unfold();
    joinPorts();
    countDrivers();
    joinBuffers();
    numberSignals();
    addNodes();
    addPorts();
    readStarts();
}

void Flattener::readCells()
{
    const Hierarchy &hierarchy = m_graph.hierarchy;
    m_graph.m_cellRecipes.resize(hierarchy.modules.size());
    m_graph.m_instances.resize(hierarchy.modules.size());
    for (std::size_t number = 0; number < hierarchy.modules.size(); ++number) {
        const ModuleGraph &module = hierarchy.modules[number];
        std::vector<std::uint32_t> &recipes = m_graph.m_cellRecipes[number];
        std::vector<const Verific::Instance *> &instances = m_graph.m_instances[number];
        recipes.reserve(module.cellCount());
        instances.reserve(module.cellCount());
        Verific::MapIter iterator;
        const Verific::Instance *instance = nullptr;
        FOREACH_INSTANCE_OF_NETLIST (module.netlist, iterator, instance) {
            const auto cell = static_cast<std::uint32_t>(instances.size());
            instances.push_back(instance);
            const bool isLeaf = !module.isSub(cell) && instance->View() != nullptr;
            recipes.push_back(isLeaf ? m_graph.recipes.recipeOf(*instance, hierarchy.models[module.modelOf(cell)].kind)
                                     : NONE);
        }
    }
}

void Flattener::unfold()
{
    std::size_t nets = 0;
    const auto add = [&](std::uint32_t module, std::uint32_t parent, std::uint32_t sub) {
        m_graph.occurrences.push_back({module, parent, sub, static_cast<std::uint32_t>(nets)});
        nets += m_graph.hierarchy.modules[module].netCount();
        if (nets > MOST_NETS) {
            throw std::length_error("CrossProbe: the unfolded design has too many nets");
        }
    };
    add(m_graph.hierarchy.top(), NONE, NONE);
    for (std::uint32_t at = 0; at < m_graph.occurrences.size(); ++at) {
        m_graph.firstChild.push_back(static_cast<std::uint32_t>(m_graph.occurrences.size()));
        const ModuleGraph &module = m_graph.moduleOf(at);
        for (std::uint32_t sub = 0; sub < module.subs.size(); ++sub) {
            add(module.subs[sub].module, at, sub);
        }
    }
    m_leader.resize(FIRST_SIGNAL + nets);
    for (std::uint32_t wire = 0; wire < m_leader.size(); ++wire) {
        m_leader[wire] = wire;
    }
}

std::uint32_t Flattener::wireOf(std::uint32_t net)
{
    while (m_leader[net] != net) {
        m_leader[net] = m_leader[m_leader[net]];
        net = m_leader[net];
    }
    return net;
}

/// The lower number leads, so that a constant always does.
void Flattener::unite(std::uint32_t a, std::uint32_t b)
{
    a = wireOf(a);
    b = wireOf(b);
    m_leader[std::max(a, b)] = std::min(a, b);
}

void Flattener::joinPorts()
{
    for (std::uint32_t at = 1; at < m_graph.occurrences.size(); ++at) {
        const Occurrence &occurrence = m_graph.occurrences[at];
        const ModuleGraph &above = m_graph.moduleOf(occurrence.parent);
        const ModuleGraph &own = m_graph.moduleOf(at);
        const Span<std::uint32_t> outside = above.netsOf(above.subs[occurrence.sub].cell);
        for (std::size_t port = 0; port < own.ports.size() && port < outside.size(); ++port) {
            if (outside[port] != NONE && own.ports[port].net != NONE) {
                unite(FIRST_SIGNAL + occurrence.firstNet + own.ports[port].net,
                      FIRST_SIGNAL + m_graph.occurrences[occurrence.parent].firstNet + outside[port]);
            }
        }
    }
}

/// The net of an occurrence on a pin of a cell, by its number among all wires; NONE for no net.
std::uint32_t Flattener::netAt(std::uint32_t occurrence, std::uint32_t cell, Slot slot) const
{
    if (slot < 0) {
        return slot == SLOT_ZERO ? SIGNAL_ZERO : slot == SLOT_ONE ? SIGNAL_ONE : SIGNAL_UNKNOWN;
    }
    const std::uint32_t net = m_graph.moduleOf(occurrence).netsOf(cell)[static_cast<std::size_t>(slot)];
    return net == NONE ? NONE : FIRST_SIGNAL + m_graph.occurrences[occurrence].firstNet + net;
}

void Flattener::countDrivers()
{
    m_drivers.assign(m_leader.size(), 0);
    const auto count = [&](std::uint32_t wire) {
        std::uint8_t &drivers = m_drivers[wireOf(wire)];
        drivers = drivers < 2 ? static_cast<std::uint8_t>(drivers + 1) : drivers;
    };
    forEachLeaf([&](std::uint32_t occurrence, std::uint32_t cell, const Recipe &recipe) {
        for (const std::uint32_t pin : recipe.outputs) {
            const std::uint32_t net = netAt(occurrence, cell, static_cast<Slot>(pin));
            if (net != NONE) {
                count(net);
            }
        }
    });
    for (const ModuleGraph::ModulePort &port : m_graph.moduleOf(0).ports) {
        if (port.isInput && !port.isOutput && port.net != NONE) {
            count(FIRST_SIGNAL + port.net);
        }
    }
}

void Flattener::joinBuffers()
{
    // A wire with several drivers keeps its buffers apart, or their inputs would be taken for one wire.
    forEachLeaf([&](std::uint32_t occurrence, std::uint32_t cell, const Recipe &recipe) {
        for (const auto &[output, input] : recipe.joins) {
            const std::uint32_t to = netAt(occurrence, cell, output);
            const std::uint32_t from = netAt(occurrence, cell, input);
            if (to == NONE || from == NONE) {
                continue;
            }
            const std::uint32_t a = wireOf(to);
            const std::uint32_t b = wireOf(from);
            if (a != b && m_drivers[a] == 1) {
                const std::uint8_t kept = m_drivers[b];
                unite(a, b);
                m_drivers[wireOf(a)] = kept;
            }
        }
    });
}

void Flattener::numberSignals()
{
    std::vector<Signal> numbers(m_leader.size(), NONE);
    std::uint32_t count = FIRST_SIGNAL;
    for (Signal constant = 0; constant < FIRST_SIGNAL; ++constant) {
        numbers[constant] = constant;
    }
    m_graph.signals.resize(m_leader.size() - FIRST_SIGNAL);
    for (std::size_t net = 0; net < m_graph.signals.size(); ++net) {
        const std::uint32_t wire = wireOf(static_cast<std::uint32_t>(net + FIRST_SIGNAL));
        if (numbers[wire] == NONE) {
            numbers[wire] = m_drivers[wire] > 1 ? SIGNAL_UNKNOWN : count++;
        }
        m_graph.signals[net] = numbers[wire];
    }
    m_graph.signalCount = count;
    m_leader = std::vector<std::uint32_t>();
    m_drivers = std::vector<std::uint8_t>();
}

void Flattener::addNodes()
{
    forEachLeaf([&](std::uint32_t occurrence, std::uint32_t cell, const Recipe &recipe) {
        if (!recipe.isKnown) {
            m_graph.opaque.push_back({occurrence, cell});
            return;
        }
        if (recipe.parts.empty()) {
            return;
        }
        const Signal firstInner = m_graph.signalCount;
        m_graph.signalCount += recipe.innerNets;
        m_own.assign(m_graph.moduleOf(occurrence).netsOf(cell).size(), NONE);
        for (const std::uint32_t pin : recipe.outputs) {
            if (netAt(occurrence, cell, static_cast<Slot>(pin)) == NONE) {
                m_own[pin] = m_graph.signalCount++;
            }
        }
        for (std::uint32_t part = 0; part < recipe.parts.size(); ++part) {
            addNode(occurrence, cell, part, firstInner);
        }
    });
    sinkOutputs();
    m_graph.drivers.assign(m_graph.signalCount, NONE);
    for (std::uint32_t node = 0; node < m_graph.nodes.size(); ++node) {
        for (const Signal output : m_graph.outputsOf(m_graph.nodes[node])) {
            if (output >= FIRST_SIGNAL) {
                m_graph.drivers[output] = node;
            }
        }
    }
}

/// Outputs on wires with several drivers write where nobody reads.
void Flattener::sinkOutputs()
{
    const Signal sink = m_graph.signalCount++;
    for (const Node &node : m_graph.nodes) {
        std::replace_if(
            m_graph.pins.begin() + node.firstOutput, m_graph.pins.begin() + node.endPin,
            [](Signal signal) { return signal < FIRST_SIGNAL; }, sink);
    }
}

void Flattener::addNode(std::uint32_t occurrence, std::uint32_t cell, std::uint32_t part, Signal firstInner)
{
    const std::uint32_t number = m_graph.m_cellRecipes[m_graph.occurrences[occurrence].module][cell];
    const Recipe &recipe = m_graph.recipes[number];
    const Part &built = recipe.parts[part];
    const auto firstPin = static_cast<std::uint32_t>(m_graph.pins.size());
    const auto endPin = static_cast<std::uint32_t>(firstPin + built.slots.size());
    Node node{number, part, occurrence, cell, firstPin, endPin - built.outputs(), endPin, NONE};
    const Span<std::uint32_t> nets = m_graph.moduleOf(occurrence).netsOf(cell);
    for (const Slot slot : built.slots) {
        if (slot <= innerSlot(0)) {
            m_graph.pins.push_back(firstInner + static_cast<std::uint32_t>(innerSlot(0) - slot));
        } else if (slot < 0) {
            m_graph.pins.push_back(netAt(occurrence, cell, slot));
        } else if (nets[static_cast<std::size_t>(slot)] == NONE) {
            const Signal own = m_own[static_cast<std::size_t>(slot)];
            m_graph.pins.push_back(own != NONE ? own : SIGNAL_UNKNOWN);
        } else {
            m_graph.pins.push_back(m_graph.signalOf(occurrence, nets[static_cast<std::size_t>(slot)]));
        }
    }
    if (built.op == Op::ShiftRegister) {
        node.state = static_cast<std::uint32_t>(m_graph.stateWords);
        m_graph.stateWords += built.width;
    } else if (built.op == Op::ShiftOutput) {
        // Stands behind its shift register.
        for (std::size_t at = m_graph.nodes.size(); node.state == NONE && at-- > 0;) {
            if (m_graph.partOf(m_graph.nodes[at]).op == Op::ShiftRegister) {
                node.state = m_graph.nodes[at].state;
            }
        }
    } else if (!recipe.memories.empty()) {
        node.state = memoryOf(occurrence, cell, recipe, built);
    }
    m_graph.nodes.push_back(node);
}

std::uint32_t Flattener::memoryOf(std::uint32_t occurrence, std::uint32_t cell, const Recipe &recipe, const Part &part)
{
    const MemoryShape &shape = recipe.memories[part.memory];
    const std::string key =
        shape.name.empty() ? std::to_string(occurrence) + ' ' + std::to_string(cell) + ' ' + std::to_string(part.memory)
                           : std::to_string(occurrence) + '/' + shape.name;
    const auto [found, isNew] = m_sharedMemories.try_emplace(key, static_cast<std::uint32_t>(m_graph.memories.size()));
    if (isNew) {
        m_graph.memories.push_back({shape.width, shape.addressBits, occurrence, cell, &shape});
    }
    Memory &memory = m_graph.memories[found->second];
    memory.addressBits = std::max(memory.addressBits, shape.addressBits);
    memory.width = std::max(memory.width, shape.width);
    return found->second;
}

void Flattener::addPorts()
{
    m_graph.external.assign(m_graph.signalCount, false);
    for (const ModuleGraph::ModulePort &port : m_graph.moduleOf(0).ports) {
        if (port.net == NONE) {
            continue;
        }
        const Signal signal = m_graph.signalOf(0, port.net);
        const char *const name = port.port->Name();
        m_graph.ports.push_back({name != nullptr ? name : "", signal, port.isInput, port.isOutput});
        if (port.isInput && port.isOutput && signal >= FIRST_SIGNAL) {
            m_graph.external[signal] = true;
        }
    }
}

void Flattener::readStarts()
{
    for (std::uint32_t at = 0; at < m_graph.occurrences.size(); ++at) {
        const ModuleGraph &module = m_graph.moduleOf(at);
        std::uint32_t number = 0;
        Verific::MapIter nets;
        const Verific::Net *net = nullptr;
        FOREACH_NET_OF_NETLIST (module.netlist, nets, net) {
            const Signal signal = m_graph.signalOf(at, number++);
            const char *value = net->GetAttValue("init");
            std::uint64_t position = 0;
            const Verific::NetBus *const bus = value == nullptr ? net->Bus() : nullptr;
            if (bus != nullptr && (value = bus->GetAttValue("init")) != nullptr) {
                const int step = bus->LeftIndex() >= bus->RightIndex() ? 1 : -1;
                for (int index = bus->RightIndex(); bus->ElementAtIndex(index) != net && position < bus->Size();
                     index += step) {
                    ++position;
                }
            }
            if (value == nullptr || signal < FIRST_SIGNAL) {
                continue;
            }
            const std::string_view bits = value;
            if (bits.find_first_not_of("01xz") != std::string_view::npos || position >= bits.size()) {
                m_graph.starts.emplace_back(signal, bitOf(bits, position));
            } else if (isBit(bits[bits.size() - 1 - position])) {
                m_graph.starts.emplace_back(signal, bits[bits.size() - 1 - position] == '1');
            }
        }
    }
}

} // namespace kvr::netlistdb::analysis::probe
