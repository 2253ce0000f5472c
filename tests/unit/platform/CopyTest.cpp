#include "Designs.h"
#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistDump.h"

#include <memory>
#include <string>
#include <vector>

#include <DataBase.h>
#include <gtest/gtest.h>

namespace {

using namespace Verific;
using namespace platformtest;
using testsupport::dumpNetlist;

class CopyTest : public testing::Test {
  protected:
    testsupport::LibsetGuard m_guard;
};

TEST_F(CopyTest, CannotBeToldFromItsOriginal)
{
    const Netlist *top = makeEverything();
    const std::string before = dumpNetlist(top);
    const std::unique_ptr<Netlist> copy(top->Copy(nullptr));
    EXPECT_EQ(dumpNetlist(copy.get()), before);
    EXPECT_EQ(dumpNetlist(top), before);
    const std::unique_ptr<Netlist> again(copy->Copy(nullptr));
    EXPECT_EQ(dumpNetlist(again.get()), before);
}

TEST_F(CopyTest, CopiesFlagsClockAndInput)
{
    Netlist *ff = makeNetlist("cells", "ff");
    addPort(ff, "d", DIR_IN);
    Port *clock = addPort(ff, "c", DIR_IN);
    ff->MakeRegister(clock);
    ff->MakePrimitive(PRIM_OTHER, ff->GetPort("d"));
    ff->MakeOperator();
    ff->MakeBlackBox();
    const std::unique_ptr<Netlist> copy(ff->Copy(nullptr));
    EXPECT_EQ(dumpNetlist(copy.get()), dumpNetlist(ff));
    EXPECT_EQ(copy->GetClock(), copy->GetPort("c"));
    EXPECT_NE(copy->GetClock(), clock);
    EXPECT_EQ(copy->GetInput(), copy->GetPort("d"));
}

TEST_F(CopyTest, IsLooseAndGivesTheViewsNewReferences)
{
    Netlist *gate = makeGate();
    Netlist *top = makeNetlist("work", "top");
    addInstance(top, "u1", gate);
    addInstance(top, "u2", gate);
    std::unique_ptr<Netlist> copy(top->Copy(nullptr));
    EXPECT_EQ(copy->Owner(), nullptr);
    EXPECT_EQ(copy->CellBaseName(), nullptr);
    EXPECT_EQ(copy->GetInst("u1")->View(), gate);
    EXPECT_EQ(referencesOf(gate), "u1 u2 u1 u2");
    copy.reset();
    EXPECT_EQ(referencesOf(gate), "u1 u2");
}

TEST_F(CopyTest, TellsTheCopyOfEveryPortNetAndInstance)
{
    Netlist *top = makeEverything();
    delete top->GetInst("u2"); // freed slots shift nothing
    delete top->GetNet("n1");
    Map copied(POINTER_HASH);
    const std::unique_ptr<Netlist> copy(top->Copy(&copied));
    EXPECT_EQ(copied.Size(), top->GetPorts()->Size() + top->GetNets()->Size() + top->GetInsts()->Size());
    EXPECT_EQ(copied.GetValue(top->GetPort("pad")), copy->GetPort("pad"));
    EXPECT_EQ(copied.GetValue(top->GetNet("n2")), copy->GetNet("n2"));
    EXPECT_EQ(copied.GetValue(top->GetInst("m3")), copy->GetInst("m3"));
    EXPECT_EQ(copied.GetValue(top->GetNetBus("bus")), nullptr);
    MapIter iter;
    Net *net = nullptr;
    Net *copyOfNet = nullptr;
    FOREACH_MAP_ITEM (&copied, iter, &net, &copyOfNet) {
        ASSERT_NE(copyOfNet, nullptr);
    }
}

TEST_F(CopyTest, KeepsTheOrderOfPinsOnNetsWhateverItIs)
{
    Netlist *gate = makeGate();
    Netlist *top = makeNetlist("work", "top");
    Net *net = addNet(top, "n");
    Instance *u1 = addInstance(top, "u1", gate);
    Instance *u2 = addInstance(top, "u2", gate);
    Instance *u3 = addInstance(top, "u3", gate);
    u3->Connect(gate->GetPort("y"), net);
    u1->Connect(gate->GetPort("b"), net);
    u2->Connect(gate->GetPort("y"), net);
    u1->Connect(gate->GetPort("y"), net);
    u3->Connect(gate->GetPort("a"), net);
    u1->Connect(gate->GetPort("a"), net);
    u1->Disconnect(gate->GetPort("b"));
    u1->Connect(gate->GetPort("b"), net);
    ASSERT_EQ(loadsOf(net), "u3.y u2.y u1.y u3.a u1.a u1.b");
    const std::unique_ptr<Netlist> copy(top->Copy(nullptr));
    EXPECT_EQ(loadsOf(copy->GetNet("n")), "u3.y u2.y u1.y u3.a u1.a u1.b");
    EXPECT_EQ(copy->GetNet("n")->Driver(), copy->GetInst("u3"));
    EXPECT_EQ(pinsOf(copy->GetInst("u1")), pinsOf(u1));
}

TEST_F(CopyTest, IsIndependentOfItsOriginal)
{
    Netlist *top = makeEverything();
    const std::string before = dumpNetlist(top);
    std::unique_ptr<Netlist> copy(top->Copy(nullptr));
    delete copy->GetNet("n1");
    delete copy->GetInst("u1");
    copy->GetNet("n2")->SetProtected(0);
    copy->GetInst("u2")->AddParam("INIT", "changed");
    addNet(copy.get(), "new");
    EXPECT_EQ(dumpNetlist(top), before);
    copy.reset();
    EXPECT_EQ(dumpNetlist(top), before);
}

TEST_F(CopyTest, MovesTheContentsOfADisposableNetlist)
{
    Netlist *top = makeEverything();
    const std::string before = dumpNetlist(top);
    Net *const net = static_cast<Net *>(top->GetNets()->valueAt(0));
    const unsigned instances = top->GetInsts()->Size();
    top->SetDisposable(1);
    const std::unique_ptr<Netlist> copy(top->Copy(nullptr));
    EXPECT_EQ(dumpNetlist(copy.get()), before);
    EXPECT_EQ(copy->GetNets()->valueAt(0), net);
    EXPECT_EQ(net->Owner(), copy.get());
    EXPECT_GT(instances, 0u);
    for (Map *table : {top->GetPorts(), top->GetPortBuses(), top->GetNets(), top->GetNetBuses(), top->GetInsts()}) {
        EXPECT_EQ(table->Size(), 0u);
    }
    EXPECT_EQ(top->GetClock(), nullptr);
    delete top;
    EXPECT_EQ(dumpNetlist(copy.get()), before);
}

TEST_F(CopyTest, AMovedNetlistCanBeEditedAsItsOriginalCould)
{
    Netlist *top = makeEverything();
    top->SetDisposable(1);
    const std::unique_ptr<Netlist> copy(top->Copy(nullptr));
    Netlist *gate = makeGate("another_gate");
    Instance *inst = addInstance(copy.get(), "added", gate);
    Net *net = addNet(copy.get(), "added");
    EXPECT_EQ(inst->Connect(gate->GetPort("a"), net), 1u);
    const std::string before = dumpNetlist(copy.get());
    delete static_cast<Instance *>(copy->GetInsts()->valueAt(0));
    delete static_cast<Net *>(copy->GetNets()->valueAt(0));
    EXPECT_NE(dumpNetlist(copy.get()), before);
}

TEST_F(CopyTest, CopiesADisposableNetlistThatInstancesReferTo)
{
    Netlist *gate = makeGate();
    Netlist *top = makeNetlist("work", "top");
    Instance *user = addInstance(top, "u1", gate);
    gate->SetDisposable(1);
    const std::string before = dumpNetlist(gate);
    const std::unique_ptr<Netlist> copy(gate->Copy(nullptr));
    EXPECT_EQ(dumpNetlist(copy.get()), before);
    EXPECT_EQ(dumpNetlist(gate), before);
    EXPECT_EQ(user->View(), gate);
}

TEST_F(CopyTest, CopiesADisposableNetlistForACallerWhoWantsToKnowTheCopies)
{
    Netlist *top = makeEverything();
    top->SetDisposable(1);
    Map copied(POINTER_HASH);
    const std::string before = dumpNetlist(top);
    const std::unique_ptr<Netlist> copy(top->Copy(&copied));
    EXPECT_EQ(dumpNetlist(top), before);
    EXPECT_EQ(copied.Size(), top->GetPorts()->Size() + top->GetNets()->Size() + top->GetInsts()->Size());
}

TEST_F(CopyTest, CopiesAWideInstanceConnectedInAnyOrder)
{
    Netlist *wide = makeNetlist("cells", "wide");
    std::vector<Port *> ports;
    for (int i = 0; i < 5000; ++i) {
        ports.push_back(addPort(wide, std::to_string(i).c_str(), i % 2 == 0 ? DIR_IN : DIR_OUT));
    }
    Netlist *top = makeNetlist("work", "top");
    std::vector<Net *> nets;
    for (int i = 0; i < 50; ++i) {
        nets.push_back(addNet(top, std::to_string(i).c_str()));
    }
    Instance *first = addInstance(top, "first", wide);
    Instance *second = addInstance(top, "second", wide);
    for (std::size_t i = 0; i < 5000; ++i) {
        second->Connect(ports[(i * 1237) % 5000], nets[i % 50]);
        first->Connect(ports[4999 - i], nets[(i * 7) % 50]);
    }
    for (std::size_t i = 0; i < 5000; i += 3) {
        second->Disconnect(ports[i]);
    }
    const std::unique_ptr<Netlist> copy(top->Copy(nullptr));
    EXPECT_EQ(dumpNetlist(copy.get()), dumpNetlist(top));
}

} // namespace
