#include "Designs.h"
#include "tests/support/LibsetGuard.h"

#include <climits>
#include <vector>

#include <DataBase.h>
#include <gtest/gtest.h>

namespace {

using namespace Verific;
using namespace platformtest;

class NetTest : public testing::Test {
  protected:
    Instance *add(const char *name, Netlist *view) { return addInstance(m_top, name, view); }

    testsupport::LibsetGuard m_guard;
    Netlist *m_gate = makeGate();
    Port *m_a = m_gate->GetPort("a");
    Port *m_b = m_gate->GetPort("b");
    Port *m_z = m_gate->GetPort("z");
    Port *m_y = m_gate->GetPort("y");
    Netlist *m_top = makeNetlist("work", "top");
    Net *m_net = addNet(m_top, "n");
};

using NetBusTest = NetTest;

TEST_F(NetTest, HoldsItsPinsInOrderOfConnection)
{
    Instance *u1 = add("u1", m_gate);
    Instance *u2 = add("u2", m_gate);
    u2->Connect(m_y, m_net);
    u1->Connect(m_b, m_net);
    u2->Connect(m_a, m_net);
    u1->Connect(m_a, m_net);
    EXPECT_EQ(loadsOf(m_net), "u2.y u1.b u2.a u1.a");
    EXPECT_EQ(m_net->NumOfRefs(), 4u);
    u2->Disconnect(m_a);
    EXPECT_EQ(loadsOf(m_net), "u2.y u1.b u1.a");
    u2->Disconnect(m_y);
    u1->Disconnect(m_a);
    EXPECT_EQ(loadsOf(m_net), "u1.b");
    u2->Connect(m_y, m_net);
    EXPECT_EQ(loadsOf(m_net), "u1.b u2.y");
}

TEST_F(NetTest, PinsTellInstancePortAndDirection)
{
    Instance *u1 = add("u1", m_gate);
    u1->Connect(m_a, m_net);
    u1->Connect(m_y, m_net);
    u1->Connect(m_z, m_net);
    std::vector<unsigned> kinds;
    SetIter iter;
    PortRef *ref = nullptr;
    FOREACH_PORTREF_OF_NET (m_net, iter, ref) {
        EXPECT_EQ(ref->GetInst(), u1);
        EXPECT_EQ(ref->GetNet(), m_net);
        kinds.push_back(ref->IsInput() + 2 * ref->IsOutput() + 4 * ref->IsInout());
    }
    EXPECT_EQ(kinds, (std::vector<unsigned>{1, 2, 4}));
}

TEST_F(NetTest, LetsTheVisitedPinBeDisconnected)
{
    for (int i = 0; i < 5; ++i) {
        add(nullptr, m_gate)->Connect(m_a, m_net);
    }
    unsigned met = 0;
    SetIter iter;
    PortRef *ref = nullptr;
    FOREACH_PORTREF_OF_NET (m_net, iter, ref) {
        ref->GetInst()->Disconnect(ref->GetPort());
        ++met;
    }
    EXPECT_EQ(met, 5u);
    EXPECT_EQ(m_net->NumOfRefs(), 0u);
}

TEST_F(NetTest, DriverIsTheInstanceOfTheFirstOutput)
{
    EXPECT_EQ(m_net->Driver(), nullptr);
    Instance *load = add("load", m_gate);
    Instance *first = add("first", m_gate);
    Instance *second = add("second", m_gate);
    load->Connect(m_a, m_net);
    EXPECT_EQ(m_net->Driver(), nullptr);
    second->Connect(m_y, m_net);
    first->Connect(m_y, m_net);
    EXPECT_EQ(m_net->Driver(), second);
    second->Disconnect(m_y);
    EXPECT_EQ(m_net->Driver(), first);
    second->Connect(m_y, m_net);
    EXPECT_EQ(m_net->Driver(), first);
    delete first;
    EXPECT_EQ(m_net->Driver(), second);
    delete second;
    EXPECT_EQ(m_net->Driver(), nullptr);
    EXPECT_EQ(loadsOf(m_net), "load.a");
}

TEST_F(NetTest, NeitherInoutPinsNorPortsAreDrivers)
{
    add("u", m_gate)->Connect(m_z, m_net);
    addPort(m_top, "in", DIR_IN)->Connect(m_net);
    EXPECT_EQ(m_net->Driver(), nullptr);
    Instance *late = add("late", m_gate);
    late->Connect(m_y, m_net);
    EXPECT_EQ(m_net->Driver(), late);
}

TEST_F(NetTest, CountsOutputPinsAndInputPortsAsDrivers)
{
    Instance *u1 = add("u1", m_gate);
    Instance *u2 = add("u2", m_gate);
    u1->Connect(m_z, m_net);
    u2->Connect(m_a, m_net);
    addPort(m_top, "io", DIR_INOUT)->Connect(m_net);
    addPort(m_top, "out", DIR_OUT)->Connect(m_net);
    EXPECT_FALSE(m_net->IsMultipleDriven());
    u1->Connect(m_y, m_net);
    EXPECT_FALSE(m_net->IsMultipleDriven());
    Port *in = addPort(m_top, "in", DIR_IN);
    in->Connect(m_net);
    EXPECT_TRUE(m_net->IsMultipleDriven());
    u1->Disconnect(m_y);
    EXPECT_FALSE(m_net->IsMultipleDriven());
    Port *other = addPort(m_top, "in2", DIR_IN);
    other->Connect(m_net);
    EXPECT_TRUE(m_net->IsMultipleDriven());
    delete other;
    EXPECT_FALSE(m_net->IsMultipleDriven());
    u1->Connect(m_y, m_net);
    u2->Connect(m_y, m_net);
    in->Connect(nullptr);
    EXPECT_TRUE(m_net->IsMultipleDriven());
}

TEST_F(NetTest, FindsTheNextDriverBesideInputPorts)
{
    addPort(m_top, "in", DIR_IN)->Connect(m_net);
    Instance *u1 = add("u1", m_gate);
    Instance *u2 = add("u2", m_gate);
    u1->Connect(m_y, m_net);
    u1->Connect(m_a, m_net);
    u2->Connect(m_y, m_net);
    u1->Disconnect(m_y);
    EXPECT_EQ(m_net->Driver(), u2);
    u2->Disconnect(m_y);
    EXPECT_EQ(m_net->Driver(), nullptr);
}

TEST_F(NetTest, IsPowerOrGroundByTheTypeOfItsDriver)
{
    Netlist *power = makeNetlist("Primitives", "pwr");
    power->MakePrimitive(PRIM_PWR, nullptr);
    Port *powerOut = addPort(power, "o", DIR_OUT);
    Netlist *ground = makeNetlist("Primitives", "gnd");
    ground->MakePrimitive(PRIM_GND, nullptr);
    Port *groundOut = addPort(ground, "o", DIR_OUT);
    Net *low = addNet(m_top, "low");
    Net *logic = addNet(m_top, "logic");
    add("p", power)->Connect(powerOut, m_net);
    add("g", ground)->Connect(groundOut, low);
    add("u", m_gate)->Connect(m_y, logic);
    EXPECT_TRUE(m_net->IsPwr());
    EXPECT_FALSE(m_net->IsGnd());
    EXPECT_TRUE(low->IsGnd());
    EXPECT_FALSE(low->IsPwr());
    EXPECT_FALSE(logic->IsPwr() || logic->IsGnd());
    EXPECT_FALSE(addNet(m_top, "open")->IsPwr());
}

TEST_F(NetTest, HoldsPortsInOrderOfConnection)
{
    Port *p1 = addPort(m_top, "p1", DIR_IN);
    Port *p2 = addPort(m_top, "p2", DIR_OUT);
    Port *p3 = addPort(m_top, "p3", DIR_OUT);
    EXPECT_EQ(m_net->GetPorts()->Size(), 0u);
    p2->Connect(m_net);
    m_net->Connect(p1);
    m_net->Connect(p3);
    m_net->Connect(static_cast<Port *>(nullptr));
    EXPECT_EQ(portsOf(m_net), "p2 p1 p3");
    EXPECT_EQ(p1->GetNet(), m_net);
    Net *other = addNet(m_top, "other");
    p1->Connect(other);
    EXPECT_EQ(portsOf(m_net), "p2 p3");
    EXPECT_EQ(portsOf(other), "p1");
    p2->Connect(m_net);
    EXPECT_EQ(portsOf(m_net), "p2 p3");
    p2->Connect(nullptr);
    EXPECT_EQ(portsOf(m_net), "p3");
    EXPECT_EQ(p2->GetNet(), nullptr);
}

TEST_F(NetTest, MovesPortsInAndOutWithoutLosingAny)
{
    std::vector<Port *> ports;
    for (int i = 0; i < 300; ++i) {
        ports.push_back(addPort(m_top, std::to_string(i).c_str(), DIR_OUT));
        ports.back()->Connect(m_net);
    }
    for (int i = 0; i < 290; ++i) {
        ports[static_cast<std::size_t>(i)]->Connect(nullptr);
    }
    ports[3]->Connect(m_net); // closes the gaps
    ports[295]->Connect(nullptr);
    EXPECT_EQ(portsOf(m_net), "290 291 292 293 294 296 297 298 299 3");
}

TEST_F(NetTest, RefusesPortsOfAnotherNetlist)
{
    Port *foreign = addPort(makeNetlist("work", "other"), "p", DIR_IN);
    foreign->Connect(m_net);
    EXPECT_EQ(foreign->GetNet(), nullptr);
    Port loose("loose", DIR_IN);
    loose.Connect(m_net);
    EXPECT_EQ(loose.GetNet(), nullptr);
    EXPECT_EQ(portsOf(m_net), "");
}

TEST_F(NetTest, DeletionDisconnectsEverything)
{
    Instance *u1 = add("u1", m_gate);
    u1->Connect(m_a, m_net);
    u1->Connect(m_y, m_net);
    Net *kept = addNet(m_top, "kept");
    u1->Connect(m_b, kept);
    Port *port = addPort(m_top, "p", DIR_IN);
    port->Connect(m_net);
    NetBus *bus = new NetBus("bus", 1, 0);
    m_top->Add(bus);
    bus->SetElement(0, m_net);
    bus->SetElement(1, kept);
    delete m_net;
    EXPECT_EQ(pinsOf(u1), "b");
    EXPECT_EQ(u1->GetNet(m_a), nullptr);
    EXPECT_EQ(port->GetNet(), nullptr);
    EXPECT_EQ(bus->ElementAtIndex(0), nullptr);
    EXPECT_EQ(bus->ElementAtIndex(1), kept);
    EXPECT_EQ(m_top->GetNet("n"), nullptr);
    EXPECT_EQ(m_top->GetNets()->Size(), 1u);
}

TEST_F(NetTest, DeletionOfANetWithAMillionLoadsIsNotQuadratic)
{
    std::vector<Instance *> insts;
    for (int i = 0; i < 1000000; ++i) {
        insts.push_back(add(nullptr, m_gate));
        insts.back()->Connect(i % 2 == 0 ? m_y : m_a, m_net);
    }
    EXPECT_EQ(m_net->Driver(), insts[0]);
    insts[0]->Disconnect(m_y);
    EXPECT_EQ(m_net->Driver(), insts[2]);
    delete m_net;
    EXPECT_EQ(insts[999999]->NumOfPortRefs(), 0u);
}

TEST_F(NetTest, OrdinaryAndMemoryNetsTellTheirSize)
{
    EXPECT_EQ(m_net->Size(), 1u);
    EXPECT_FALSE(m_net->IsRamNet());
    Net *memory = new RamNet("mem", 1024);
    m_top->Add(memory);
    EXPECT_EQ(memory->Size(), 1024u);
    EXPECT_TRUE(memory->IsRamNet());
    EXPECT_EQ(m_top->GetNet("mem"), memory);
}

TEST_F(NetBusTest, CountsItsBitsFromLeftToRight)
{
    NetBus down("d", 7, 0);
    EXPECT_EQ(down.LeftIndex(), 7);
    EXPECT_EQ(down.RightIndex(), 0);
    EXPECT_FALSE(down.IsUp());
    EXPECT_EQ(down.Size(), 8u);
    NetBus up("u", -3, 4);
    EXPECT_TRUE(up.IsUp());
    EXPECT_EQ(up.Size(), 8u);
    NetBus one("o", 5, 5);
    EXPECT_FALSE(one.IsUp());
    EXPECT_EQ(one.Size(), 1u);
    EXPECT_EQ(NetBus("all", INT_MAX, INT_MIN).Size(), UINT_MAX);
    EXPECT_EQ(NetBus("all", INT_MIN, INT_MAX - 1).Size(), UINT_MAX);
}

TEST_F(NetBusTest, AnswersNullForUnsetAndOutside)
{
    NetBus *bus = new NetBus("b", 7, 4);
    m_top->Add(bus);
    bus->SetElement(6, m_net);
    EXPECT_EQ(bus->ElementAtIndex(6), m_net);
    EXPECT_EQ(m_net->Bus(), bus);
    for (const int index : {7, 5, 4, 3, 8, INT_MIN, INT_MAX}) {
        EXPECT_EQ(bus->ElementAtIndex(index), nullptr) << index;
    }
    Net *other = addNet(m_top, "other");
    bus->SetElement(3, other);
    bus->SetElement(8, other);
    EXPECT_EQ(other->Bus(), nullptr);
}

TEST_F(NetBusTest, LoopsOverSetNetsFromLeftToRight)
{
    NetBus *bus = new NetBus("b", -1, 3);
    m_top->Add(bus);
    Net *other = addNet(m_top, "other");
    bus->SetElement(3, m_net);
    bus->SetElement(0, other);
    std::vector<Net *> met;
    MapIter iter;
    Net *net = nullptr;
    FOREACH_NET_OF_NETBUS (bus, iter, net) {
        met.push_back(net);
    }
    EXPECT_EQ(met, (std::vector<Net *>{other, m_net}));
    FOREACH_NET_OF_NETBUS (static_cast<NetBus *>(nullptr), iter, net) {
        ADD_FAILURE();
    }
}

TEST_F(NetBusTest, HoldsANetInOnePlaceAlone)
{
    NetBus *first = new NetBus("first", 3, 0);
    NetBus *second = new NetBus("second", 3, 0);
    m_top->Add(first);
    m_top->Add(second);
    first->SetElement(3, m_net);
    first->SetElement(0, m_net);
    EXPECT_EQ(first->ElementAtIndex(3), nullptr);
    EXPECT_EQ(first->ElementAtIndex(0), m_net);
    first->SetElement(0, m_net);
    EXPECT_EQ(m_net->Bus(), first);
    second->SetElement(1, m_net);
    EXPECT_EQ(first->ElementAtIndex(0), nullptr);
    EXPECT_EQ(m_net->Bus(), second);
    Net *other = addNet(m_top, "other");
    second->SetElement(1, other);
    EXPECT_EQ(m_net->Bus(), nullptr);
    EXPECT_EQ(second->ElementAtIndex(1), other);
    second->SetElement(1, nullptr);
    EXPECT_EQ(other->Bus(), nullptr);
    EXPECT_EQ(second->ElementAtIndex(1), nullptr);
    second->SetElement(2, nullptr);
    EXPECT_EQ(second->ElementAtIndex(2), nullptr);
}

TEST_F(NetBusTest, DeletionFreesItsNets)
{
    NetBus *bus = new NetBus("b", 0, 3);
    m_top->Add(bus);
    bus->SetElement(2, m_net);
    delete bus;
    EXPECT_EQ(m_net->Bus(), nullptr);
    EXPECT_EQ(m_top->GetNetBus("b"), nullptr);
    EXPECT_EQ(m_top->GetNet("n"), m_net);
}

TEST_F(NetBusTest, WideBusesLoseTheirNetsInAnyOrderQuickly)
{
    constexpr int WIDTH = 200000;
    for (const bool forward : {true, false}) {
        NetBus *bus = new NetBus("wide", WIDTH - 1, 0);
        m_top->Add(bus);
        std::vector<Net *> nets;
        for (int i = 0; i < WIDTH; ++i) {
            nets.push_back(addNet(m_top, nullptr));
            bus->SetElement(i, nets.back());
        }
        for (int i = 0; i < WIDTH; ++i) {
            const int at = forward ? i : WIDTH - 1 - i;
            delete nets[static_cast<std::size_t>(at)];
            ASSERT_EQ(bus->ElementAtIndex(at), nullptr);
        }
        delete bus;
    }
}

TEST_F(NetBusTest, ClearsABusOfAnotherNetlistWhenItsNetGoes)
{
    Netlist *other = makeNetlist("work", "other");
    NetBus *bus = new NetBus("b", 0, 3);
    other->Add(bus);
    bus->SetElement(2, m_net);
    delete m_top;
    EXPECT_EQ(bus->ElementAtIndex(2), nullptr);
}

} // namespace
