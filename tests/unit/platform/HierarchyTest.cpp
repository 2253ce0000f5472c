#include "Designs.h"
#include "tests/support/LibsetGuard.h"

#include <string>

#include <DataBase.h>
#include <gtest/gtest.h>

namespace {

using namespace Verific;
using namespace platformtest;

class HierarchyTest : public testing::Test {
  protected:
    static std::string walk(const Netlist *top, unsigned leaves)
    {
        Set netlists(POINTER_HASH);
        top->Hierarchy(netlists, leaves);
        std::string text;
        SetIter iter;
        Netlist *netlist = nullptr;
        FOREACH_SET_ITEM (&netlists, iter, &netlist) {
            text += std::string(netlist->CellBaseName()) + " ";
        }
        return text;
    }

    testsupport::LibsetGuard m_guard;
    Netlist *m_top = makeNetlist("work", "top");
    Netlist *m_left = makeNetlist("work", "left");
    Netlist *m_right = makeNetlist("work", "right");
    Netlist *m_leaf = makeNetlist("work", "leaf");
};

TEST_F(HierarchyTest, VisitsEachNetlistOnceBreadthFirstInInstanceOrder)
{
    addInstance(m_top, "r", m_right);
    addInstance(m_top, "l", m_left);
    addInstance(m_top, "l2", m_left);
    addInstance(m_left, "x", m_leaf);
    Netlist *deep = makeNetlist("work", "deep");
    addInstance(m_right, "d", deep);
    addInstance(m_right, "x", m_leaf);
    addInstance(m_top, "nothing", nullptr);
    EXPECT_EQ(walk(m_top, 1), "top right left deep leaf ");
    EXPECT_EQ(walk(m_top, 0), "top right left deep leaf ");
    EXPECT_EQ(walk(m_right, 1), "right deep leaf ");
}

TEST_F(HierarchyTest, LeavesOutOperatorsAndPrimitivesOnDemand)
{
    m_leaf->MakePrimitive(PRIM_AND, nullptr);
    m_right->MakeOperator();
    m_left->MakeBlackBox();
    addInstance(m_top, "x", m_leaf);
    addInstance(m_top, "r", m_right);
    addInstance(m_top, "l", m_left);
    EXPECT_EQ(walk(m_top, 1), "top leaf right left ");
    EXPECT_EQ(walk(m_top, 0), "top left ");
    EXPECT_EQ(walk(m_leaf, 0), "leaf ");
}

TEST_F(HierarchyTest, AddsToWhatTheSetHolds)
{
    addInstance(m_top, "l", m_left);
    addInstance(m_left, "x", m_leaf);
    Set netlists(POINTER_HASH);
    netlists.Insert(m_left);
    m_top->Hierarchy(netlists, 1);
    EXPECT_EQ(netlists.Size(), 3u);
    EXPECT_NE(netlists.Get(m_leaf), nullptr);
}

TEST_F(HierarchyTest, EndsOnANetlistThatContainsItself)
{
    addInstance(m_top, "again", m_top);
    addInstance(m_top, "l", m_left);
    addInstance(m_left, "t", m_top);
    EXPECT_EQ(walk(m_top, 1), "top left ");
}

TEST_F(HierarchyTest, GoesDownAHundredThousandLevels)
{
    Netlist *netlist = m_top;
    for (int i = 0; i < 100000; ++i) {
        Netlist *below = new Netlist("v");
        m_top->Owner()->Add(below);
        addInstance(netlist, "i", below);
        netlist = below;
    }
    Set netlists(POINTER_HASH);
    m_top->Hierarchy(netlists, 1);
    EXPECT_EQ(netlists.Size(), 100001u);
}

} // namespace
