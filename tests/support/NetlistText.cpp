#include "tests/support/NetlistText.h"

#include "tests/support/NetlistTextParser.h"

#include <DataBase.h>
#include <LineFile.h>

#include <map>
#include <stdexcept>

namespace testsupport {

namespace {

constexpr std::string_view KVR_CELLS = R"(
    blackbox KVR_LUT1(in I0, out O) end
    blackbox KVR_LUT2(in I0, I1, out O) end
    blackbox KVR_LUT3(in I0, I1, I2, out O) end
    blackbox KVR_LUT4(in I0, I1, I2, I3, out O) end
    blackbox KVR_LUT5(in I0, I1, I2, I3, I4, out O) end
    blackbox KVR_LUT6(in I0, I1, I2, I3, I4, I5, out O) end
    blackbox KVR_FF(in C clock, D, E, R, out Q) end
    blackbox KVR_SRL16(in C clock, D, E, [3:0] A, out Q) end
    blackbox KVR_SRL32(in C clock, D, E, [4:0] A, out Q) end
    blackbox KVR_RAMD16X4(in W_CLK clock, W_EN, [3:0] W_ADDR, [3:0] W_DATA, [3:0] R_ADDR, out [3:0] R_DATA) end
    blackbox KVR_RAM512X18(in W_CLK clock, W_EN, [8:0] W_ADDR, [17:0] W_DATA, R_CLK clock, R_EN, [8:0] R_ADDR,
                           out [17:0] R_DATA) end
    blackbox KVR_DPRAM512X8(in CLK_A clock, EN_A, WE_A, [8:0] ADDR_A, DIN0_A, DIN1_A, DIN2_A, DIN3_A, DIN4_A, DIN5_A,
                            DIN6_A, DIN7_A, out DOUT0_A, DOUT1_A, DOUT2_A, DOUT3_A, DOUT4_A, DOUT5_A, DOUT6_A, DOUT7_A,
                            in CLK_B clock, EN_B, WE_B, [8:0] ADDR_B, DIN0_B, DIN1_B, DIN2_B, DIN3_B, DIN4_B, DIN5_B,
                            DIN6_B, DIN7_B, out DOUT0_B, DOUT1_B, DOUT2_B, DOUT3_B, DOUT4_B, DOUT5_B, DOUT6_B,
                            DOUT7_B) end
    blackbox KVR_MULT(in CLK clock, CE, [17:0] A, [17:0] B, out [35:0] P) end
    blackbox KVR_DSP48(in CLK clock, CE, [17:0] A, [17:0] B, [47:0] C, out [47:0] P) end
    blackbox KVR_IDDR(in C clock, D, out Q0, Q1) end
    blackbox KVR_ODDR(in C clock, D0, D1, out Q) end
    blackbox KVR_GBUFCE(in I, CE, out O) end
    blackbox KVR_IBUF(in I, out O) end
    blackbox KVR_OBUF(in I, out O) end
    blackbox KVR_IOBUF(in I, OE, out O, inout IO) end
)";

const char *nullable(const Name &name)
{
    return name.has_value() ? name->c_str() : nullptr;
}

Verific::Netlist *findNetlistOfCell(const char *cell)
{
    Verific::MapIter libraries;
    const Verific::Library *library = nullptr;
    FOREACH_LIBRARY_OF_LIBSET (Verific::Libset::Global(), libraries, library) {
        if (const Verific::Cell *found = library->GetCell(cell)) {
            return found->GetFirstNetlist();
        }
    }
    return nullptr;
}

template <typename Visit> void forEachIndex(Bounds bounds, Visit visit)
{
    const int step = bounds.left <= bounds.right ? 1 : -1;
    for (int index = bounds.left;; index += step) {
        visit(index);
        if (index == bounds.right) {
            return;
        }
    }
}

Name bitName(const Name &name, int index)
{
    return name.has_value() ? Name(*name + "[" + std::to_string(index) + "]") : std::nullopt;
}

void applyTraits(Verific::DesignObj *object, const Traits &traits)
{
    for (const auto &[key, value] : traits.attributes) {
        object->AddAtt(new Verific::Att(key.c_str(), nullable(value)));
    }
    if (!traits.file.empty()) {
        object->SetLinefile(Verific::LineFile::EncodeLineFile(traits.file.c_str(), traits.line));
        object->SetUserDeclared(1);
    }
    if (traits.isProtected) {
        object->SetProtected(1);
    }
}

/// Refuses what means nothing on anything but a unit.
void refuseUnitTraits(unsigned line, const Traits &traits)
{
    if (!traits.settings.empty() || traits.isLoose || traits.isBlackBox) {
        netlistTextError(line, "this trait belongs to a unit");
    }
}

void refuseInstanceTraits(unsigned line, const Traits &traits)
{
    if (!traits.parameters.empty() || traits.isPlain) {
        netlistTextError(line, "this trait belongs to an instance");
    }
}

class Builder {
  public:
    Verific::Netlist *build(const std::vector<Unit> &units)
    {
        Verific::Netlist *top = nullptr;
        std::vector<std::pair<const Unit *, Verific::Netlist *>> made;
        for (const Unit &unit : units) {
            Verific::Netlist *const netlist = makeNetlist(unit);
            made.emplace_back(&unit, netlist);
            if (unit.kind == "module") {
                top = netlist;
            }
        }
        for (const auto &[unit, netlist] : made) {
            for (const Statement &statement : unit->statements) {
                execute(statement, netlist);
            }
        }
        return top;
    }

  private:
    Verific::Netlist *makeNetlist(const Unit &unit)
    {
        const Traits &traits = unit.traits;
        const std::string *view = traits.setting("view");
        auto *const netlist = new Verific::Netlist(view != nullptr ? view->c_str() : "netlist");
        if (!traits.isLoose) {
            addToLibrary(unit, netlist);
        }
        if (!m_netlists.emplace(unit.name, netlist).second && view == nullptr) {
            netlistTextError(unit.line, "unit \"" + unit.name + "\" stands twice");
        }
        refuseInstanceTraits(unit.line, traits);
        applyTraits(netlist, traits);
        for (const PortText &port : unit.ports) {
            refuseUnitTraits(unit.line, port.traits);
            refuseInstanceTraits(unit.line, port.traits);
            makePort(port, netlist, unit.kind == "module");
        }
        setKind(unit, netlist);
        return netlist;
    }

    static void addToLibrary(const Unit &unit, Verific::Netlist *netlist)
    {
        std::string name = unit.kind == "operator"                               ? "Operators"
                           : unit.kind == "primitive" || unit.kind == "register" ? "Primitives"
                                                                                 : "work";
        if (const std::string *given = unit.traits.setting("library")) {
            name = *given;
        }
        Verific::Library *library = Verific::Libset::Global()->GetLibrary(name.c_str());
        if (library == nullptr) {
            library = new Verific::Library(name.c_str());
            Verific::Libset::Global()->Add(library);
        }
        Verific::Cell *cell = library->GetCell(unit.name.c_str());
        if (cell == nullptr) {
            cell = new Verific::Cell(unit.name.c_str());
            library->Add(cell);
        }
        cell->Add(netlist);
    }

    static void setKind(const Unit &unit, Verific::Netlist *netlist)
    {
        const auto portSetting = [&](const char *key) -> Verific::Port * {
            const std::string *name = unit.traits.setting(key);
            Verific::Port *const port = name != nullptr ? netlist->GetPort(name->c_str()) : nullptr;
            if (name != nullptr && port == nullptr) {
                netlistTextError(unit.line, "no port \"" + *name + "\"");
            }
            return port;
        };
        if (unit.kind == "blackbox" || unit.traits.isBlackBox) {
            netlist->MakeBlackBox();
        }
        if (unit.kind == "operator") {
            netlist->MakeOperator();
        }
        if (unit.kind == "register" || unit.traits.setting("clock") != nullptr) {
            netlist->MakeRegister(portSetting("clock"));
        }
        const std::string *type = unit.traits.setting("type");
        if (unit.kind == "primitive" || unit.kind == "register" || type != nullptr) {
            netlist->MakePrimitive(type != nullptr ? static_cast<unsigned>(std::stoul(*type))
                                                   : unsigned{Verific::PRIM_OTHER},
                                   portSetting("input"));
        }
    }

    static Verific::Port *makeBitPort(const Name &name, unsigned direction, const Traits &traits,
                                      Verific::Netlist *netlist)
    {
        auto *const port = new Verific::Port(nullable(name), direction);
        netlist->Add(port);
        for (const auto &[key, value] : traits.attributes) {
            port->AddAtt(new Verific::Att(key.c_str(), nullable(value)));
        }
        if (traits.isClock) {
            port->AddAtt(new Verific::Att("KVR_ATTRIBUTE_PORT__IS_CLOCK", "TRUE"));
        }
        return port;
    }

    static Verific::Net *makeNet(const Name &name, const Traits &traits, Verific::Netlist *netlist)
    {
        auto *const net = new Verific::Net(nullable(name));
        netlist->Add(net);
        applyTraits(net, traits);
        return net;
    }

    static void makePort(const PortText &text, Verific::Netlist *netlist, bool hasNets)
    {
        static const std::map<std::string, unsigned> DIRECTIONS{{"in", Verific::DIR_IN},
                                                                {"out", Verific::DIR_OUT},
                                                                {"inout", Verific::DIR_INOUT},
                                                                {"none", Verific::DIR_NONE}};
        const unsigned direction = DIRECTIONS.at(text.direction);
        Traits netTraits = text.traits;
        netTraits.attributes.clear();
        if (!text.bounds.has_value()) {
            Verific::Port *const port = makeBitPort(text.name, direction, text.traits, netlist);
            if (hasNets) {
                port->Connect(makeNet(text.name, netTraits, netlist));
            }
            return;
        }
        const auto [left, right] = *text.bounds;
        auto *const portBus = new Verific::PortBus(nullable(text.name), left, right, direction);
        netlist->Add(portBus);
        Verific::NetBus *netBus = nullptr;
        if (hasNets) {
            netBus = new Verific::NetBus(nullable(text.name), left, right);
            netlist->Add(netBus);
            applyTraits(netBus, netTraits);
        }
        forEachIndex(*text.bounds, [&](int index) {
            const Name name = bitName(text.name, index);
            Verific::Port *const port = makeBitPort(name, direction, text.traits, netlist);
            portBus->SetElement(index, port);
            if (netBus != nullptr) {
                Verific::Net *const net = makeNet(name, netTraits, netlist);
                netBus->SetElement(index, net);
                port->Connect(net);
            }
        });
    }

    void execute(const Statement &statement, Verific::Netlist *netlist)
    {
        refuseUnitTraits(statement.line, statement.traits);
        if (statement.traits.isClock) {
            netlistTextError(statement.line, "this trait belongs to a port");
        }
        if (statement.kind != Statement::INSTANCE) {
            refuseInstanceTraits(statement.line, statement.traits);
        }
        switch (statement.kind) {
        case Statement::NET:
            makeNet(statement.name, statement.traits, netlist);
            break;
        case Statement::RAM: {
            auto *const net = new Verific::RamNet(nullable(statement.name), statement.bits);
            netlist->Add(net);
            applyTraits(net, statement.traits);
            break;
        }
        case Statement::BUS:
            makeBus(statement, netlist);
            break;
        case Statement::CONNECT: {
            Verific::Port *const port = netlist->GetPort(nullable(statement.name));
            if (port == nullptr || statement.value->isList) {
                netlistTextError(statement.line, "a port of the unit is connected to one net");
            }
            port->Connect(netNamed(statement.value->names[0], netlist));
            break;
        }
        case Statement::INSTANCE:
            makeInstance(statement, netlist);
            break;
        }
    }

    /// The net of that name, made when there is none; null for an open bit.
    static Verific::Net *netNamed(const Name &name, Verific::Netlist *netlist)
    {
        if (!name.has_value()) {
            return nullptr;
        }
        Verific::Net *const net = netlist->GetNet(name->c_str());
        return net != nullptr ? net : makeNet(name, {}, netlist);
    }

    static void makeBus(const Statement &statement, Verific::Netlist *netlist)
    {
        auto *const bus = new Verific::NetBus(nullable(statement.name), statement.bounds.left, statement.bounds.right);
        netlist->Add(bus);
        applyTraits(bus, statement.traits);
        std::size_t at = 0;
        if (statement.value.has_value() && !statement.value->isList) {
            netlistTextError(statement.line, "the bits of a bus stand in braces");
        }
        if (statement.value.has_value() && statement.value->names.size() != bus->Size()) {
            netlistTextError(statement.line, "the bus has " + std::to_string(bus->Size()) + " bits");
        }
        forEachIndex(statement.bounds, [&](int index) {
            Verific::Net *const net = statement.value.has_value()
                                          ? netNamed(statement.value->names[at++], netlist)
                                          : makeNet(bitName(statement.name, index), statement.traits, netlist);
            if (net != nullptr) {
                bus->SetElement(index, net);
            }
        });
    }

    Verific::Netlist *viewOf(const Statement &statement)
    {
        if (!statement.cell.has_value()) {
            return nullptr;
        }
        const std::string &cell = *statement.cell;
        if (const auto found = m_netlists.find(cell); found != m_netlists.end()) {
            return found->second;
        }
        if (Verific::Netlist *const found = findNetlistOfCell(cell.c_str())) {
            return found;
        }
        static const std::vector<Unit> KVR_UNITS = parseNetlistText(KVR_CELLS);
        for (const Unit &unit : KVR_UNITS) {
            if (unit.name == cell) {
                return makeNetlist(unit);
            }
        }
        netlistTextError(statement.line, "no cell \"" + cell + "\"");
    }

    void makeInstance(const Statement &statement, Verific::Netlist *netlist)
    {
        Verific::Netlist *const view = viewOf(statement);
        auto *const instance = new Verific::Instance(nullable(statement.name), view);
        netlist->Add(instance);
        applyTraits(instance, statement.traits);
        for (const auto &[key, value] : statement.traits.parameters) {
            instance->AddParam(key.c_str(), value.c_str());
        }
        if (view != nullptr && statement.cell->rfind("KVR_", 0) == 0 && !statement.traits.isPlain &&
            instance->GetAtt("KVR_ATTRIBUTE_CELL_NAME") == nullptr) {
            instance->AddAtt(new Verific::Att("KVR_ATTRIBUTE_CELL_NAME", statement.cell->c_str()));
        }
        for (const auto &[pin, value] : statement.pins) {
            connect(statement, instance, pin, value, netlist);
        }
    }

    static void connect(const Statement &statement, Verific::Instance *instance, const std::string &pin,
                        const Value &value, Verific::Netlist *netlist)
    {
        const Verific::Netlist *const view = instance->View();
        const Verific::PortBus *const bus = view != nullptr ? view->GetPortBus(pin.c_str()) : nullptr;
        if (bus == nullptr) {
            const Verific::Port *const port = view != nullptr ? view->GetPort(pin.c_str()) : nullptr;
            if (port == nullptr || value.isList) {
                netlistTextError(statement.line, "no port \"" + pin + "\" for this value");
            }
            if (Verific::Net *const net = netNamed(value.names[0], netlist)) {
                instance->Connect(port, net);
            }
            return;
        }
        const Verific::NetBus *const netBus =
            value.isList || !value.names[0].has_value() ? nullptr : netlist->GetNetBus(value.names[0]->c_str());
        if (netBus == nullptr && !value.isList) {
            netlistTextError(statement.line, "pin \"" + pin + "\" takes a bus or nets in braces");
        }
        if ((netBus != nullptr ? netBus->Size() : value.names.size()) != bus->Size()) {
            netlistTextError(statement.line, "pin \"" + pin + "\" has " + std::to_string(bus->Size()) + " bits");
        }
        int step = netBus != nullptr && netBus->LeftIndex() > netBus->RightIndex() ? -1 : 1;
        int at = netBus != nullptr ? netBus->LeftIndex() : 0;
        forEachIndex({bus->LeftIndex(), bus->RightIndex()}, [&](int index) {
            Verific::Net *const net = netBus != nullptr ? netBus->ElementAtIndex(at)
                                                        : netNamed(value.names[static_cast<std::size_t>(at)], netlist);
            if (net != nullptr) {
                instance->Connect(bus->ElementAtIndex(index), net);
            }
            at += step;
        });
    }

    std::map<std::string, Verific::Netlist *> m_netlists;
};

template <typename T> T *existing(T *object, const char *kind, const char *name)
{
    if (object == nullptr) {
        throw std::invalid_argument(std::string("no ") + kind + " \"" + name + "\"");
    }
    return object;
}

} // namespace

Verific::Netlist *netlistFromText(std::string_view text)
{
    return Builder().build(parseNetlistText(text));
}

Verific::Netlist *netlistOfCell(const char *cell)
{
    return existing(findNetlistOfCell(cell), "cell", cell);
}

Verific::Net *netOf(const Verific::Netlist *netlist, const char *name)
{
    return existing(netlist->GetNet(name), "net", name);
}

Verific::NetBus *netBusOf(const Verific::Netlist *netlist, const char *name)
{
    return existing(netlist->GetNetBus(name), "net bus", name);
}

Verific::Port *portOf(const Verific::Netlist *netlist, const char *name)
{
    return existing(netlist->GetPort(name), "port", name);
}

Verific::Instance *instanceOf(const Verific::Netlist *netlist, const char *name)
{
    return existing(netlist->GetInst(name), "instance", name);
}

} // namespace testsupport
