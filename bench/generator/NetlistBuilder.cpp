#include "NetlistBuilder.h"

#include "DataBase.h"
#include "LineFile.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace kvr::netlistdb::bench {
namespace {

using Verific::Att;
using Verific::Instance;
using Verific::Library;
using Verific::LineFile;
using Verific::Net;
using Verific::NetBus;
using Verific::Netlist;
using Verific::Port;
using Verific::PortBus;

unsigned code(Direction direction)
{
    return direction == Direction::Input ? Verific::DIR_IN : Verific::DIR_OUT;
}

std::string bitName(const std::string &name, unsigned index)
{
    return name + "[" + std::to_string(index) + "]";
}

class NetlistBuilder {
  public:
    explicit NetlistBuilder(const Design &design) : m_design(design) {}

    Netlist *build()
    {
        m_work = Verific::Libset::Global()->GetLibrary("work");
        if (m_work == nullptr) {
            m_work = new Library("work");
            Verific::Libset::Global()->Add(m_work);
        }
        m_types.resize(m_design.types.size());
        for (std::size_t index = 0; index < m_design.types.size(); ++index) {
            if (m_design.types[index].kind != CellType::Kind::Module) {
                buildLeaf(index);
            }
        }
        std::unordered_map<std::size_t, std::size_t> typeOfModule;
        for (std::size_t index = 0; index < m_design.types.size(); ++index) {
            if (m_design.types[index].kind == CellType::Kind::Module) {
                typeOfModule.emplace(m_design.types[index].module, index);
            }
        }
        Netlist *top = nullptr;
        for (std::size_t index = 0; index < m_design.modules.size(); ++index) {
            const auto type = typeOfModule.find(index);
            LeafPorts *const ports = type == typeOfModule.end() ? nullptr : &m_types[type->second];
            top = buildModule(m_design.modules[index], ports);
        }
        return top;
    }

  private:
    /// A netlist with its ports in the order of a cell's pins.
    struct LeafPorts {
        Netlist *netlist = nullptr;
        std::vector<Port *> pins;
    };

    Netlist *makeNetlist(Library *library, const std::string &name, SourcePosition position)
    {
        Verific::Cell *cell = library->GetCell(name.c_str());
        if (cell == nullptr) {
            cell = new Verific::Cell(name.c_str());
            library->Add(cell);
        }
        auto *netlist = new Netlist("netlist");
        cell->Add(netlist);
        place(*netlist, position);
        return netlist;
    }

    void place(Verific::DesignObj &object, SourcePosition position)
    {
        if (position.file != 0) {
            object.SetLinefile(LineFile::EncodeLineFile(m_design.files[position.file].c_str(), position.line));
            object.SetUserDeclared(1);
        }
    }

    void addPort(Netlist *netlist, const std::string &name, Direction direction, unsigned width,
                 std::vector<Port *> &ports)
    {
        if (width == 1) {
            ports.push_back(new Port(name.c_str(), code(direction)));
            netlist->Add(ports.back());
            return;
        }
        auto *bus = new PortBus(name.c_str(), static_cast<int>(width) - 1, 0, code(direction));
        netlist->Add(bus);
        for (unsigned index = 0; index < width; ++index) {
            auto *port = new Port(bitName(name, index).c_str(), code(direction));
            netlist->Add(port);
            bus->SetElement(static_cast<int>(index), port);
            ports.push_back(port);
        }
    }

    void buildLeaf(std::size_t index)
    {
        const CellType &type = m_design.types[index];
        LeafPorts &leaf = m_types[index];
        const bool blackBox = type.kind == CellType::Kind::BlackBox;
        // Operators of one type but of other widths are cells of their own.
        const std::string name = blackBox ? type.name : type.name + "_" + std::to_string(index);
        leaf.netlist = makeNetlist(blackBox ? m_work : Library::Operators(), name, {});
        Port *clock = nullptr;
        for (const PortType &port : type.ports) {
            addPort(leaf.netlist, port.name, port.direction, port.width, leaf.pins);
            if (port.clock) {
                clock = leaf.pins.back();
                if (blackBox) {
                    clock->AddAtt(new Att("KVR_ATTRIBUTE_PORT__IS_CLOCK", "TRUE"));
                }
            }
        }
        if (blackBox) {
            leaf.netlist->MakeBlackBox();
        } else if (type.kind == CellType::Kind::Register) {
            leaf.netlist->MakeRegister(clock);
        } else {
            leaf.netlist->MakeOperator();
        }
    }

    Netlist *buildModule(const Module &module, LeafPorts *asType)
    {
        Netlist *const netlist = makeNetlist(m_work, module.name, module.position);
        std::vector<Net *> nets(module.bitCount);
        std::unordered_map<std::string, const Signal *> portSignals;
        for (const Signal &signal : module.signals) {
            buildSignal(netlist, signal, nets);
            if (signal.port) {
                portSignals.emplace(signal.name, &signal);
            }
        }
        std::vector<Port *> ports;
        for (const auto &[name, direction] : module.ports) {
            const Signal &signal = *portSignals.at(name);
            const std::size_t first = ports.size();
            addPort(netlist, name, direction, signal.width, ports);
            for (unsigned index = 0; index < signal.width; ++index) {
                ports[first + index]->Connect(nets[signal.firstBit + index]);
            }
        }
        for (const Cell &cell : module.cells) {
            buildInstance(netlist, module, cell, nets);
        }
        if (asType != nullptr) {
            asType->netlist = netlist;
            asType->pins = std::move(ports);
        }
        return netlist;
    }

    void buildSignal(Netlist *netlist, const Signal &signal, std::vector<Net *> &nets)
    {
        NetBus *bus = nullptr;
        if (signal.width > 1) {
            bus = new NetBus(signal.name.c_str(), static_cast<int>(signal.width) - 1, 0);
            netlist->Add(bus);
            place(*bus, signal.position);
        }
        for (unsigned index = 0; index < signal.width; ++index) {
            auto *net = new Net(bus == nullptr ? signal.name.c_str() : bitName(signal.name, index).c_str());
            netlist->Add(net);
            place(*net, signal.position);
            if (bus != nullptr) {
                bus->SetElement(static_cast<int>(index), net);
            }
            nets[signal.firstBit + index] = net;
        }
    }

    void buildInstance(Netlist *netlist, const Module &module, const Cell &cell, const std::vector<Net *> &nets)
    {
        const CellType &type = m_design.types[cell.type];
        const LeafPorts &leaf = m_types[cell.type];
        auto *instance = new Instance(cell.name.c_str(), leaf.netlist);
        netlist->Add(instance);
        place(*instance, cell.position);
        for (const auto &[key, value] : type.parameters) {
            instance->AddParam(key.c_str(), value.c_str());
        }
        if (!cell.init.empty()) {
            instance->AddParam("INIT", cell.init.c_str());
        }
        if (type.kind == CellType::Kind::BlackBox) {
            instance->AddAtt(new Att("KVR_ATTRIBUTE_CELL_NAME", type.name.c_str()));
        }
        for (std::size_t pin = 0; pin < leaf.pins.size(); ++pin) {
            instance->Connect(leaf.pins[pin], nets[module.pins[cell.firstPin + pin]]);
        }
    }

    const Design &m_design;
    Library *m_work = nullptr;
    std::vector<LeafPorts> m_types;
};

} // namespace

Verific::Netlist *buildNetlist(const Design &design)
{
    return NetlistBuilder(design).build();
}

} // namespace kvr::netlistdb::bench
