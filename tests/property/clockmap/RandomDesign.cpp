#include "tests/property/clockmap/RandomDesign.h"

#include "tests/support/NetlistText.h"

#include <DataBase.h>

#include <algorithm>
#include <string>

namespace clockmap_test {

std::string pinName(const Verific::Port *port)
{
    std::string name = port->Name();
    name.erase(std::remove_if(name.begin(), name.end(), [](char c) { return c == '[' || c == ']'; }), name.end());
    return name;
}

RandomDesign::RandomDesign(unsigned seed, bool elaborated)
    : m_random(seed), m_cells(elaborated ? elaboratedCells() : postMapCells())
{
    testsupport::netlistFromText("primitive POWER(out Y) type=1 end");
    m_cells.push_back({"", "", {}, "", "Y is constant", 0, testsupport::netlistOfCell("POWER")});
    for (const ClockCell &cell : m_cells) {
        m_facts.push_back(parse(cell.facts));
    }
    const unsigned modules = elaborated ? below(5) : (chance(20) ? 2 : 0);
    for (unsigned number = 0; number < modules; ++number) {
        m_modules.push_back(module(number, 3 + below(12), 1 + below(7)));
    }
    const unsigned instances = 3 + below(chance(25) ? 40 : 14);
    m_top = module(modules, 4 + below(instances + instances / 2), instances);
}

Verific::Netlist *RandomDesign::module(unsigned number, unsigned nets, unsigned instances)
{
    auto *const cell = new Verific::Cell(("module" + std::to_string(number)).c_str());
    Verific::Libset::Global()->GetLibrary("work") == nullptr
        ? static_cast<void>(Verific::Libset::Global()->Add(new Verific::Library("work")))
        : static_cast<void>(0);
    Verific::Libset::Global()->GetLibrary("work")->Add(cell);
    auto *const netlist = new Verific::Netlist("view");
    cell->Add(netlist);
    m_nets.clear();
    for (unsigned net = 0; net < nets; ++net) {
        m_nets.push_back(new Verific::Net(("n" + std::to_string(net)).c_str()));
        netlist->Add(m_nets.back());
    }
    m_power = new Verific::Net("power");
    netlist->Add(m_power);
    addPorts(netlist);
    auto *const power = new Verific::Instance("power", m_cells.back().netlist);
    netlist->Add(power);
    power->Connect(m_cells.back().netlist->GetPort("Y"), m_power);
    m_cellOf[power] = m_cells.size() - 1;
    for (unsigned instance = 0; instance < instances; ++instance) {
        addInstance(netlist, instance);
    }
    return netlist;
}

void RandomDesign::addPorts(Verific::Netlist *netlist)
{
    std::vector<Verific::Net *> ownNets = m_nets;
    const auto add = [&](const std::string &name, unsigned direction, Verific::Net *net) {
        auto *const port = new Verific::Port(name.c_str(), direction);
        netlist->Add(port);
        if (net != nullptr) {
            port->Connect(net);
        }
    };
    for (unsigned clock = 0; clock < 2 && clock < m_nets.size(); ++clock) {
        if (chance(75)) {
            add("clk" + std::to_string(clock), Verific::DIR_IN, m_nets[clock]);
        }
    }
    static constexpr unsigned DIRECTIONS[] = {Verific::DIR_IN,  Verific::DIR_IN,    Verific::DIR_OUT,
                                              Verific::DIR_OUT, Verific::DIR_INOUT, Verific::DIR_IN};
    for (unsigned count = below(6), number = 0; number < count && ownNets.size() > 3; ++number) {
        // Nets of their own: two inout ports on one net make one wire of two.
        const unsigned at = 2 + below(static_cast<unsigned>(ownNets.size()) - 2);
        add("p" + std::to_string(number), DIRECTIONS[below(6)], chance(93) ? ownNets[at] : nullptr);
        ownNets.erase(ownNets.begin() + at);
    }
}

Verific::Net *RandomDesign::anyNet(const Verific::Port *port, unsigned near, bool isClock)
{
    const auto count = static_cast<unsigned>(m_nets.size());
    if (isClock && chance(70)) {
        return m_nets[below(std::min(count, 3U))];
    }
    if (port->IsInput() != 0 && chance(3)) {
        return m_power;
    }
    if (chance(75)) {
        // Mostly from earlier to later nets; what goes back makes loops.
        return m_nets[port->IsOutput() != 0 ? std::min(count - 1, near + 2 + below(2))
                                            : below(std::min(count, near + 2))];
    }
    return m_nets[below(count)];
}

void RandomDesign::addInstance(Verific::Netlist *netlist, unsigned number)
{
    const std::string name = "i" + std::to_string(number);
    const bool isModule = !m_modules.empty() && chance(40);
    std::size_t kind = 0;
    if (!isModule) {
        unsigned total = 0;
        for (const ClockCell &cell : m_cells) {
            total += cell.weight;
        }
        for (unsigned choice = below(total); choice >= m_cells[kind].weight; ++kind) {
            choice -= m_cells[kind].weight;
        }
    }
    Verific::Netlist *const view =
        isModule ? m_modules[below(static_cast<unsigned>(m_modules.size()))] : m_cells[kind].netlist;
    auto *const instance = new Verific::Instance(name.c_str(), view);
    netlist->Add(instance);
    if (!isModule) {
        const ClockCell &cell = m_cells[kind];
        m_cellOf[instance] = kind;
        if (!cell.cellName.empty()) {
            instance->AddAtt(new Verific::Att("KVR_ATTRIBUTE_CELL_NAME", cell.cellName.c_str()));
        }
        for (const auto &[key, value] : cell.parameters) {
            instance->AddParam(key.c_str(), value.c_str());
        }
    }
    const auto isClock = [&](const std::string &pin) {
        if (isModule) {
            return pin.substr(0, 3) == "clk";
        }
        const auto &pins = m_facts[kind].clockPins;
        return std::any_of(pins.begin(), pins.end(), [&](const CellFacts::Mark &mark) { return mark.pin == pin; });
    };
    Verific::MapIter ports;
    Verific::Port *port = nullptr;
    FOREACH_PORT_OF_NETLIST (view, ports, port) {
        const std::string pin = pinName(port);
        if (!isModule && pin == m_cells[kind].constantPin) {
            instance->Connect(port, m_power);
        } else if (!chance(6)) {
            Verific::Net *net = anyNet(port, number, isClock(pin));
            const bool isNever = !isModule && "!" + pin == m_cells[kind].constantPin;
            instance->Connect(port, isNever && net == m_power ? m_nets.front() : net);
        }
    }
}

} // namespace clockmap_test
