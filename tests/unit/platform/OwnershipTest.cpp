#include "Designs.h"
#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistDump.h"

#include <algorithm>
#include <memory>
#include <vector>

#include <DataBase.h>
#include <gtest/gtest.h>

namespace {

using namespace Verific;
using namespace platformtest;

/// Deletions in every order; the sanitizers watch what they leave behind.
class OwnershipTest : public testing::Test {
  protected:
    testsupport::LibsetGuard m_guard;
};

TEST_F(OwnershipTest, DeletingAViewLeavesItsInstancesWithoutViewAndPins)
{
    Netlist *gate = makeGate();
    Netlist *top = makeNetlist("work", "top");
    Net *net = addNet(top, "n");
    Instance *inst = addInstance(top, "u", gate);
    inst->Connect(gate->GetPort("a"), net);
    inst->Connect(gate->GetPort("y"), net);
    inst->AddParam("P", "1");
    delete gate;
    EXPECT_EQ(inst->View(), nullptr);
    EXPECT_EQ(inst->NumOfPortRefs(), 0u);
    EXPECT_EQ(pinsOf(inst), "");
    EXPECT_EQ(loadsOf(net), "");
    EXPECT_EQ(net->Driver(), nullptr);
    EXPECT_FALSE(net->IsMultipleDriven());
    EXPECT_EQ(top->GetInst("u"), inst);
    EXPECT_NE(inst->GetParameters(), nullptr);
    delete inst;
    EXPECT_EQ(top->GetInsts()->Size(), 0u);
}

TEST_F(OwnershipTest, DeletingANetlistTakesItsInstancesOutOfTheReferences)
{
    Netlist *gate = makeGate();
    Netlist *first = makeNetlist("work", "first");
    Netlist *second = makeNetlist("work", "second");
    for (int i = 0; i < 3; ++i) {
        addInstance(first, "f", gate)->Connect(gate->GetPort("a"), addNet(first, "n"));
        addInstance(second, "s", gate);
    }
    delete first;
    EXPECT_EQ(referencesOf(gate), "s s s");
    EXPECT_EQ(gate->NumOfRefs(), 3u);
    EXPECT_EQ(Libset::Global()->GetLibrary("work")->GetCell("first")->NumOfNetlists(), 0u);
}

TEST_F(OwnershipTest, ANetlistMayInstantiateItself)
{
    Netlist *self = makeGate("self");
    Net *net = addNet(self, "n");
    Instance *inst = addInstance(self, "again", self);
    inst->Connect(self->GetPort("a"), net);
    inst->Connect(self->GetPort("y"), net);
    self->GetPort("a")->Connect(net);
    EXPECT_EQ(net->Driver(), inst);
    const std::unique_ptr<Netlist> copy(self->Copy(nullptr));
    EXPECT_EQ(self->NumOfRefs(), 2u);
    delete self;
    EXPECT_EQ(copy->GetInst("again")->View(), nullptr);
    EXPECT_EQ(loadsOf(copy->GetNet("n")), "");
}

TEST_F(OwnershipTest, NetlistsMayInstantiateEachOther)
{
    for (const bool firstGoesFirst : {true, false}) {
        Netlist *first = makeGate("first");
        Netlist *second = makeGate("second");
        addInstance(first, "s", second)->Connect(second->GetPort("y"), addNet(first, "n"));
        addInstance(second, "f", first)->Connect(first->GetPort("y"), addNet(second, "n"));
        delete (firstGoesFirst ? first : second);
        Netlist *left = firstGoesFirst ? second : first;
        MapIter iter;
        Instance *inst = nullptr;
        FOREACH_INSTANCE_OF_NETLIST (left, iter, inst) {
            EXPECT_EQ(inst->View(), nullptr);
        }
        EXPECT_EQ(left->NumOfRefs(), 0u);
        delete left;
    }
}

TEST_F(OwnershipTest, ResetDeletesLibrariesThatReferToEachOtherInBothDirections)
{
    makeEverything();
    Netlist *gate = makeNetlist("cells", "gate");
    Netlist *late = makeNetlist("late", "late");
    addInstance(gate, "up", late);
    addInstance(late, "down", makeNetlist("cells", "ff"));
    Libset::Reset();
    EXPECT_EQ(Libset::Global()->GetLibraries()->Size(), 0u);
}

TEST_F(OwnershipTest, AnUnownedInstanceLeavesTheReferences)
{
    Netlist *gate = makeGate();
    auto inst = std::make_unique<Instance>("u", gate);
    delete gate;
    EXPECT_EQ(inst->View(), nullptr);
}

TEST_F(OwnershipTest, LibrariesAndCellsGoWithTheirNetlists)
{
    makeEverything();
    Library *cells = Libset::Global()->GetLibrary("cells");
    Netlist *top = Libset::Global()->GetLibrary("work")->GetCell("top")->GetFirstNetlist();
    delete cells->GetCell("ff");
    EXPECT_EQ(top->GetInst("r1")->View(), nullptr);
    EXPECT_NE(top->GetInst("u1")->View(), nullptr);
    delete cells;
    EXPECT_EQ(top->GetInst("u1")->View(), nullptr);
    EXPECT_EQ(Libset::Global()->GetLibrary("cells"), nullptr);
    EXPECT_EQ(loadsOf(top->GetNet("n2")), "m1.in[3]");
    delete top->Owner();
    EXPECT_EQ(Libset::Global()->GetLibrary("work")->GetCell("top"), nullptr);
}

/// Deletes the objects of the design one kind after the other, in every order of the kinds.
TEST_F(OwnershipTest, ObjectsMayGoInAnyOrder)
{
    std::vector<int> kinds = {0, 1, 2, 3, 4};
    do {
        Netlist *top = makeEverything();
        for (const int kind : kinds) {
            MapIter iter;
            DesignObj *object = nullptr;
            Map *const tables[] = {top->GetPorts(), top->GetPortBuses(), top->GetNets(), top->GetNetBuses(),
                                   top->GetInsts()};
            FOREACH_MAP_ITEM (tables[kind], iter, nullptr, &object) {
                // The tables hold the derived types, whose addresses are those of their base.
                delete object;
                ASSERT_NE(testsupport::dumpNetlist(top), "");
            }
            ASSERT_EQ(tables[kind]->Size(), 0u);
        }
        Libset::Reset();
    } while (std::next_permutation(kinds.begin(), kinds.end()));
}

TEST_F(OwnershipTest, ADeepHierarchyIsDeletedWithoutRecursion)
{
    Netlist *netlist = makeNetlist("work", "top");
    for (int i = 0; i < 100000; ++i) {
        Netlist *below = makeNetlist("work", "level", nullptr);
        addInstance(netlist, "i", below);
        netlist = below;
    }
    Libset::Reset();
    EXPECT_EQ(Libset::Global()->GetLibraries()->Size(), 0u);
}

} // namespace
