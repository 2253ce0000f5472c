#include "Designs.h"
#include "tests/support/LibsetGuard.h"

#include <vector>

#include <DataBase.h>
#include <gtest/gtest.h>

namespace {

using namespace Verific;
using namespace platformtest;

class PortTest : public testing::Test {
  protected:
    testsupport::LibsetGuard m_guard;
    Netlist *m_top = makeNetlist("work", "top");
};

using PortBusTest = PortTest;

TEST_F(PortTest, TellsItsDirection)
{
    EXPECT_TRUE(Port("p", DIR_IN).IsInput());
    EXPECT_TRUE(Port("p", DIR_OUT).IsOutput());
    EXPECT_TRUE(Port("p", DIR_INOUT).IsInout());
    const Port none("p", DIR_NONE);
    EXPECT_FALSE(none.IsInput() || none.IsOutput() || none.IsInout());
    EXPECT_EQ(Port("p", DIR_OUT).GetDir(), 2u);
    EXPECT_EQ(DIR_IN, 1);
}

TEST_F(PortTest, DeletionDisconnectsItsPinOnEveryInstance)
{
    Netlist *gate = makeGate();
    Net *net = addNet(m_top, "n");
    Instance *u1 = addInstance(m_top, "u1", gate);
    Instance *u2 = addInstance(m_top, "u2", gate);
    for (const char *name : {"a", "b"}) {
        u1->Connect(gate->GetPort(name), net);
        u2->Connect(gate->GetPort(name), net);
    }
    delete gate->GetPort("a");
    EXPECT_EQ(pinsOf(u1), "b");
    EXPECT_EQ(pinsOf(u2), "b");
    EXPECT_EQ(loadsOf(net), "u1.b u2.b");
    EXPECT_EQ(gate->GetPort("a"), nullptr);
}

TEST_F(PortTest, DeletionLeavesNoTraceInItsNetlist)
{
    Netlist *ff = makeNetlist("cells", "ff");
    Port *clock = addPort(ff, "c", DIR_IN);
    ff->MakeRegister(clock);
    ff->MakePrimitive(PRIM_BUF, clock);
    Net *net = addNet(ff, "n");
    clock->Connect(net);
    PortBus *bus = new PortBus("bus", 1, 0, DIR_IN);
    ff->Add(bus);
    bus->SetElement(1, clock);
    delete clock;
    EXPECT_EQ(ff->GetClock(), nullptr);
    EXPECT_EQ(ff->GetInput(), nullptr);
    EXPECT_TRUE(ff->IsRegister());
    EXPECT_TRUE(ff->IsPrimitive());
    EXPECT_EQ(portsOf(net), "");
    EXPECT_EQ(bus->ElementAtIndex(1), nullptr);
    EXPECT_EQ(ff->GetPorts()->Size(), 0u);
}

TEST_F(PortBusTest, TellsBoundsAndDirection)
{
    const PortBus bus("b", 3, -4, DIR_INOUT);
    EXPECT_EQ(bus.GetDir(), unsigned{DIR_INOUT});
    EXPECT_EQ(bus.LeftIndex(), 3);
    EXPECT_EQ(bus.RightIndex(), -4);
    EXPECT_FALSE(bus.IsUp());
    EXPECT_EQ(bus.Size(), 8u);
    EXPECT_TRUE(PortBus("b", 0, 1, DIR_IN).IsUp());
}

TEST_F(PortBusTest, LoopsOverSetPortsFromLeftToRight)
{
    PortBus *bus = new PortBus("b", 7, 0, DIR_IN);
    m_top->Add(bus);
    Port *p1 = addPort(m_top, "p1", DIR_IN);
    Port *p5 = addPort(m_top, "p5", DIR_IN);
    bus->SetElement(1, p1);
    bus->SetElement(5, p5);
    EXPECT_EQ(p1->Bus(), bus);
    std::vector<Port *> met;
    SetIter iter;
    Port *port = nullptr;
    FOREACH_PORT_OF_PORTBUS (bus, iter, port) {
        met.push_back(port);
    }
    EXPECT_EQ(met, (std::vector<Port *>{p5, p1}));
    EXPECT_EQ(bus->ElementAtIndex(5), p5);
    EXPECT_EQ(bus->ElementAtIndex(4), nullptr);
    EXPECT_EQ(bus->ElementAtIndex(8), nullptr);
}

TEST_F(PortBusTest, HoldsAPortInOnePlaceAlone)
{
    PortBus *first = new PortBus("first", 3, 0, DIR_IN);
    PortBus *second = new PortBus("second", 3, 0, DIR_IN);
    m_top->Add(first);
    m_top->Add(second);
    Port *port = addPort(m_top, "p", DIR_IN);
    first->SetElement(2, port);
    second->SetElement(0, port);
    EXPECT_EQ(first->ElementAtIndex(2), nullptr);
    EXPECT_EQ(port->Bus(), second);
    second->SetElement(4, port);
    EXPECT_EQ(second->ElementAtIndex(0), port);
    second->SetElement(0, nullptr);
    EXPECT_EQ(port->Bus(), nullptr);
}

TEST_F(PortBusTest, DeletionFreesItsPorts)
{
    PortBus *bus = new PortBus("b", 3, 0, DIR_IN);
    m_top->Add(bus);
    Port *port = addPort(m_top, "p", DIR_IN);
    bus->SetElement(2, port);
    delete bus;
    EXPECT_EQ(port->Bus(), nullptr);
    EXPECT_EQ(m_top->GetPortBus("b"), nullptr);
    EXPECT_EQ(m_top->GetPort("p"), port);
}

} // namespace
