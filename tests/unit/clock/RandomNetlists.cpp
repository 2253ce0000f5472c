#include "RandomNetlists.h"

#include <algorithm>
#include <string>

namespace clock_test {

namespace {

struct CellPort {
    const char *name; ///< may be null
    unsigned direction;
    const char *clockMark = nullptr; ///< null: not marked
};

constexpr unsigned IN = Verific::DIR_IN;
constexpr unsigned OUT = Verific::DIR_OUT;
constexpr unsigned INOUT = Verific::DIR_INOUT;

Verific::Library *libraryOf(const char *name)
{
    Verific::Library *library = Verific::Libset::Global()->GetLibrary(name);
    if (library == nullptr) {
        library = new Verific::Library(name);
        Verific::Libset::Global()->Add(library);
    }
    return library;
}

Verific::Netlist *makeCell(const char *library, const std::string &name, const std::vector<CellPort> &ports)
{
    auto *const cell = new Verific::Cell(name.c_str());
    libraryOf(library)->Add(cell);
    auto *const netlist = new Verific::Netlist("view");
    cell->Add(netlist);
    for (const CellPort &port : ports) {
        auto *const made = new Verific::Port(port.name, port.direction);
        netlist->Add(made);
        if (port.clockMark != nullptr) {
            made->AddAtt(new Verific::Att("KVR_ATTRIBUTE_PORT__IS_CLOCK", port.clockMark));
        }
    }
    return netlist;
}

std::vector<Verific::Port *> portsOf(const Verific::Netlist *netlist)
{
    std::vector<Verific::Port *> ports;
    Verific::MapIter iter;
    Verific::Port *port = nullptr;
    FOREACH_PORT_OF_NETLIST (netlist, iter, port) {
        ports.push_back(port);
    }
    return ports;
}

} // namespace

RandomNetlists::Cells RandomNetlists::deviceCells()
{
    const std::vector<const char *> flipFlop{"KVR_FF",    "KVR_FF",    "KVR_FF",  "KVR_MULT",   "KVR_IDDR", "KVR_ODDR",
                                             "KVR_DSP48", "KVR_SRL16", "KVR_FFX", "KVR_GBUFCE", "",         nullptr};
    const std::vector<const char *> memory{"KVR_RAM", "KVR_RAM18", "KVR_DPRAM", "KVR_DPRAM9", "KVR_DSP", "kvr_ram"};
    const std::vector<const char *> logic{nullptr, nullptr, "KVR_LUT", "KVR_MULT2"};
    const std::vector<const char *> buffer{"KVR_GBUFCE", "KVR_GBUFCE", "KVR_GBUFCE", "KVR_GBUFCE2", nullptr};
    Cells cells{
        {makeCell("device", "BUF", {{"I", IN}, {"CE", IN}, {"O", OUT}}), buffer, 3},
        {makeCell("device", "BUF_MARKED", {{"I", IN, "TRUE"}, {"O", OUT}}), buffer, 1},
        {makeCell("device", "BUF_NO_I", {{"A", IN}, {"O", OUT}}), buffer, 2},
        {makeCell("device", "FF", {{"C", IN, "TRUE"}, {"D", IN}, {"E", IN}, {"Q", OUT}}), flipFlop, 8},
        {makeCell("device", "FF_LOWER", {{"C", IN, "true"}, {"D", IN}, {"Q", OUT}}), flipFlop, 1},
        {makeCell("device", "FF_TWO", {{"D", IN}, {"C1", IN, "TRUE"}, {"C2", IN, "TRUE"}, {"Q", OUT}, {"P", OUT}}),
         flipFlop, 2},
        {makeCell("device", "FF_OUT", {{"CO", OUT, "TRUE"}, {"D", IN}, {"Q", OUT}}), flipFlop, 1},
        {makeCell("device", "FF_INOUT", {{"C", INOUT, "TRUE"}, {"D", INOUT}, {"Q", OUT}}), flipFlop, 1},
        {makeCell("device", "FF_NAMELESS",
                  {{nullptr, IN, "TRUE"}, {"", IN, "TRUE"}, {"C", IN, "TRUE"}, {"Q", OUT}, {nullptr, OUT}}),
         flipFlop, 1},
        {makeCell("device", "RAM",
                  {{"W_CLK", IN, "TRUE"}, {"R_CLK", IN, "TRUE"}, {"A", IN}, {"R_Q", OUT}, {"W_Q", OUT}, {"X_Q", OUT}}),
         memory, 2},
        {makeCell("device", "DPRAM",
                  {{"CLK_A", IN, "TRUE"},
                   {"A", IN},
                   {"CLK_B", IN, "TRUE"},
                   {"Q_B", OUT},
                   {"Q_A", OUT},
                   {"Q_C", OUT},
                   {"C_X", OUT}}),
         memory, 2},
        {makeCell("device", "L1", {{"I0", IN}, {"O", OUT}}), logic, 6},
        {makeCell("device", "L2", {{"I0", IN}, {"I1", IN}, {"O", OUT}}), logic, 8},
        {makeCell("device", "L4", {{"I0", IN}, {"I1", IN}, {"I2", IN}, {"I3", IN}, {"O", OUT}}), logic, 6},
        {makeCell("device", "CARRY", {{"O", OUT}, {"A", IN}, {"IO", INOUT}, {"CO", OUT}, {"N", Verific::DIR_NONE}}),
         logic, 2},
        {makeCell("device", "BOX", {{"A", IN}, {"Y", OUT}, {"B", IN}, {"Z", OUT}}), logic, 1},
        {makeCell("device", "NO_PORTS", {}), logic, 1},
    };
    cells[15].netlist->MakeBlackBox();
    return cells;
}

RandomNetlists::Cells RandomNetlists::genericCells()
{
    const std::vector<CellPort> registerPorts{{"d", IN}, {"clk", IN}, {"q", OUT}, {"nq", OUT}};
    Cells cells{
        {makeCell("Primitives", "DFF", registerPorts), {}, 8},
        {makeCell("Operators", "OPDFF", registerPorts), {}, 2},
        {makeCell("work", "WDFF", registerPorts), {}, 1},
        {makeCell("Primitives", "NO_CLOCK", registerPorts), {}, 1},
        {makeCell("Primitives", "IODFF", {{"clk", INOUT}, {"d", IN}, {"q", OUT}}), {}, 1},
        {makeCell("Operators", "INV", {{"a", IN}, {"o", OUT}}), {}, 5},
        {makeCell("Operators", "ADD", {{"a", IN}, {"b", IN}, {"ci", IN}, {"o", OUT}, {"co", OUT}}), {}, 6},
        {makeCell("Operators", "IO", {{"o", OUT}, {"a", INOUT}, {"n", Verific::DIR_NONE}}), {}, 2},
        {makeCell("Primitives", "AND", {{"a", IN}, {"b", IN}, {"o", OUT}}), {}, 5},
        {makeCell("Primitives", "BUF", {{"i", IN}, {"o", OUT}}), {}, 3},
        {makeCell("Primitives", "BUF_NO_INPUT", {{"i", IN}, {"o", OUT}}), {}, 1},
        {makeCell("work", "WBUF", {{"i", IN}, {"o", OUT}}), {}, 1},
        {makeCell("Primitives", "PWR", {{"o", OUT}}), {}, 1},
        {makeCell("work", "USER_OP", {{"a", IN}, {"o", OUT}}), {}, 1},
        {makeCell("work", "EMPTY_BOX", {{"a", IN}, {"o", OUT}, {"p", OUT}}), {}, 1},
    };
    for (const unsigned at : {0U, 1U, 2U, 4U}) {
        cells[at].netlist->MakeRegister(cells[at].netlist->GetPort("clk"));
    }
    cells[3].netlist->MakeRegister(nullptr);
    cells[0].netlist->MakePrimitive(Verific::PRIM_OTHER, nullptr);
    for (const unsigned at : {5U, 6U, 7U, 13U}) {
        cells[at].netlist->MakeOperator();
    }
    cells[8].netlist->MakePrimitive(Verific::PRIM_AND, nullptr);
    cells[9].netlist->MakePrimitive(Verific::PRIM_BUF, cells[9].netlist->GetPort("i"));
    cells[10].netlist->MakePrimitive(Verific::PRIM_BUF, nullptr);
    cells[11].netlist->MakePrimitive(Verific::PRIM_BUF, cells[11].netlist->GetPort("i"));
    cells[12].netlist->MakePrimitive(Verific::PRIM_PWR, nullptr);
    cells[14].netlist->MakeBlackBox();
    return cells;
}

Verific::Netlist *RandomNetlists::postMap()
{
    Cells cells = deviceCells();
    if (chance(50)) {
        for (unsigned count = 1 + below(3); count > 0; --count) {
            cells.push_back({module("work", cells, 4 + below(12), 2 + below(8)), {nullptr, nullptr, "KVR_FF"}, 5});
        }
    }
    const unsigned instances = 5 + below(chance(30) ? 150 : 40);
    return module("work", cells, 4 + below(instances + instances / 2), instances);
}

Verific::Netlist *RandomNetlists::elaborated()
{
    Cells cells = genericCells();
    for (unsigned count = below(5); count > 0; --count) {
        Verific::Netlist *const made = module(chance(90) ? "work" : "Operators", cells, 3 + below(14), 1 + below(6));
        if (chance(8)) {
            made->MakeBlackBox();
        }
        if (chance(6)) {
            made->MakeOperator();
        }
        if (chance(10)) {
            const std::vector<Verific::Port *> ports = portsOf(made);
            made->MakeRegister(ports.empty() ? nullptr : ports[below(static_cast<unsigned>(ports.size()))]);
        }
        cells.push_back({made, {}, 6});
    }
    const unsigned instances = 3 + below(chance(30) ? 60 : 20);
    Verific::Netlist *top = module("work", cells, 4 + below(instances + instances / 2), instances);
    if (chance(8)) {
        for (unsigned levels = 60 + below(120); levels > 0; --levels) {
            top = wrapped(top, cells);
        }
    }
    return top;
}

Verific::Netlist *RandomNetlists::wrapped(Verific::Netlist *inner, const Cells &cells)
{
    Verific::Netlist *const outer =
        makeCell(chance(99) ? "work" : "Operators", "module" + std::to_string(m_made++), {});
    std::vector<Verific::Net *> nets{new Verific::Net("own")};
    outer->Add(nets.front());
    auto *const instance = new Verific::Instance("inner", inner);
    outer->Add(instance);
    for (Verific::Port *port : portsOf(inner)) {
        const std::string name = "w" + std::to_string(nets.size());
        auto *const net = new Verific::Net(name.c_str());
        outer->Add(net);
        nets.push_back(net);
        instance->Connect(port, net);
        auto *const through = new Verific::Port(name.c_str(), port->GetDir());
        outer->Add(through);
        through->Connect(net);
    }
    if (chance(3)) {
        addInstance(outer, nets, cells, 1);
    }
    return outer;
}

Verific::Netlist *RandomNetlists::module(const char *library, const Cells &cells, unsigned nets, unsigned instances)
{
    Verific::Netlist *const netlist = makeCell(library, "module" + std::to_string(m_made++), {});
    fill(netlist, cells, nets, instances);
    return netlist;
}

void RandomNetlists::fill(Verific::Netlist *netlist, const Cells &cells, unsigned nets, unsigned instances)
{
    const std::vector<Verific::Net *> made = addNets(netlist, nets);
    addPorts(netlist, made);
    for (unsigned number = 0; number < instances; ++number) {
        addInstance(netlist, made, cells, number);
    }
}

std::vector<Verific::Net *> RandomNetlists::addNets(Verific::Netlist *netlist, unsigned count)
{
    std::vector<Verific::Net *> nets;
    Verific::NetBus *const bus = chance(30) ? new Verific::NetBus("bus", 3, 0) : nullptr;
    if (bus != nullptr) {
        netlist->Add(bus);
    }
    for (unsigned number = 0; number < count; ++number) {
        const std::string name = chance(10) ? "d[" + std::to_string(number % 7) + "]" : "n" + std::to_string(number);
        auto *const net = chance(2) ? new Verific::Net(nullptr) : new Verific::Net(name.c_str());
        netlist->Add(net);
        if (bus != nullptr && number < 4) {
            bus->SetElement(static_cast<int>(number), net);
        }
        nets.push_back(net);
    }
    return nets;
}

void RandomNetlists::addPorts(Verific::Netlist *netlist, const std::vector<Verific::Net *> &nets)
{
    static constexpr unsigned DIRECTIONS[] = {IN, IN, IN, IN, OUT, OUT, OUT, INOUT, Verific::DIR_NONE};
    const auto netCount = static_cast<unsigned>(nets.size());
    for (unsigned count = below(7), number = 0; number < count; ++number) {
        const unsigned direction = DIRECTIONS[below(9)];
        const std::string name = "p" + std::to_string(number);
        auto *const port = new Verific::Port(name.c_str(), direction);
        netlist->Add(port);
        if (chance(92)) {
            // Inputs tend to meet the first nets, outputs the last: then they lead somewhere.
            const unsigned near = std::min(netCount - 1, below(4));
            const unsigned at = chance(25) ? below(netCount) : direction == OUT ? netCount - 1 - near : near;
            port->Connect(nets[at]);
        }
    }
}

void RandomNetlists::addInstance(Verific::Netlist *netlist, const std::vector<Verific::Net *> &nets, const Cells &cells,
                                 unsigned number)
{
    const std::string unique = "i" + std::to_string(number);
    const char *const name = chance(2) ? nullptr : chance(4) ? "twin" : unique.c_str();
    if (chance(1) && chance(20)) {
        netlist->Add(new Verific::Instance(name, nullptr));
        return;
    }
    unsigned total = 0;
    for (const Cell &cell : cells) {
        total += cell.weight;
    }
    unsigned choice = below(total);
    const Cell *cell = cells.data();
    while (choice >= cell->weight) {
        choice -= cell->weight;
        ++cell;
    }
    auto *const instance = new Verific::Instance(name, cell->netlist);
    netlist->Add(instance);
    if (!cell->types.empty()) {
        const char *const type = cell->types[below(static_cast<unsigned>(cell->types.size()))];
        if (type != nullptr || chance(5)) {
            instance->AddAtt(new Verific::Att("KVR_ATTRIBUTE_CELL_NAME", type));
        }
    }
    std::vector<Verific::Port *> ports = portsOf(cell->netlist);
    if (chance(30)) {
        std::shuffle(ports.begin(), ports.end(), m_random);
    }
    // Mostly from earlier to later nets; what goes back makes loops, what meets again several drivers.
    const auto netCount = static_cast<unsigned>(nets.size());
    const unsigned middle = 1 + (number * 2 + below(5)) % (netCount > 1 ? netCount - 1 : 1);
    for (const Verific::Port *port : ports) {
        if (chance(8)) {
            continue;
        }
        unsigned at = below(netCount);
        if (chance(80)) {
            at = port->IsOutput() ? middle + below(netCount - std::min(middle, netCount - 1)) % 3 : below(middle);
        }
        instance->Connect(port, nets[std::min(at, netCount - 1)]);
    }
}

} // namespace clock_test
