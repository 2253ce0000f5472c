// Cells as the reader of yosys' files leaves them.

#include "tests/unit/analysis/MapTest.h"

#include "tests/unit/frontend/ReaderTest.h"

namespace analysis_test {
namespace {

class ReadCells : public MapTest {
  protected:
    void read(const std::string &cells, const std::string &ports, IDesignDatabase::SOURCE_TYPE type)
    {
        source = type;
        Verific::Netlist *const top = yosystest::readModules(
            R"("top": {"attributes": {"top": 1}, "ports": {)" + ports + R"(}, "cells": {)" + cells +
            R"(}, "netnames": {"clk": {"bits": [2], "attributes": {}}, "d": {"bits": [3], "attributes": {}},
                               "q": {"bits": [4], "attributes": {}}, "p": {"bits": [5], "attributes": {}},
                               "wclk": {"bits": [6], "attributes": {}}}})");
        type == ELABORATED ? database->parseElaboratedNetlist(top) : database->parsePostMapNetlist(top);
        map = std::make_unique<ClockMap>(*database, type);
    }
};

constexpr const char *INPUTS = R"("clk": {"direction": "input", "bits": [2]}, "d": {"direction": "input", "bits": [3]},
                                  "wclk": {"direction": "input", "bits": [6]})";

TEST_F(ReadCells, AReadWithoutAClockBesideOneWithAClockShowsWhatTheWriteClockWrites)
{
    // The reader makes two instances of it: the clocked read port, and the rest of the outputs without the clock pins.
    read(R"("m": {"type": "$mem_v2",
        "parameters": {"RD_PORTS": "00000000000000000000000000000010", "WR_PORTS": "00000000000000000000000000000001",
                       "RD_CLK_ENABLE": "01", "WR_CLK_ENABLE": "1", "RD_CLK_POLARITY": "00", "WR_CLK_POLARITY": "1"},
        "port_directions": {"RD_CLK": "input", "RD_EN": "input", "RD_ADDR": "input", "RD_DATA": "output",
                            "WR_CLK": "input", "WR_EN": "input", "WR_ADDR": "input", "WR_DATA": "input"},
        "connections": {"RD_CLK": [2, "x"], "RD_EN": ["1", "1"], "RD_ADDR": [3, 3], "RD_DATA": [5, 4],
                        "WR_CLK": [6], "WR_EN": [3], "WR_ADDR": [3], "WR_DATA": [3]}})",
         INPUTS, ELABORATED);
    EXPECT_EQ(launch("p"), "clk:0");
    EXPECT_EQ(launch("q"), "wclk:0 | port constant");
    EXPECT_EQ(capture("d"), "clk:data wclk:data+enable");
    EXPECT_EQ(map->clocks()[*map->find("clk")].edges, 2U) << "the read port is clocked by the falling edge";
}

TEST_F(ReadCells, RolesAndEdgesOfDeviceCellsComeFromTheirTables)
{
    read(R"("u": {"type": "FDCE", "parameters": {"IS_C_INVERTED": "1"},
        "port_directions": {"C": "input", "D": "input", "CE": "input", "CLR": "input", "Q": "output"},
        "connections": {"C": [2], "D": [3], "CE": [3], "CLR": [3], "Q": [4]}},
        "v": {"type": "SB_RAM40_4KNRNW", "parameters": {},
        "port_directions": {"RCLKN": "input", "RADDR": "input", "WCLKN": "input", "WADDR": "input", "RDATA": "output"},
        "connections": {"RCLKN": [2], "RADDR": [3], "WCLKN": [6], "WADDR": [3], "RDATA": [5]}})",
         INPUTS, POST_MAP);
    EXPECT_EQ(launch("q"), "clk:0");
    EXPECT_EQ(launch("p"), "clk:0");
    EXPECT_EQ(capture("d"), "clk:data+enable+reset wclk:data");
    EXPECT_EQ(clocks(), "clk port fall 2\nwclk port fall 1\n");
}

TEST_F(ReadCells, AMemoryOfADeviceThatReadsWithoutAClockIsReachedByItsReadAddress)
{
    read(R"("u": {"type": "KVR_RAMD16X4", "parameters": {},
        "port_directions": {"W_CLK": "input", "W_EN": "input", "R_ADDR": "input", "R_DATA": "output"},
        "connections": {"W_CLK": [6], "W_EN": [3], "R_ADDR": [5, 5, 5, 5], "R_DATA": [4, 7, 8, 9]}},
        "v": {"type": "KVR_FF", "parameters": {},
        "port_directions": {"C": "input", "D": "input", "Q": "output"},
        "connections": {"C": [2], "D": [3], "Q": [5]}})",
         INPUTS, POST_MAP);
    EXPECT_EQ(launch("q"), "wclk:0 clk:1");
    EXPECT_EQ(capture("d"), "clk:data wclk:enable");
}

} // namespace
} // namespace analysis_test
