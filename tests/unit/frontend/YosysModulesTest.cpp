// Modules, black boxes, their order in the file, and which of them is the top.

#include "ReaderTest.h"

namespace yosystest {
namespace {

using kvr::netlistdb::yosys::ReadOptions;

class YosysModules : public ReaderTest {};

TEST_F(YosysModules, BecomeACellAndANetlistInLibraryWork)
{
    const Verific::Netlist *top = readModules(R"("top": {"attributes": {"src": "top.v:3.1-9.10"}})");
    EXPECT_EQ(print(top), "work/top at top.v:3\n");
    EXPECT_STREQ(top->Name(), "netlist");
    EXPECT_EQ(top->Owner()->GetNetlist("netlist"), top);
}

TEST_F(YosysModules, MayBeUsedBeforeTheyAreDefined)
{
    const Verific::Netlist *top = readModules(R"(
        "top": {"cells": {"u": {"type": "leaf", "connections": {"a": [2]}},
                          "b": {"type": "box", "connections": {"a": [2]}}}},
        "leaf": {"ports": {"a": {"direction": "input", "bits": [2]}}},
        "box": {"attributes": {"blackbox": "00000000000000000000000000000001"},
                "ports": {"a": {"direction": "inout", "bits": [2]}}})");
    EXPECT_EQ(print(top), "work/top\n"
                          "net $bit$2\n"
                          "u: work/leaf (a=$bit$2)\n"
                          "b: work/box (a=$bit$2)\n");
    EXPECT_EQ(netlistOf("work", "leaf")->NumOfRefs(), 1u);
}

TEST_F(YosysModules, MarkedBlackboxOrWhiteboxAreBlackBoxesAndKeepTheAttribute)
{
    readModules(R"("top": {}, "black": {"attributes": {"blackbox": 1}}, "white": {"attributes": {"whitebox": "1"}},
                   "neither": {"attributes": {"blackbox": 0}, "cells": {"t": {"type": "top"}}})",
                {"top", {}});
    EXPECT_EQ(print(netlistOf("work", "black")), "work/black blackbox {blackbox=1}\n");
    EXPECT_EQ(print(netlistOf("work", "white")), "work/white blackbox {whitebox=1}\n");
    EXPECT_EQ(netlistOf("work", "neither")->IsBlackBox(), 0u);
}

TEST_F(YosysModules, DerivedWithParametersStandInTheUsersSourceAndOtherGeneratedOnesNowhere)
{
    readModules(R"("$paramod\\fifo\\W=8": {"attributes": {"src": "fifo.v:1.1-2.2"}},
                   "$abc": {"attributes": {"src": "abc.v:1.1-2.2"}}, "top": {"attributes": {"top": 1}})");
    EXPECT_EQ(print(netlistOf("work", "$paramod\\fifo\\W=8")),
              "work/$paramod\\fifo\\W=8 at fifo.v:1 {netlistdb.module=fifo(W=8)}\n");
    EXPECT_EQ(print(netlistOf("work", "$abc")), "work/$abc\n");
}

TEST_F(YosysModules, OfDerivedNamesAreInstantiatedByThoseNames)
{
    const Verific::Netlist *top = readModules(R"(
        "$paramod\\fifo\\W=8": {"ports": {"\\a b": {"direction": "input", "bits": [2]}}},
        "top": {"cells": {"u": {"type": "$paramod\\fifo\\W=8", "connections": {"\\a b": [5]}},
                          "v": {"type": "$paramod\u005Cfifo\\W=8", "connections": {"\u005Ca b": [6]}}}})");
    EXPECT_EQ(linesOf(top, "u"), "u: work/$paramod\\fifo\\W=8 (\\a b=$bit$5)\n");
    EXPECT_EQ(linesOf(top, "v"), "v: work/$paramod\\fifo\\W=8 (\\a b=$bit$6)\n");
}

TEST_F(YosysModules, TopIsTheOneThatTheCallerNames)
{
    const std::string modules = R"("a": {"attributes": {"top": 1}}, "b": {})";
    EXPECT_EQ(print(readModules(modules, {"b", {}})), "work/b\n");
}

TEST_F(YosysModules, TopIsTheMarkedOneWhenTheCallerNamesNone)
{
    const Verific::Netlist *top = readModules(
        R"("a": {}, "b": {"attributes": {"top": "00000000000000000000000000000001"}}, "c": {"attributes": {"top": 0}})");
    EXPECT_EQ(print(top), "work/b {top=00000000000000000000000000000001}\n");
}

TEST_F(YosysModules, TopIsTheOnlyOneThatNoOtherInstantiatesWhenNoneIsMarked)
{
    const Verific::Netlist *top = readModules(R"("box": {"attributes": {"blackbox": 1}}, "sub": {},
        "main": {"cells": {"u": {"type": "sub", "connections": {}}}})");
    EXPECT_STREQ(top->CellBaseName(), "main");
}

TEST_F(YosysModules, WithoutAClearTopAreRefused)
{
    EXPECT_EQ(errorOfModules(R"("a": {}, "b": {})"),
              "design.json: no module is marked as top, and several are instantiated by no other: 'a', 'b'");
    EXPECT_EQ(errorOfModules(R"("a": {"attributes": {"blackbox": 1}})"),
              "design.json: no module is marked as top, and none with a body is instantiated by no other");
    EXPECT_EQ(errorOfModules(""),
              "design.json: no module is marked as top, and none with a body is instantiated by no other");
    EXPECT_EQ(errorOfModules(R"("a": {"attributes": {"top": 1}}, "b": {"attributes": {"top": 1}})"),
              "design.json: several modules are marked as top: 'a', 'b'");
}

TEST_F(YosysModules, ThatTheCallerNamesButTheFileDoesNotHoldAreRefused)
{
    try {
        readModules(R"("a": {})", {"main", {}});
        FAIL();
    } catch (const kvr::netlistdb::yosys::ReadError &error) {
        EXPECT_STREQ(error.what(), "design.json: no module 'main', which was asked for as the top");
    }
}

TEST_F(YosysModules, ListOfCandidatesForTheTopIsShort)
{
    std::string modules;
    for (int i = 0; i < 13; ++i) {
        modules += (i == 0 ? "" : ",") + ("\"m" + std::to_string(i)) + "\": {}";
    }
    EXPECT_EQ(errorOfModules(modules),
              "design.json: no module is marked as top, and several are instantiated by no other: 'm0', 'm1', 'm2', "
              "'m3', 'm4', 'm5', 'm6', 'm7', 'm8', 'm9' and 3 more");
}

TEST_F(YosysModules, ThatContainThemselvesAreRefused)
{
    EXPECT_EQ(errorOfModules(R"("a": {"cells": {"u": {"type": "a"}}})"), "design.json: module 'a' contains itself");
    EXPECT_EQ(errorOfModules(R"("top": {"cells": {"u": {"type": "a"}}}, "a": {"cells": {"u": {"type": "b"}}},
                                "b": {"cells": {"u": {"type": "c"}, "v": {"type": "a"}}}, "c": {})"),
              "design.json: module 'a' contains itself through 'b'");
}

TEST_F(YosysModules, MayNestTwentyThousandDeep)
{
    constexpr int depth = 20000;
    std::string modules = "\"m0\": {}";
    for (int i = 1; i < depth; ++i) {
        modules += ", \"m" + std::to_string(i) + R"(": {"cells": {"u": {"type": "m)" + std::to_string(i - 1) + "\"}}}";
    }
    EXPECT_STREQ(readModules(modules)->CellBaseName(), "m19999");
}

TEST_F(YosysModules, UsedSharedlyAreNotTakenForRecursion)
{
    const Verific::Netlist *top = readModules(R"("leaf": {}, "l": {"cells": {"u": {"type": "leaf"}}},
        "r": {"cells": {"u": {"type": "leaf"}, "v": {"type": "l"}}},
        "top": {"cells": {"u": {"type": "l"}, "v": {"type": "r"}, "w": {"type": "leaf"}}})");
    EXPECT_STREQ(top->CellBaseName(), "top");
    EXPECT_EQ(netlistOf("work", "leaf")->NumOfRefs(), 3u);
}

TEST_F(YosysModules, OfASecondFileBecomeNewViewsOfTheSameCells)
{
    const std::string modules = R"(
        "sub": {"ports": {"a": {"direction": "input", "bits": [2]}}},
        "top": {"cells": {"u": {"type": "sub", "connections": {"a": ["1"]}},
                          "v": {"type": "$not", "port_directions": {"A": "input", "Y": "output"},
                                "connections": {"A": [2], "Y": [3]}},
                          "w": {"type": "ip", "port_directions": {"A": "input"}, "connections": {"A": [3]}}}})";
    const Verific::Netlist *first = readModules(modules);
    const std::string before = print(first);
    const Verific::Netlist *second = readModules(modules);
    EXPECT_EQ(print(first), before);
    EXPECT_EQ(first->Owner(), second->Owner());
    EXPECT_EQ(print(second), "work/top:netlist_2\n"
                             "net $const$1\n"
                             "net $bit$2\n"
                             "net $bit$3\n"
                             "u: work/sub:netlist_2 (a=$const$1)\n"
                             "v: Operators/$not:netlist_2 (A=$bit$2, Y=$bit$3)\n"
                             "w: work/ip:netlist_2 (A=$bit$3)\n"
                             "$const$1: Constants/$pwr:netlist_2 (Y=$const$1)\n");
    readModules(modules);
    EXPECT_EQ(first->Owner()->NumOfNetlists(), 3u);
    EXPECT_NE(first->Owner()->GetNetlist("netlist_3"), nullptr);
}

TEST_F(YosysModules, TopBelongsToItsCell)
{
    Verific::Netlist *top = readModules(R"("top": {"cells": {"u": {"type": "sub"}}}, "sub": {})");
    delete top;
    EXPECT_EQ(Verific::Libset::Global()->GetLibrary("work")->GetCell("top")->NumOfNetlists(), 0u);
    EXPECT_EQ(netlistOf("work", "sub")->NumOfRefs(), 0u);
}

TEST_F(YosysModules, KeepTheirOrder)
{
    readModules(R"("z": {}, "a": {"cells": {"1": {"type": "z"}}}, "m": {"cells": {"1": {"type": "a"}}})");
    std::string order;
    Verific::MapIter iter;
    Verific::Cell *cell = nullptr;
    FOREACH_CELL_OF_LIBRARY (Verific::Libset::Global()->GetLibrary("work"), iter, cell) {
        order += cell->Name();
    }
    EXPECT_EQ(order, "zam");
}

} // namespace
} // namespace yosystest
