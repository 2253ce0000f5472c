// Cells of device families: what the reader adds to them, so that their clocks are found.

#include "ReaderTest.h"

#include <fstream>

namespace yosystest {
namespace {

class DeviceCells : public ReaderTest {};

/// A cell of @p type with `"port": [bits]` pairs; ports in @p outputs are outputs, all others inputs.
std::string cell(const std::string &type, const std::string &parameters, const std::string &inputs,
                 const std::string &outputs)
{
    const auto directions = [](const std::string &connections, const char *direction) {
        std::string text;
        for (std::size_t at = connections.find('"'); at != std::string::npos; at = connections.find('"', at)) {
            const std::size_t end = connections.find('"', at + 1);
            if (connections.compare(end, 3, "\": ") == 0) {
                text += (text.empty() ? "" : ", ") + connections.substr(at, end + 1 - at) + ": \"" + direction + "\"";
            }
            at = end + 1;
        }
        return text;
    };
    const std::string ins = directions(inputs, "input");
    const std::string outs = directions(outputs, "output");
    return R"({"type": ")" + type + R"(", "parameters": {)" + parameters + R"(}, "port_directions": {)" + ins +
           (ins.empty() || outs.empty() ? "" : ", ") + outs + R"(}, "connections": {)" + inputs +
           (inputs.empty() || outputs.empty() ? "" : ", ") + outputs + "}}";
}

const Verific::Netlist *readCell(const std::string &text)
{
    return readModules(R"("top": {"cells": {"u": )" + text + "}}");
}

TEST_F(DeviceCells, AFlipFlopIsNamedAndItsClockPortMarked)
{
    const Verific::Netlist *top = readCell(cell("SB_DFFE", "", R"("C": [2], "D": [3], "E": [4])", R"("Q": [5])"));
    EXPECT_EQ(linesOf(top, "u"), "u: Primitives/SB_DFFE (C=$bit$2, D=$bit$3, E=$bit$4, Q=$bit$5) "
                                 "{KVR_ATTRIBUTE_CELL_NAME=KVR_FF}\n");
    const Verific::Netlist *view = netlistOf("Primitives", "SB_DFFE");
    EXPECT_STREQ(view->GetPort("C")->GetAttValue("KVR_ATTRIBUTE_PORT__IS_CLOCK"), "TRUE");
    EXPECT_EQ(view->GetPort("D")->GetAtt("KVR_ATTRIBUTE_PORT__IS_CLOCK"), nullptr);
    EXPECT_EQ(view->GetClock(), view->GetPort("C"));
}

TEST_F(DeviceCells, PinsAreDescribedByWhatTheyAreFor)
{
    readModules(R"("top": {"cells": {"u": )" +
                cell("FDCE", "", R"("C": [2], "D": [3], "CE": [4], "CLR": [5])", R"("Q": [6])") + R"(, "v": )" +
                cell("SB_DFFNESS", "", R"("C": [2], "D": [3], "E": [4], "S": [5])", R"("Q": [7])") + R"(, "w": )" +
                cell("KVR_RAMD16X4", "", R"("W_CLK": [2], "W_EN": [3], "R_ADDR": [4, 5, 6, 8])",
                     R"("R_DATA": [9, 10, 11, 12])") +
                "}}");
    const auto role = [](const char *library, const char *type, const char *port) {
        const char *const value = netlistOf(library, type)->GetPort(port)->GetAttValue("NETLISTDB_PIN_ROLE");
        return std::string(value != nullptr ? value : "none");
    };
    EXPECT_EQ(role("Primitives", "FDCE", "C"), "clock-rise");
    EXPECT_EQ(role("Primitives", "FDCE", "CE"), "enable");
    EXPECT_EQ(role("Primitives", "FDCE", "CLR"), "reset");
    EXPECT_EQ(role("Primitives", "FDCE", "D"), "none");
    EXPECT_STREQ(netlistOf("Primitives", "FDCE")->GetPort("C")->GetAttValue("NETLISTDB_PIN_INVERTED_BY"),
                 "IS_C_INVERTED=1");
    EXPECT_EQ(role("Primitives", "SB_DFFNESS", "C"), "clock-fall");
    EXPECT_EQ(role("Primitives", "SB_DFFNESS", "S"), "set");
    EXPECT_EQ(role("work", "KVR_RAMD16X4", "R_ADDR[3]"), "read");
}

TEST_F(DeviceCells, AttributesOfTheFileStayAsTheyAre)
{
    const Verific::Netlist *top = readModules(R"("top": {"cells": {"u": {"type": "SB_DFF",
        "attributes": {"KVR_ATTRIBUTE_CELL_NAME": "MINE"},
        "port_directions": {"C": "input", "D": "input", "Q": "output"},
        "connections": {"C": [2], "D": [3], "Q": [4]}}}})");
    EXPECT_EQ(linesOf(top, "u"),
              "u: Primitives/SB_DFF (C=$bit$2, D=$bit$3, Q=$bit$4) {KVR_ATTRIBUTE_CELL_NAME=MINE}\n");
}

TEST_F(DeviceCells, AModuleWithABodyIsNoDeviceCell)
{
    const Verific::Netlist *top = readModules(R"(
        "top": {"attributes": {"top": 1}, "cells": {"u": {"type": "SB_DFF", "connections": {"C": [2], "Q": [4]}}}},
        "SB_DFF": {"ports": {"C": {"direction": "input", "bits": [2]}, "Q": {"direction": "output", "bits": [3]}}})");
    EXPECT_EQ(linesOf(top, "u"), "u: work/SB_DFF (C=$bit$2, Q=$bit$4)\n");
}

TEST_F(DeviceCells, ABlackBoxOfTheFileIsADeviceCell)
{
    const Verific::Netlist *top = readModules(R"(
        "top": {"attributes": {"top": 1}, "cells": {"u": {"type": "SB_DFF", "connections": {"C": [2], "Q": [4]}}}},
        "SB_DFF": {"attributes": {"blackbox": 1},
                   "ports": {"C": {"direction": "input", "bits": [2]}, "Q": {"direction": "output", "bits": [3]}}})");
    EXPECT_EQ(linesOf(top, "u"), "u: Primitives/SB_DFF (C=$bit$2, Q=$bit$4) {KVR_ATTRIBUTE_CELL_NAME=KVR_FF}\n");
}

TEST_F(DeviceCells, ANameAloneMakesNoDeviceCellWhenTheClockPinIsMissing)
{
    const Verific::Netlist *top = readCell(cell("DFF", "", R"("clock": [2], "D": [3])", R"("Q": [4])"));
    EXPECT_EQ(linesOf(top, "u"), "u: work/DFF (clock=$bit$2, D=$bit$3, Q=$bit$4)\n");
}

TEST_F(DeviceCells, AMemoryOnTwoClocksIsOneInstanceForEach)
{
    const Verific::Netlist *top =
        readCell(cell("DP16KD", "", R"("ADA0": [6], "CLKA": [2], "CLKB": [3])", R"("DOA0": [4], "DOB0": [5])"));
    EXPECT_EQ(linesOf(top, "u"),
              "u: Primitives/DP16KD (CLKA=$bit$2, ADA0=$bit$6, CLKB=$bit$3, DOA0=$bit$4) "
              "{KVR_ATTRIBUTE_CELL_NAME=KVR_FF}\n"
              "u:CLKB: Primitives/DP16KD:netlist_2 (CLKB=$bit$3, DOB0=$bit$5) {KVR_ATTRIBUTE_CELL_NAME=KVR_FF}\n");
}

TEST_F(DeviceCells, ParametersMayBeWrittenWithEscapes)
{
    const auto clocksOf = [](const char *mode, const char *other) {
        readCell(cell("CC_BRAM_20K", std::string("\"RAM_MODE\": \"") + mode + "\", \"OTHER\": \"" + other + "\"",
                      R"("A_CLK": [2], "B_CLK": [3])", R"("A_DO": [4], "B_DO": [5])"));
        const std::string text = linesOf(netlistOf("work", "top"), "u");
        Verific::Libset::Reset();
        return text.substr(0, text.find('{'));
    };
    EXPECT_EQ(clocksOf("\\u0053DP", "\\u0054DP"), clocksOf("SDP", "TDP"));
    EXPECT_EQ(clocksOf("\\u0054DP", "\\u0053DP"), clocksOf("TDP", "SDP"));
    EXPECT_NE(clocksOf("SDP", "TDP"), clocksOf("TDP", "SDP"));
}

TEST_F(DeviceCells, AMemoryOnOneClockStaysWhole)
{
    const Verific::Netlist *top =
        readCell(cell("DP16KD", "", R"("CLKA": [2], "CLKB": [2])", R"("DOA0": [4], "DOB0": [5])"));
    EXPECT_EQ(linesOf(top, "u"), "u: Primitives/DP16KD (CLKA=$bit$2, CLKB=$bit$2, DOA0=$bit$4, DOB0=$bit$5) "
                                 "{KVR_ATTRIBUTE_CELL_NAME=KVR_FF}\n");
}

TEST_F(DeviceCells, TheClockOfTheOutputsInUseStandsFirst)
{
    const Verific::Netlist *top =
        readCell(cell("SB_RAM40_4K", "", R"("RCLK": [2], "RADDR": [3], "WCLK": [4])", R"("RDATA": [5])"));
    // What clocks only writes has an instance of its own when it clocks nothing else.
    EXPECT_EQ(linesOf(top, "u"),
              "u: Primitives/SB_RAM40_4K (RCLK=$bit$2, RADDR=$bit$3, WCLK=$bit$4, RDATA=$bit$5) "
              "{KVR_ATTRIBUTE_CELL_NAME=KVR_FF}\n"
              "u:WCLK: Primitives/SB_RAM40_4K:netlist_2 (WCLK=$bit$4) {KVR_ATTRIBUTE_CELL_NAME=KVR_FF}\n");
}

TEST_F(DeviceCells, AClockThatOnlyWritesNeedsNoInstanceBesideARegister)
{
    const Verific::Netlist *top = readModules(
        R"("top": {"cells": {"u": )" + cell("SB_RAM40_4K", "", R"("RCLK": [2], "WCLK": [4])", R"("RDATA": [5])") +
        R"(, "v": )" + cell("SB_DFF", "", R"("C": [4], "D": [6])", R"("Q": [7])") + "}}");
    EXPECT_EQ(linesOf(top, "u:"), "u: Primitives/SB_RAM40_4K (RCLK=$bit$2, WCLK=$bit$4, RDATA=$bit$5) "
                                  "{KVR_ATTRIBUTE_CELL_NAME=KVR_FF}\n");
}

TEST_F(DeviceCells, AConstantIsNoClock)
{
    const Verific::Netlist *top = readCell(cell("DP16KD", "", R"("CLKA": [2], "CLKB": ["0"])", R"("DOA0": [4])"));
    const Verific::Instance *u = top->GetInst("u");
    EXPECT_STREQ(u->View()->GetPort("CLKA")->GetAttValue("KVR_ATTRIBUTE_PORT__IS_CLOCK"), "TRUE");
    EXPECT_EQ(u->View()->GetPort("CLKB")->GetAtt("KVR_ATTRIBUTE_PORT__IS_CLOCK"), nullptr);
}

TEST_F(DeviceCells, AMemoryThatReadsAtOnceIsLookedThroughItsReadAddressFirst)
{
    const Verific::Netlist *top =
        readCell(cell("RAM32X1D", "", R"("A0": [2], "D": [3], "DPRA0": [4], "WCLK": [5], "WE": [6])", R"("DPO": [7])"));
    EXPECT_EQ(linesOf(top, "u"),
              "u: Primitives/RAM32X1D (DPRA0=$bit$4, A0=$bit$2, D=$bit$3, WCLK=$bit$5, WE=$bit$6, DPO=$bit$7)\n"
              "u:WCLK: Primitives/RAM32X1D:netlist_2 (WCLK=$bit$5) {KVR_ATTRIBUTE_CELL_NAME=KVR_FF}\n");
}

TEST_F(DeviceCells, ParametersSayWhichOutputsAreRegistered)
{
    const char *inputs = R"("CLK": [2], "I0": [3])";
    EXPECT_EQ(linesOf(readCell(cell("ICESTORM_LC", R"("DFF_ENABLE": "0")", inputs, R"("O": [4])")), "u"),
              "u: Primitives/ICESTORM_LC (CLK=$bit$2, I0=$bit$3, O=$bit$4) #DFF_ENABLE=0\n");
    EXPECT_EQ(linesOf(readCell(cell("ICESTORM_LC", R"("DFF_ENABLE": "1")", inputs, R"("COUT": [5], "O": [4])")), "u"),
              "u: Primitives/ICESTORM_LC:netlist_2 (CLK=$bit$2, I0=$bit$3, O=$bit$4) #DFF_ENABLE=1 "
              "{KVR_ATTRIBUTE_CELL_NAME=KVR_FF}\n"
              "u:comb: Primitives/ICESTORM_LC:netlist_3 (I0=$bit$3, COUT=$bit$5)\n");
}

TEST_F(DeviceCells, ABufferWithAnotherInputGetsOnePortMore)
{
    const Verific::Netlist *top =
        readCell(cell("SB_GB", "", R"("USER_SIGNAL_TO_GLOBAL_BUFFER": [2])", R"("GLOBAL_BUFFER_OUTPUT": [3])"));
    EXPECT_EQ(linesOf(top, "u"), "u: Primitives/SB_GB (USER_SIGNAL_TO_GLOBAL_BUFFER=$bit$2, "
                                 "GLOBAL_BUFFER_OUTPUT=$bit$3, I=$bit$2) {KVR_ATTRIBUTE_CELL_NAME=KVR_GBUFCE}\n");
}

TEST_F(DeviceCells, APllIsOpaque)
{
    const Verific::Netlist *top = readCell(cell("EHXPLLL", "", R"("CLKI": [2])", R"("CLKOP": [3])"));
    EXPECT_EQ(linesOf(top, "u"), "u: work/EHXPLLL (CLKI=$bit$2, CLKOP=$bit$3) {KVR_ATTRIBUTE_CELL_NAME=KVR_FF}\n");
}

TEST_F(DeviceCells, APartTakesNoNameThatACellHas)
{
    const Verific::Netlist *top =
        readModules(R"("top": {"cells": {"u": )" +
                    cell("DP16KD", "", R"("CLKA": [2], "CLKB": [3])", R"("DOA0": [4], "DOB0": [5])") +
                    R"(, "u:CLKB": )" + cell("SB_DFF", "", R"("C": [2], "D": [6])", R"("Q": [7])") + "}}");
    EXPECT_NE(top->GetInst("u:CLKB_"), nullptr);
}

TEST_F(DeviceCells, AMemoryOfYosysHasARegisterForEachClockThatItReadsWith)
{
    const Verific::Netlist *top =
        readCell(cell("$mem_v2",
                      R"("RD_PORTS": "00000000000000000000000000000010", "WR_PORTS": "00000000000000000000000000000000",
                "RD_CLK_ENABLE": "11", "WR_CLK_ENABLE": "0")",
                      R"("RD_ADDR": [6, 7], "RD_CLK": [2, 3])", R"("RD_DATA": [4, 5])"));
    const Verific::Instance *first = top->GetInst("u");
    const Verific::Instance *second = top->GetInst("u:RD_CLK[1]");
    ASSERT_NE(second, nullptr);
    EXPECT_STREQ(first->View()->GetClock()->Name(), "RD_CLK[0]");
    EXPECT_STREQ(second->View()->GetClock()->Name(), "RD_CLK[1]");
    EXPECT_EQ(top->GetNet("$bit$4")->Driver(), first);
    EXPECT_EQ(top->GetNet("$bit$5")->Driver(), second);
}

TEST_F(DeviceCells, OwnTablesCountBeforeTheBuiltInOnes)
{
    const std::string file = testing::TempDir() + "own_cells.json";
    std::ofstream(file) << R"({"format": "netlistdb-cells", "version": 1, "family": "Own", "cells": {
        "SB_DFF": {"kind": "flip-flop", "clocks": [{"pin": "CK", "outputs": "Q"}]}}})";
    kvr::netlistdb::yosys::ReadOptions options;
    options.cellTables = {file};
    const Verific::Netlist *top = readModules(
        R"("top": {"cells": {"u": )" + cell("SB_DFF", "", R"("CK": [2], "C": [3])", R"("Q": [4])") + "}}", options);
    EXPECT_STREQ(top->GetInst("u")->View()->GetClock()->Name(), "CK");
}

struct BadTable {
    const char *text;
    const char *fault;
};

class DeviceCellTables : public testing::TestWithParam<BadTable> {};

TEST_P(DeviceCellTables, ThatAreBrokenAreRefusedWithTheFault)
{
    const std::string file = testing::TempDir() + "bad_cells.json";
    std::ofstream(file) << GetParam().text;
    kvr::netlistdb::yosys::ReadOptions options;
    options.cellTables = {file};
    try {
        readModules(R"("top": {})", options);
        FAIL() << "the table was taken";
    } catch (const kvr::netlistdb::yosys::ReadError &error) {
        EXPECT_EQ(error.what(), file + ": " + GetParam().fault);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Faults, DeviceCellTables,
    testing::Values(
        BadTable{"[]", "the table must be an object"},
        BadTable{R"({"cells": {}})", "no table of cells: \"format\" must be \"netlistdb-cells\""},
        BadTable{R"({"format": "netlistdb-cells", "version": 2})", "\"version\" must be 1"},
        BadTable{R"({"format": "netlistdb-cells", "version": 1})", "the table has no \"family\""},
        BadTable{R"({"format": "netlistdb-cells", "version": 1, "family": "F"})", "the table has no \"cells\""},
        BadTable{R"({"format": "netlistdb-cells", "version": 1, "family": "F", "cells": {"A": {}}})",
                 "cell 'A': it has no \"kind\""},
        BadTable{R"({"format": "netlistdb-cells", "version": 1, "family": "F", "cells": {"A": {"kind": "gate"}}})",
                 "cell 'A': unknown kind \"gate\""},
        BadTable{R"({"format": "netlistdb-cells", "version": 1, "family": "F", "cells": {"A": {"kind": "lut",
                     "clocks": [{"edge": "rise"}]}}})",
                 "cell 'A': a clock has no \"pin\""},
        BadTable{R"({"format": "netlistdb-cells", "version": 1, "family": "F", "cells": {"A": {"kind": "lut",
                     "clocks": [{"pin": "C", "edge": "up"}]}}})",
                 "cell 'A': \"edge\" must be \"rise\", \"fall\" or \"both\", not \"up\""}));

} // namespace
} // namespace yosystest
