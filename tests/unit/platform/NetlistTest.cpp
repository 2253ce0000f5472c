#include "Designs.h"
#include "tests/support/LibsetGuard.h"

#include <string>
#include <vector>

#include <DataBase.h>
#include <gtest/gtest.h>

namespace {

using namespace Verific;
using namespace platformtest;

class NetlistTest : public testing::Test {
  protected:
    testsupport::LibsetGuard m_guard;
    Netlist *m_top = makeNetlist("work", "top");
};

TEST_F(NetlistTest, FindsEverythingByName)
{
    Port *port = addPort(m_top, "x", DIR_IN);
    Net *net = addNet(m_top, "x");
    Instance *inst = addInstance(m_top, "x", nullptr);
    NetBus *netBus = new NetBus("x", 1, 0);
    PortBus *portBus = new PortBus("x", 1, 0, DIR_IN);
    m_top->Add(netBus);
    m_top->Add(portBus);
    EXPECT_EQ(m_top->GetPort("x"), port);
    EXPECT_EQ(m_top->GetNet("x"), net);
    EXPECT_EQ(m_top->GetInst("x"), inst);
    EXPECT_EQ(m_top->GetNetBus("x"), netBus);
    EXPECT_EQ(m_top->GetPortBus("x"), portBus);
    EXPECT_EQ(port->Owner(), m_top);
    EXPECT_EQ(net->Owner(), m_top);
    EXPECT_EQ(inst->Owner(), m_top);
    EXPECT_EQ(netBus->Owner(), m_top);
    EXPECT_EQ(portBus->Owner(), m_top);
    EXPECT_EQ(m_top->GetNet("y"), nullptr);
    EXPECT_EQ(m_top->GetNet(nullptr), nullptr);
}

TEST_F(NetlistTest, NeverFindsANullName)
{
    Net *nameless = addNet(m_top, nullptr);
    Net *blank = addNet(m_top, "");
    EXPECT_EQ(m_top->GetNet(nullptr), nullptr);
    EXPECT_EQ(m_top->GetNet(""), blank);
    EXPECT_EQ(m_top->GetNets()->Size(), 2u);
    delete nameless;
    EXPECT_EQ(m_top->GetNets()->Size(), 1u);
}

TEST_F(NetlistTest, FindsTheFirstOfOneName)
{
    std::vector<Net *> twins;
    for (int i = 0; i < 3; ++i) {
        twins.push_back(addNet(m_top, "twin"));
        for (int j = 0; j < 20; ++j) {
            addNet(m_top, ("n" + std::to_string(i) + "_" + std::to_string(j)).c_str());
        }
    }
    EXPECT_EQ(m_top->GetNet("twin"), twins[0]);
    delete twins[0];
    EXPECT_EQ(m_top->GetNet("twin"), twins[1]);
    delete twins[2];
    EXPECT_EQ(m_top->GetNet("twin"), twins[1]);
    delete twins[1];
    EXPECT_EQ(m_top->GetNet("twin"), nullptr);
    EXPECT_NE(m_top->GetNet("n1_7"), nullptr);
}

TEST_F(NetlistTest, TakesNothingThatHasAnOwner)
{
    Netlist *other = makeNetlist("work", "other");
    Port *port = addPort(m_top, "p", DIR_IN);
    Net *net = addNet(m_top, "n");
    Instance *inst = addInstance(m_top, "i", nullptr);
    NetBus *netBus = new NetBus("b", 1, 0);
    PortBus *portBus = new PortBus("b", 1, 0, DIR_IN);
    EXPECT_EQ(m_top->Add(netBus), 1u);
    EXPECT_EQ(m_top->Add(portBus), 1u);
    EXPECT_EQ(other->Add(port) + other->Add(net) + other->Add(inst) + other->Add(netBus) + other->Add(portBus), 0u);
    EXPECT_EQ(m_top->Add(net), 0u);
    EXPECT_EQ(other->Add(static_cast<Net *>(nullptr)), 0u);
    EXPECT_EQ(other->GetNets()->Size(), 0u);
    EXPECT_EQ(net->Owner(), m_top);
}

TEST_F(NetlistTest, IteratesInOrderOfAdditionAcrossDeletions)
{
    std::vector<Net *> nets;
    for (int i = 0; i < 500; ++i) {
        nets.push_back(addNet(m_top, std::to_string(i).c_str()));
    }
    for (int i = 0; i < 500; ++i) {
        if (i % 5 != 0) {
            delete nets[static_cast<std::size_t>(i)];
        }
    }
    addNet(m_top, "last"); // closes the gaps
    std::string names;
    MapIter iter;
    Net *net = nullptr;
    FOREACH_NET_OF_NETLIST (m_top, iter, net) {
        names += std::string(net->Name()) + " ";
    }
    std::string expected;
    for (int i = 0; i < 500; i += 5) {
        expected += std::to_string(i) + " ";
    }
    EXPECT_EQ(names, expected + "last ");
    delete m_top->GetNet("250");
    EXPECT_EQ(m_top->GetNet("250"), nullptr);
    EXPECT_EQ(m_top->GetNet("255"), nets[255]);
}

TEST_F(NetlistTest, LetsTheVisitedObjectBeDeleted)
{
    for (int i = 0; i < 100; ++i) {
        addInstance(m_top, nullptr, nullptr);
    }
    MapIter iter;
    Instance *inst = nullptr;
    unsigned met = 0;
    FOREACH_INSTANCE_OF_NETLIST (m_top, iter, inst) {
        delete inst;
        ++met;
    }
    EXPECT_EQ(met, 100u);
    EXPECT_EQ(m_top->GetInsts()->Size(), 0u);
}

TEST_F(NetlistTest, ObjectsDeletedFromTheFrontCostNoMoreThanOthers)
{
    for (int i = 0; i < 200000; ++i) {
        addNet(m_top, nullptr);
    }
    while (m_top->GetNets()->Size() > 0) {
        MapIter iter;
        void *net = nullptr;
        iter.First(m_top->GetNets());
        iter.Next(nullptr, &net);
        delete static_cast<Net *>(net);
    }
    EXPECT_EQ(m_top->GetNets()->slots(), 0u);
}

TEST_F(NetlistTest, FlagsAreIndependent)
{
    Port *port = addPort(m_top, "p", DIR_IN);
    EXPECT_FALSE(m_top->IsBlackBox() || m_top->IsRegister() || m_top->IsOperator() || m_top->IsPrimitive());
    EXPECT_EQ(m_top->Type(), 0u);
    m_top->MakeBlackBox();
    EXPECT_TRUE(m_top->IsBlackBox());
    EXPECT_FALSE(m_top->IsRegister() || m_top->IsOperator() || m_top->IsPrimitive());
    m_top->MakeRegister(port);
    EXPECT_TRUE(m_top->IsRegister());
    EXPECT_EQ(m_top->GetClock(), port);
    EXPECT_EQ(m_top->GetInput(), nullptr);
    EXPECT_FALSE(m_top->IsOperator());
    m_top->MakeOperator();
    EXPECT_TRUE(m_top->IsOperator());
    EXPECT_FALSE(m_top->IsPrimitive());
    m_top->MakePrimitive(PRIM_BUF, port);
    EXPECT_TRUE(m_top->IsPrimitive());
    EXPECT_EQ(m_top->Type(), 5u);
    EXPECT_EQ(m_top->GetInput(), port);
}

TEST_F(NetlistTest, ARegisterMayHaveNoClock)
{
    m_top->MakeRegister(nullptr);
    EXPECT_TRUE(m_top->IsRegister());
    EXPECT_EQ(m_top->GetClock(), nullptr);
    m_top->MakeRegister(addPort(makeNetlist("work", "other"), "c", DIR_IN));
    EXPECT_EQ(m_top->GetClock(), nullptr);
}

TEST_F(NetlistTest, ABlackBoxKeepsItsContents)
{
    addNet(m_top, "n");
    addInstance(m_top, "i", nullptr);
    m_top->MakeBlackBox();
    EXPECT_NE(m_top->GetNet("n"), nullptr);
    EXPECT_NE(m_top->GetInst("i"), nullptr);
}

} // namespace
