#include "Designs.h"

#include <DataBase.h>
#include <LineFile.h>

namespace platformtest {

using namespace Verific;

namespace {

void append(std::string &text, const char *name)
{
    text += (text.empty() ? "" : " ") + std::string(name != nullptr ? name : "null");
}

Netlist *makeFlipFlop()
{
    Netlist *ff = makeNetlist("cells", "ff");
    Port *clock = addPort(ff, "c", DIR_IN);
    addPort(ff, "d", DIR_IN);
    addPort(ff, "q", DIR_OUT);
    ff->MakeRegister(clock);
    ff->MakeBlackBox();
    ff->SetLinefile(LineFile::EncodeLineFile("/lib/cells.v", 12));
    ff->Owner()->AddAtt(new Att("keep", nullptr));
    ff->Owner()->Owner()->AddAtt(new Att("vendor", "none"));
    return ff;
}

Netlist *makeMiddle(Netlist *gate)
{
    Netlist *middle = makeNetlist("work", "middle", "rtl");
    middle->SetProtected(1);
    PortBus *in = new PortBus("in", 3, 0, DIR_IN);
    middle->Add(in);
    NetBus *wires = new NetBus("in", 3, 0);
    middle->Add(wires);
    for (int bit = 0; bit < 4; ++bit) {
        const std::string name = "in[" + std::to_string(bit) + "]";
        Port *port = addPort(middle, name.c_str(), DIR_IN);
        in->SetElement(bit, port);
        Net *net = addNet(middle, name.c_str());
        wires->SetElement(bit, net);
        port->Connect(net);
    }
    Port *out = addPort(middle, "out", DIR_OUT);
    out->Connect(middle->GetNet("in[2]"));
    out->SetUserDeclared(1);
    Instance *inner = addInstance(middle, "inner", gate);
    inner->Connect(gate->GetPort("y"), middle->GetNet("in[0]"));
    inner->Connect(gate->GetPort("a"), middle->GetNet("in[1]"));
    return middle;
}

} // namespace

Netlist *makeNetlist(const char *library, const char *cell, const char *view)
{
    Library *lib = Libset::Global()->GetLibrary(library);
    if (lib == nullptr) {
        lib = new Library(library);
        Libset::Global()->Add(lib);
    }
    Cell *owner = lib->GetCell(cell);
    if (owner == nullptr) {
        owner = new Cell(cell);
        lib->Add(owner);
    }
    Netlist *netlist = new Netlist(view);
    owner->Add(netlist);
    return netlist;
}

Port *addPort(Netlist *netlist, const char *name, unsigned dir)
{
    Port *port = new Port(name, dir);
    netlist->Add(port);
    return port;
}

Net *addNet(Netlist *netlist, const char *name)
{
    Net *net = new Net(name);
    netlist->Add(net);
    return net;
}

Instance *addInstance(Netlist *netlist, const char *name, Netlist *view)
{
    Instance *inst = new Instance(name, view);
    netlist->Add(inst);
    return inst;
}

Netlist *makeGate(const char *cell)
{
    Netlist *gate = makeNetlist("cells", cell);
    addPort(gate, "a", DIR_IN);
    addPort(gate, "b", DIR_IN);
    addPort(gate, "z", DIR_INOUT);
    addPort(gate, "y", DIR_OUT);
    return gate;
}

Netlist *makeEverything()
{
    Netlist *gate = makeGate();
    Netlist *ff = makeFlipFlop();
    Netlist *power = makeNetlist("Primitives", "VCC");
    addPort(power, "o", DIR_OUT);
    power->MakePrimitive(PRIM_PWR, nullptr);
    Netlist *ground = makeNetlist("Primitives", "GND");
    addPort(ground, "o", DIR_OUT);
    ground->MakePrimitive(PRIM_GND, nullptr);
    Netlist *buffer = makeNetlist("Primitives", "BUF");
    buffer->MakePrimitive(PRIM_BUF, addPort(buffer, "i", DIR_IN));
    addPort(buffer, "o", DIR_OUT);
    Netlist *adder = makeNetlist("Operators", "add");
    adder->MakeOperator();
    addPort(adder, nullptr, DIR_IN);
    addPort(adder, "", DIR_NONE);
    Netlist *middle = makeMiddle(gate);

    Netlist *top = makeNetlist("work", "top");
    top->SetLinefile(LineFile::EncodeLineFile("rtl/top.v", 3));
    top->AddAtt(new Att("top", "1"));
    top->AddAtt(new Att("top", "twice"));
    top->AddAtt(new Att("bare", nullptr));
    top->AddAtt(new Att("", ""));

    Port *clk = addPort(top, "clk", DIR_IN);
    clk->SetLinefile(LineFile::EncodeLineFile("rtl/top.v", 4));
    Port *pad = addPort(top, "pad", DIR_INOUT);
    addPort(top, "nowhere", DIR_NONE);
    PortBus *holes = new PortBus("holes", -2, 5, DIR_OUT);
    top->Add(holes);
    holes->AddAtt(new Att("width", "8"));
    holes->SetElement(-1, addPort(top, "holes[-1]", DIR_OUT));
    holes->SetElement(3, addPort(top, "holes[3]", DIR_OUT));
    top->Add(new PortBus("empty", 7, 0, DIR_INOUT));

    Net *clkNet = addNet(top, "clk");
    Net *n1 = addNet(top, "n1");
    Net *n2 = addNet(top, "n2");
    Net *nameless = addNet(top, nullptr);
    Net *blank = addNet(top, "");
    addNet(top, "n1"); // a second one of that name
    Net *one = addNet(top, "one");
    Net *zero = addNet(top, "zero");
    Net *memory = new RamNet("mem", 4096);
    top->Add(memory);
    memory->SetLinefile(LineFile::EncodeLineFile("rtl/include/../mem.vh", 0));
    n1->AddAtt(new Att("k", "v"));
    n2->AddAtt(new Att("k", "v"));
    n2->SetProtected(1);
    n2->SetUserDeclared(1);
    NetBus *bus = new NetBus("bus", 7, 2);
    top->Add(bus);
    bus->SetElement(6, n2);
    bus->SetElement(2, n1);
    bus->SetLinefile(LineFile::EncodeLineFile("rtl/top.v", 4000000000u));
    NetBus *wide = new NetBus("wide", 2147483647, -2147483647 - 1);
    top->Add(wide);
    wide->SetElement(2147483646, nameless);

    // Ports on one net in another order than they were added.
    pad->Connect(clkNet);
    clk->Connect(clkNet);
    top->GetPort("holes[3]")->Connect(n2);

    Instance *u1 = addInstance(top, "u1", gate);
    Instance *u2 = addInstance(top, "u2", gate);
    Instance *r1 = addInstance(top, "r1", ff);
    addInstance(top, "mystery", nullptr)->AddParam("LEFT", "alone");
    Instance *m1 = addInstance(top, "m1", middle);
    Instance *m2 = addInstance(top, nullptr, middle);
    addInstance(top, "m3", middle);
    addInstance(top, "vcc", power)->Connect(power->GetPort("o"), one);
    addInstance(top, "gnd", ground)->Connect(ground->GetPort("o"), zero);
    Instance *buf = addInstance(top, "buf", buffer);
    Instance *sum = addInstance(top, "sum", adder);

    u1->AddParam("INIT", "4'b0110");
    u1->AddParam("MODE", "");
    u1->AddParam("NONE", nullptr);
    u2->AddParam("INIT", "4'b0110");
    u2->AddParam("MODE", "");
    u2->AddParam("NONE", nullptr);
    r1->AddAtt(new Att("async_reg", "true"));
    r1->SetLinefile(LineFile::EncodeLineFile("rtl/top.v", 17));

    // Pins in the order of the ports, in another order, and nets that see the instances in another order.
    r1->Connect(ff->GetPort("c"), clkNet);
    r1->Connect(ff->GetPort("d"), n1);
    r1->Connect(ff->GetPort("q"), n2);
    u2->Connect(gate->GetPort("y"), n1);
    u2->Connect(gate->GetPort("a"), n2);
    u1->Connect(gate->GetPort("b"), n2);
    u1->Connect(gate->GetPort("y"), n1);
    u1->Connect(gate->GetPort("z"), n1);
    u1->Connect(gate->GetPort("a"), n1);
    m1->Connect(middle->GetPort("in[3]"), n2);
    m1->Connect(middle->GetPort("out"), blank);
    m2->Connect(middle->GetPort("out"), nameless);
    buf->Connect(buffer->GetInput(), one);
    buf->Connect(buffer->GetPort("o"), nameless);
    sum->Connect(adder->GetPort(""), zero);
    return top;
}

std::string pinsOf(const Instance *inst)
{
    std::string text;
    MapIter iter;
    PortRef *ref = nullptr;
    FOREACH_PORTREF_OF_INST (inst, iter, ref) {
        append(text, ref->GetPort()->Name());
    }
    return text;
}

std::string loadsOf(const Net *net)
{
    std::string text;
    SetIter iter;
    PortRef *ref = nullptr;
    FOREACH_PORTREF_OF_NET (net, iter, ref) {
        append(text, ref->GetInst()->Name());
        text += "." + std::string(ref->GetPort()->Name());
    }
    return text;
}

std::string portsOf(const Net *net)
{
    std::string text;
    SetIter iter;
    Port *port = nullptr;
    FOREACH_PORT_OF_NET (net, iter, port) {
        append(text, port->Name());
    }
    return text;
}

std::string referencesOf(const Netlist *netlist)
{
    std::string text;
    SetIter iter;
    Instance *inst = nullptr;
    FOREACH_REFERENCE_OF_NETLIST (netlist, iter, inst) {
        append(text, inst->Name());
    }
    return text;
}

} // namespace platformtest
