#include "tests/support/NetlistText.h"

#include "tests/support/LibsetGuard.h"
#include "tests/support/Throws.h"

#include <DataBase.h>
#include <LineFile.h>

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using namespace testsupport;

std::string errorOf(std::string_view text)
{
    LibsetGuard guard;
    return messageOf<std::invalid_argument>([&] { netlistFromText(text); });
}

TEST(NetlistText, BuildsTheExampleOfItsHeader)
{
    LibsetGuard guard;
    const Verific::Netlist *top = netlistFromText(R"(
        module leaf(in clk, d, out q) at leaf.v:1
            r: DFF(clk=clk, d=d, q=q)
        end
        register DFF(in clk, d, out q) clock=clk end
        module top(in clk, in [3:0] d, out q) at top.v:1
            net n at top.v:3
            bus [1:0] pair protected   // two nets
            u1: leaf(clk=clk, d=d[2], q=n) #WIDTH=4
            u2: KVR_FF(C=clk, D=n, Q=q)
        end)");
    EXPECT_STREQ(top->CellBaseName(), "top");
    EXPECT_EQ(Verific::LineFile::GetLineNo(top->Linefile()), 1u);
    EXPECT_EQ(top->GetPorts()->Size(), 6u);
    EXPECT_EQ(top->GetPortBus("d")->ElementAtIndex(3), portOf(top, "d[3]"));
    EXPECT_EQ(portOf(top, "d[3]")->GetNet(), netOf(top, "d[3]"));
    EXPECT_EQ(netBusOf(top, "d")->ElementAtIndex(2), netOf(top, "d[2]"));
    EXPECT_EQ(netOf(top, "pair[1]")->Bus(), netBusOf(top, "pair"));
    EXPECT_TRUE(netOf(top, "pair[0]")->IsProtected());
    const Verific::Instance *u1 = instanceOf(top, "u1");
    EXPECT_EQ(u1->View(), netlistOfCell("leaf"));
    EXPECT_EQ(u1->GetParameters()->Size(), 1u);
    EXPECT_EQ(u1->GetNet(portOf(u1->View(), "d")), netOf(top, "d[2]"));
    const Verific::Instance *u2 = instanceOf(top, "u2");
    EXPECT_STREQ(u2->GetAttValue("KVR_ATTRIBUTE_CELL_NAME"), "KVR_FF");
    EXPECT_STREQ(portOf(u2->View(), "C")->GetAttValue("KVR_ATTRIBUTE_PORT__IS_CLOCK"), "TRUE");
    EXPECT_TRUE(u2->View()->IsBlackBox());
    EXPECT_EQ(netOf(top, "n")->Driver(), u1);
    const Verific::Netlist *flipFlop = netlistOfCell("DFF");
    EXPECT_EQ(flipFlop->GetClock(), portOf(flipFlop, "clk"));
    EXPECT_STREQ(flipFlop->Owner()->Owner()->Name(), "Primitives");
}

TEST(NetlistText, ConnectsBusesBitByBitFromLeftToRight)
{
    LibsetGuard guard;
    const Verific::Netlist *top = netlistFromText(R"(
        blackbox B(in [3:0] a, [0:1] b) end
        module top()
            bus [0:3] x
            u: B(a=x, b={p, -})
        end)");
    const Verific::Instance *u = instanceOf(top, "u");
    EXPECT_EQ(u->GetNet(portOf(u->View(), "a[3]")), netOf(top, "x[0]"));
    EXPECT_EQ(u->GetNet(portOf(u->View(), "a[0]")), netOf(top, "x[3]"));
    EXPECT_EQ(u->GetNet(portOf(u->View(), "b[0]")), netOf(top, "p"));
    EXPECT_EQ(u->GetNet(portOf(u->View(), "b[1]")), nullptr);
}

TEST(NetlistText, KnowsKindsLooseTopsNullNamesAndMissingViews)
{
    LibsetGuard guard;
    const Verific::Netlist *top = netlistFromText(R"(
        operator ADD(in A, B, out O) end
        primitive BUF(in I, out O) type=5 input=I end
        module top(in ! , out q) loose protected
            "odd name": ?
            !: ADD(O=q) @KEY @OTHER="a value"
            connect q = other
            ram memory 64
        end)");
    EXPECT_EQ(top->Owner(), nullptr);
    EXPECT_TRUE(top->IsProtected());
    EXPECT_EQ(instanceOf(top, "odd name")->View(), nullptr);
    EXPECT_TRUE(netlistOfCell("ADD")->IsOperator());
    EXPECT_EQ(netlistOfCell("BUF")->Type(), 5u);
    EXPECT_EQ(netlistOfCell("BUF")->GetInput(), portOf(netlistOfCell("BUF"), "I"));
    const Verific::Instance *nameless = netOf(top, "q")->Driver();
    ASSERT_NE(nameless, nullptr);
    EXPECT_EQ(nameless->Name(), nullptr);
    EXPECT_NE(nameless->GetAtt("KEY"), nullptr);
    EXPECT_EQ(nameless->GetAttValue("KEY"), nullptr);
    EXPECT_STREQ(nameless->GetAttValue("OTHER"), "a value");
    EXPECT_EQ(portOf(top, "q")->GetNet(), netOf(top, "other"));
    EXPECT_EQ(netOf(top, "memory")->Size(), 64u);
    delete top;
}

TEST(NetlistText, RefusesWhatIsWrongAndSaysWhere)
{
    EXPECT_EQ(errorOf("modul top() end"), "netlist text, line 1: expected a kind of unit, found \"modul\"");
    EXPECT_EQ(errorOf("module top()\n"), "netlist text, line 2: expected a statement, found the end");
    EXPECT_EQ(errorOf("module top(a) end"), "netlist text, line 1: expected a direction, found \"a\"");
    EXPECT_EQ(errorOf("module top()\n u: none() end"), "netlist text, line 2: no cell \"none\"");
    EXPECT_EQ(errorOf("module a() end module top()\n u: a(x=n) end"),
              "netlist text, line 2: no port \"x\" for this value");
    EXPECT_EQ(errorOf("module a() end module a() end"), "netlist text, line 1: unit \"a\" stands twice");
    EXPECT_EQ(errorOf("module top() net n loose end"), "netlist text, line 1: this trait belongs to a unit");
    EXPECT_EQ(errorOf("module top() net n #A=1 end"), "netlist text, line 1: this trait belongs to an instance");
    EXPECT_EQ(errorOf("module top() bus [1:0] b = {x} end"), "netlist text, line 1: the bus has 2 bits");
    EXPECT_EQ(errorOf("module top() net \"n"), "netlist text, line 1: a quotation mark is never closed");
    EXPECT_EQ(errorOf("module top() bus [a:0] b end"), "netlist text, line 1: expected a number, found \"a\"");
}

} // namespace
