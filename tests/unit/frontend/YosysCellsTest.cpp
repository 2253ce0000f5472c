// Cells: what their types become, and how they are connected.

#include "ReaderTest.h"

namespace yosystest {
namespace {

class YosysCells : public ReaderTest {
  protected:
    /// The netlist of a cell of type @p type with these parameters, connected bit by bit.
    static std::string kindOf(const std::string &type, const std::string &parameters, const std::string &directions,
                              const std::string &connections)
    {
        Verific::Libset::Reset();
        const Verific::Netlist *top =
            readModules(R"("top": {"cells": {"u": {"type": ")" + type + R"(", "parameters": {)" + parameters +
                        R"(}, "port_directions": {)" + directions + R"(}, "connections": {)" + connections + "}}}}");
        const std::string text = print(top->GetInst("u")->View());
        return text.substr(0, text.find('\n'));
    }
    static std::string flipFlop(const std::string &type)
    {
        return kindOf(type, "", R"("D": "input", "CLK": "input", "C": "input", "E": "input", "Q": "output")",
                      R"("D": [2], "CLK": [3], "C": [4], "E": [5], "Q": [6])");
    }
};

TEST_F(YosysCells, OfWordLevelTypesBecomeOneOperatorNetlistPerSetOfParameters)
{
    const Verific::Netlist *top = readModules(R"("top": {"cells": {
        "a": {"type": "$add", "parameters": {"A_WIDTH": 1, "Y_WIDTH": 2},
              "port_directions": {"A": "input", "B": "input", "Y": "output"},
              "connections": {"A": [2], "B": [3], "Y": [4, 5]}},
        "b": {"type": "$add", "parameters": { "A_WIDTH": 1, "Y_WIDTH": 2 },
              "port_directions": {"A": "input", "B": "input", "Y": "output"},
              "connections": {"A": [4], "B": [5], "Y": [6, 7]}},
        "c": {"type": "$add", "parameters": {"Y_WIDTH": 2, "A_WIDTH": 1},
              "port_directions": {"A": "input", "B": "input", "Y": "output"},
              "connections": {"A": [6], "B": [7], "Y": [8, 9]}},
        "d": {"type": "$add", "parameters": {"A_WIDTH": 1, "Y_WIDTH": 1},
              "port_directions": {"A": "input", "B": "input", "Y": "output"},
              "connections": {"A": [8], "B": [9], "Y": [10]}}}})");
    EXPECT_EQ(linesOf(top, "a"), "a: Operators/$add (A=$bit$2, B=$bit$3, Y[0]=$bit$4, Y[1]=$bit$5) #A_WIDTH=1 "
                                 "#Y_WIDTH=2\n");
    EXPECT_EQ(linesOf(top, "b"), "b: Operators/$add (A=$bit$4, B=$bit$5, Y[0]=$bit$6, Y[1]=$bit$7) #A_WIDTH=1 "
                                 "#Y_WIDTH=2\n");
    EXPECT_EQ(linesOf(top, "c"), "c: Operators/$add (A=$bit$6, B=$bit$7, Y[0]=$bit$8, Y[1]=$bit$9) #Y_WIDTH=2 "
                                 "#A_WIDTH=1\n");
    EXPECT_EQ(linesOf(top, "d"), "d: Operators/$add:netlist_2 (A=$bit$8, B=$bit$9, Y=$bit$10) #A_WIDTH=1 #Y_WIDTH=1\n");
    EXPECT_EQ(print(netlistOf("Operators", "$add")), "Operators/$add operator\n"
                                                     "in A = -\n"
                                                     "in B = -\n"
                                                     "out Y[0] = - in Y\n"
                                                     "out Y[1] = - in Y\n"
                                                     "out bus Y [1:0]\n");
}

TEST_F(YosysCells, OfGateTypesBecomePrimitives)
{
    const std::string directions = R"("A": "input", "B": "input", "Y": "output")";
    const std::string connections = R"("A": [2], "B": [3], "Y": [4])";
    EXPECT_EQ(kindOf("$_AND_", "", directions, connections), "Primitives/$_AND_ primitive=7");
    EXPECT_EQ(kindOf("$_OR_", "", directions, connections), "Primitives/$_OR_ primitive=8");
    EXPECT_EQ(kindOf("$_XOR_", "", directions, connections), "Primitives/$_XOR_ primitive=9");
    EXPECT_EQ(kindOf("$_MUX_", "", directions, connections), "Primitives/$_MUX_ primitive=10");
    EXPECT_EQ(kindOf("$_TBUF_", "", directions, connections), "Primitives/$_TBUF_ primitive=11");
    EXPECT_EQ(kindOf("$_ANDNOT_", "", directions, connections), "Primitives/$_ANDNOT_ primitive=12");
    EXPECT_EQ(kindOf("$_NOT_", "", directions, connections), "Primitives/$_NOT_ primitive=6 input=A");
}

TEST_F(YosysCells, ThatBufferOneBitArePrimitivesOfTypeFive)
{
    const std::string directions = R"("A": "input", "Y": "output")";
    const std::string one = R"("A": [2], "Y": [3])";
    EXPECT_EQ(kindOf("$_BUF_", "", directions, one), "Primitives/$_BUF_ primitive=5 input=A");
    EXPECT_EQ(kindOf("$pos", R"("A_WIDTH": "00000000000000000000000000000001", "Y_WIDTH": 1)", directions, one),
              "Primitives/$pos primitive=5 input=A");
    EXPECT_EQ(kindOf("$buf", R"("WIDTH": "00000000000000000000000000000001")", directions, one),
              "Primitives/$buf primitive=5 input=A");
    EXPECT_EQ(kindOf("$pos", R"("A_WIDTH": 1, "Y_WIDTH": 2)", directions, R"("A": [2], "Y": [3, 4])"),
              "Operators/$pos operator");
    EXPECT_EQ(
        kindOf("$buf", R"("WIDTH": "00000000000000000000000000000010")", directions, R"("A": [2, 3], "Y": [4, 5])"),
        "Operators/$buf operator");
}

TEST_F(YosysCells, ThatAreFlipFlopsAreRegistersWithAClockPort)
{
    for (const char *type : {"$dff", "$dffe", "$dffsr", "$dffsre", "$adff", "$adffe", "$aldff", "$aldffe", "$sdff",
                             "$sdffe", "$sdffce", "$fsm"}) {
        EXPECT_EQ(flipFlop(type), std::string("Operators/") + type + " operator clock=CLK");
    }
    for (const char *type : {"$_DFF_P_", "$_DFF_N_", "$_DFF_PN0_", "$_DFFE_PP_", "$_SDFF_PP0_", "$_SDFFE_PP0P_",
                             "$_SDFFCE_PP0P_", "$_ALDFF_PP_", "$_ALDFFE_PPP_", "$_DFFSR_PPP_", "$_DFFSRE_PPPP_"}) {
        EXPECT_EQ(flipFlop(type), std::string("Primitives/") + type + " primitive=12 clock=C");
    }
}

TEST_F(YosysCells, ThatAreLatchesOrRunOnTheGlobalClockAreNoRegisters)
{
    for (const char *type : {"$dlatch", "$adlatch", "$dlatchsr", "$sr", "$ff"}) {
        EXPECT_EQ(flipFlop(type), std::string("Operators/") + type + " operator");
    }
    for (const char *type : {"$_DLATCH_P_", "$_DLATCH_PN0_", "$_SR_PP_", "$_FF_"}) {
        EXPECT_EQ(flipFlop(type), std::string("Primitives/") + type + " primitive=12");
    }
}

TEST_F(YosysCells, ThatAreMemoryPortsAreRegistersWhenTheyAreClocked)
{
    const std::string directions = R"("CLK": "input", "DATA": "output")";
    const std::string connections = R"("CLK": [2], "DATA": [3, 4])";
    EXPECT_EQ(kindOf("$memrd", R"("CLK_ENABLE": 1)", directions, connections), "Operators/$memrd operator clock=CLK");
    EXPECT_EQ(kindOf("$memrd_v2", R"("CLK_ENABLE": "1")", directions, connections),
              "Operators/$memrd_v2 operator clock=CLK");
    EXPECT_EQ(kindOf("$memrd_v2", R"("CLK_ENABLE": "0")", directions, connections), "Operators/$memrd_v2 operator");
    EXPECT_EQ(kindOf("$memwr_v2", R"("CLK_ENABLE": "1")", R"("CLK": "input", "DATA": "input")", connections),
              "Operators/$memwr_v2 operator clock=CLK");
    EXPECT_EQ(kindOf("$meminit_v2", "", R"("DATA": "input")", R"("DATA": [3])"), "Operators/$meminit_v2 operator");
}

TEST_F(YosysCells, ThatAreWholeMemoriesAreRegistersOnTheClocksThatTheyReadWith)
{
    const std::string directions = R"("RD_CLK": "input", "RD_DATA": "output")";
    const std::string two = R"("RD_CLK": [2, 3], "RD_DATA": [4, 5])";
    const std::string one = R"("RD_CLK": [2], "RD_DATA": [4])";
    EXPECT_EQ(kindOf("$mem_v2", R"("RD_PORTS": 2, "RD_CLK_ENABLE": "11")", directions, two),
              "Operators/$mem_v2 operator clock=RD_CLK[0]");
    EXPECT_EQ(kindOf("$mem_v2", R"("RD_PORTS": 2, "RD_CLK_ENABLE": "01")", directions, two),
              "Operators/$mem_v2 operator clock=RD_CLK[0]");
    EXPECT_EQ(kindOf("$mem_v2", R"("RD_PORTS": 2, "RD_CLK_ENABLE": "00")", directions, two),
              "Operators/$mem_v2 operator");
    EXPECT_EQ(kindOf("$mem", R"("RD_PORTS": "00000000000000000000000000000001", "RD_CLK_ENABLE": 1)", directions, one),
              "Operators/$mem operator clock=RD_CLK");
    EXPECT_EQ(kindOf("$mem_v2", R"("RD_PORTS": 0, "RD_CLK_ENABLE": "0")", directions, R"("RD_CLK": [], "RD_DATA": [])"),
              "Operators/$mem_v2 operator");
}

TEST_F(YosysCells, OfInternalTypesKnowTheirDirectionsWhenTheFileDoesNotTell)
{
    readModules(R"("top": {"cells": {
        "a": {"type": "$alu", "connections": {"A": [2], "X": [3], "Y": [4], "CO": [5], "CI": [6]}},
        "r": {"type": "$memrd", "connections": {"ADDR": [2], "DATA": [7]}},
        "w": {"type": "$memwr", "connections": {"ADDR": [2], "DATA": [7]}},
        "g": {"type": "$_DFF_P_", "connections": {"D": [2], "C": [7], "Q": [8]}}}})");
    EXPECT_EQ(linesOf(netlistOf("Operators", "$alu"), "out"), "out X = -\nout Y = -\nout CO = -\n");
    EXPECT_EQ(linesOf(netlistOf("Operators", "$memrd"), "out"), "out DATA = -\n");
    EXPECT_EQ(linesOf(netlistOf("Operators", "$memwr"), "out"), "");
    EXPECT_EQ(linesOf(netlistOf("Primitives", "$_DFF_P_"), "out"), "out Q = -\n");
}

TEST_F(YosysCells, OfInternalTypesThatNobodyKnowsFollowTheDirectionsOfTheFile)
{
    EXPECT_EQ(kindOf("$future", "", R"("I": "input", "O": "output")", R"("I": [2], "O": [3])"),
              "Operators/$future operator");
    EXPECT_EQ(linesOf(netlistOf("Operators", "$future"), "out"), "out O = -\n");
}

TEST_F(YosysCells, OfUnknownTypesBecomeBlackBoxesFromAllTheirUses)
{
    const Verific::Netlist *top = readModules(R"("top": {"cells": {
        "a": {"type": "ip", "port_directions": {"A": "input", "B": "inout", "C": "output"},
              "connections": {"A": [2, 3], "B": []}},
        "b": {"type": "ip", "port_directions": {"A": "input", "D": "input"},
              "connections": {"D": [4], "A": [5, 6]}},
        "c": {"type": "ip", "connections": {"B": [7, 8]}}}})");
    EXPECT_EQ(print(netlistOf("work", "ip")), "work/ip blackbox\n"
                                              "in A[0] = - in A\n"
                                              "in A[1] = - in A\n"
                                              "in D = -\n"
                                              "inout B[0] = - in B\n"
                                              "inout B[1] = - in B\n"
                                              "out C = -\n"
                                              "in bus A [1:0]\n"
                                              "inout bus B [1:0]\n");
    EXPECT_EQ(linesOf(top, "b"), "b: work/ip (A[0]=$bit$5, A[1]=$bit$6, D=$bit$4)\n");
}

TEST_F(YosysCells, OfModulesThatAreMissingAreBlackBoxesEvenWhenDerived)
{
    readModules(R"("top": {"cells": {"u": {"type": "$paramod\\ip\\W=1", "port_directions": {"A": "input"},
                                           "connections": {"A": [2]}}}})");
    EXPECT_EQ(print(netlistOf("work", "$paramod\\ip\\W=1")), "work/$paramod\\ip\\W=1 blackbox\nin A = -\n");
}

TEST_F(YosysCells, ConnectInTheOrderOfThePortsWhateverTheOrderInTheFile)
{
    const std::string sub = R"("sub": {"ports": {"a": {"direction": "input", "bits": [2]},
                                                 "b": {"direction": "input", "bits": [3, 4]},
                                                 "c": {"direction": "output", "bits": [5]}}})";
    const Verific::Netlist *top = readModules(sub + R"(, "top": {"cells": {
        "u1": {"type": "sub", "connections": {"c": [10], "b": [11, 12], "a": [13]}},
        "u2": {"type": "sub", "connections": {"a": [13], "c": [14]}},
        "u3": {"connections": {"b": [10, 10], "c": [], "a": [13]}, "type": "sub"}}})");
    EXPECT_EQ(linesOf(top, "u"), "u1: work/sub (a=$bit$13, b[0]=$bit$11, b[1]=$bit$12, c=$bit$10)\n"
                                 "u2: work/sub (a=$bit$13, c=$bit$14)\n"
                                 "u3: work/sub (a=$bit$13, b[0]=$bit$10, b[1]=$bit$10)\n");
}

TEST_F(YosysCells, ReadTheSameWhateverTheOrderOfTheirParts)
{
    const std::string sub = R"("sub": {"ports": {"a": {"direction": "input", "bits": [2]}}}, )";
    const std::string parts[] = {R"("type": "sub")",
                                 R"("parameters": {"P": "1"})",
                                 R"("attributes": {"K": "v", "src": "t.v:8.1-8.2"})",
                                 R"("connections": {"a": [9]})",
                                 R"("port_directions": {"a": "input"})",
                                 R"("hide_name": 0)"};
    for (std::size_t first = 0; first < std::size(parts); ++first) {
        Verific::Libset::Reset();
        std::string cell;
        for (std::size_t at = 0; at < std::size(parts); ++at) {
            cell += (at == 0 ? "" : ", ") + parts[(first + at) % std::size(parts)];
        }
        const Verific::Netlist *top =
            readModules(sub + R"("top": {"cells": {"u": {)" + cell + R"(}, "v": {"type": "sub"}}})");
        EXPECT_EQ(print(top), "work/top\n"
                              "net $bit$9\n"
                              "u: work/sub (a=$bit$9) #P=1 at t.v:8 {K=v}\n"
                              "v: work/sub ()\n")
            << cell;
    }
}

TEST_F(YosysCells, KeepTheirNamesOrderAndPositions)
{
    const Verific::Netlist *top = readModules(R"("sub": {}, "top": {"cells": {
        "u_core/u_1": {"hide_name": 0, "type": "sub", "attributes": {"src": "a.v:4.1-4.9"}},
        "$auto$1": {"hide_name": 1, "type": "sub", "attributes": {"src": "a.v:5.1-5.9"}},
        "hidden": {"type": "sub", "attributes": {"src": "a.v:6.1-6.9"}, "hide_name": 1},
        "\\$x": {"type": "sub", "attributes": {"protected": "1", "src": "a.v:7.1-7.9"}}}})");
    EXPECT_EQ(print(top), "work/top\n"
                          "u_core/u_1: work/sub () at a.v:4\n"
                          "$auto$1: work/sub ()\n"
                          "hidden: work/sub ()\n"
                          "\\$x: work/sub () at a.v:7 protected\n");
}

TEST_F(YosysCells, OnConstantsShareOneDriverPerConstantAndModule)
{
    const Verific::Netlist *top = readModules(R"("sub": {"ports": {"a": {"direction": "input", "bits": [2, 3, 4, 5]}}},
        "top": {"cells": {"u": {"type": "sub", "connections": {"a": ["0", "1", "x", "z"]}},
                          "v": {"type": "sub", "connections": {"a": ["0", "0", "1", "z"]}}}})");
    EXPECT_EQ(print(top), "work/top\n"
                          "net $const$0\n"
                          "net $const$1\n"
                          "net $const$x\n"
                          "net $const$z\n"
                          "u: work/sub (a[0]=$const$0, a[1]=$const$1, a[2]=$const$x, a[3]=$const$z)\n"
                          "v: work/sub (a[0]=$const$0, a[1]=$const$0, a[2]=$const$1, a[3]=$const$z)\n"
                          "$const$0: Constants/$gnd (Y=$const$0)\n"
                          "$const$1: Constants/$pwr (Y=$const$1)\n"
                          "$const$x: Constants/$x (Y=$const$x)\n"
                          "$const$z: Constants/$z (Y=$const$z)\n");
    EXPECT_NE(top->GetNet("$const$0")->IsGnd(), 0u);
    EXPECT_NE(top->GetNet("$const$1")->IsPwr(), 0u);
    EXPECT_EQ(print(netlistOf("Constants", "$gnd")), "Constants/$gnd primitive=2\nout Y = -\n");
    EXPECT_EQ(print(netlistOf("Constants", "$pwr")), "Constants/$pwr primitive=1\nout Y = -\n");
    EXPECT_EQ(print(netlistOf("Constants", "$x")), "Constants/$x primitive=3\nout Y = -\n");
    EXPECT_EQ(print(netlistOf("Constants", "$z")), "Constants/$z primitive=4\nout Y = -\n");
}

TEST_F(YosysCells, WhoseOutputIsTiedToAConstantDoNotReplaceItsDriver)
{
    const Verific::Netlist *top = readModules(R"("sub": {"ports": {"y": {"direction": "output", "bits": [2]}}},
        "top": {"cells": {"u": {"type": "sub", "connections": {"y": ["1"]}}}})");
    const Verific::Net *one = top->GetNet("$const$1");
    EXPECT_STREQ(one->Driver()->Name(), "$const$1");
    EXPECT_NE(one->IsPwr(), 0u);
    EXPECT_NE(one->IsMultipleDriven(), 0u);
    EXPECT_EQ(linesOf(top, "u"), "u: work/sub (y=$const$1)\n");
}

} // namespace
} // namespace yosystest
