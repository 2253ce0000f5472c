#include "tests/property/clockmap/ClockCells.h"

#include "tests/support/NetlistText.h"

#include <DataBase.h>

#include <sstream>

namespace clockmap_test {

namespace {

void make(std::vector<ClockCell> &cells)
{
    for (ClockCell &cell : cells) {
        // The last netlist of its cell is the one made just now.
        std::istringstream words(cell.unit);
        std::string kind;
        std::string name;
        words >> kind;
        std::getline(words >> std::ws, name, '(');
        testsupport::netlistFromText(cell.unit);
        cell.netlist = testsupport::netlistOfCell(name.c_str());
    }
}

} // namespace

std::vector<ClockCell> elaboratedCells()
{
    std::vector<ClockCell> cells = {
        {"operator $and(in [1:0] A, [1:0] B, out [1:0] Y) end", "", {}, "", "Y0 < A0 B0\nY1 < A1 B1", 4},
        {"operator $not(in [1:0] A, out [1:0] Y) end", "", {}, "", "Y0 < A0\nY1 < A1\nY0 ! A0\nY1 ! A1", 2},
        {"operator $mux(in [1:0] A, [1:0] B, S, out [1:0] Y) end", "", {}, "", "Y0 < A0 B0 S\nY1 < A1 B1 S", 4},
        {"operator $pmux(in [1:0] A, [3:0] B, [1:0] S, out [1:0] Y) end",
         "",
         {},
         "",
         "Y0 < A0 B0 B2 S0 S1\nY1 < A1 B1 B3 S0 S1",
         1},
        {"operator $bmux(in [3:0] A, S, out [1:0] Y) end", "", {}, "", "Y0 < A0 A2 S\nY1 < A1 A3 S", 1},
        {"operator $demux(in A, S, out [1:0] Y) end", "", {}, "", "Y0 Y1 < A S", 1},
        {"operator $add(in [1:0] A, [1:0] B, out [1:0] Y) end", "", {}, "", "Y0 Y1 < A0 A1 B0 B1", 3},
        {"operator $pos(in A, out [1:0] Y) end", "", {{"A_SIGNED", "1"}}, "", "Y0 Y1 < A\nY0 = A\nY1 = A", 1},
        {"operator $or(in A, [1:0] B, out [1:0] Y) end", "", {}, "", "Y0 < A B0\nY1 < B1", 1},
        {"operator $slice(in [2:0] A, out [1:0] Y) end",
         "",
         {{"OFFSET", "1"}},
         "",
         "Y0 < A1\nY1 < A2\nY0 = A1\nY1 = A2",
         1},
        {"operator $concat(in A, B, out [1:0] Y) end", "", {}, "", "Y0 < A\nY1 < B\nY0 = A\nY1 = B", 2},
        {"operator $shl(in [1:0] A, B, out [1:0] Y) end", "", {}, "B", "Y0 is constant\nY1 < A0\nY1 = A0", 1},
        {"operator $shr(in [1:0] A, B, out [1:0] Y) end", "", {}, "!B", "Y0 Y1 < A0 A1 B", 1},
        {"operator $sshr(in [1:0] A, B, out [1:0] Y) end",
         "",
         {{"A_SIGNED", "1"}},
         "B",
         "Y0 Y1 < A1\nY0 = A1\nY1 = A1",
         1},
        {"operator $dff(in CLK, [1:0] D, out [1:0] Q) end",
         "",
         {{"CLK_POLARITY", "1"}},
         "",
         "CLK rise\nQ0 @ CLK\nQ1 @ CLK\nD0 > CLK data\nD1 > CLK data",
         9},
        {"operator $adffe(in CLK, ARST, EN, D, out Q) end",
         "",
         {{"CLK_POLARITY", "0"}},
         "",
         "CLK fall\nQ @ CLK\nD > CLK data\nARST > CLK reset\nEN > CLK enable",
         4},
        {"operator $aldff(in CLK, ALOAD, AD, D, out Q) end",
         "",
         {},
         "",
         "CLK rise\nQ @ CLK\nD > CLK data\nAD > CLK reset\nALOAD > CLK reset\nQ < AD ALOAD\nlatch",
         1},
        {"operator $dlatch(in EN, [1:0] D, out [1:0] Q) end", "", {}, "", "Q0 < D0 EN\nQ1 < D1 EN\nlatch", 2},
        {"operator $mem_v2(in [1:0] RD_CLK, [1:0] RD_EN, [1:0] RD_ADDR, WR_CLK, WR_EN, WR_ADDR, WR_DATA, "
         "out [1:0] RD_DATA) end",
         "",
         {{"RD_PORTS", "2"}, {"WR_PORTS", "1"}, {"RD_CLK_ENABLE", "01"}, {"WR_CLK_ENABLE", "1"}},
         "",
         "RD_CLK0 rise\nWR_CLK rise\nRD_DATA0 @ RD_CLK0\nRD_DATA1 @ WR_CLK\nRD_DATA1 < RD_ADDR1 RD_EN1\n"
         "RD_EN0 > RD_CLK0 enable\nRD_ADDR0 > RD_CLK0 data\nWR_EN > WR_CLK enable\nWR_ADDR > WR_CLK data\n"
         "WR_DATA > WR_CLK data",
         2},
        {"primitive $_AND_(in A, B, out Y) type=7 end", "", {}, "", "Y < A B", 4},
        {"primitive $_NOT_(in A, out Y) type=6 input=A end", "", {}, "", "Y < A\nY ! A", 3},
        {"primitive $_BUF_(in A, out Y) type=5 input=A end", "", {}, "", "Y < A\nY = A", 3},
        {"primitive $_DFF_N_(in C, D, out Q) end", "", {}, "", "C fall\nQ @ C\nD > C data", 4},
        {"register DFF(in d, clk, en, out q, nq) clock=clk end",
         "",
         {},
         "",
         "clk rise\nq @ clk\nnq @ clk\nd > clk data\nen > clk enable",
         4},
        {"primitive GATE(in a, b, out o, p) end", "", {}, "", "o p < a b", 2},
        {"blackbox BOX(in A, B, out Y, Z) end", "", {}, "", "Y is black-box\nZ is black-box\nbox A B", 2},
        {"blackbox BIDI(in A, inout IO) end", "", {}, "", "IO is black-box\nbox A IO", 1},
        {"blackbox KVR_IOBUF(in I, OE, out O, inout IO) end", "KVR_IOBUF", {}, "", "O < I OE IO\nO = IO\nIO < I OE", 1},
    };
    make(cells);
    return cells;
}

std::vector<ClockCell> postMapCells()
{
    const std::string flipFlop = "Q @ C\nD > C data\nE > C enable\nR > C reset";
    const std::string unit = "blackbox KVR_FF(in C clock, D, E, R, out Q) end";
    std::vector<ClockCell> cells = {
        {unit, "KVR_FF", {}, "", "C rise\n" + flipFlop, 10},
        {unit, "KVR_FF", {{"C_INVERTED", "1"}}, "", "C fall\n" + flipFlop, 3},
        {"blackbox KVR_LUT1(in I0, out O) end", "KVR_LUT1", {{"INIT", "01"}}, "", "O < I0\nO ! I0", 2},
        {"blackbox KVR_LUT1(in I0, out O) end", "KVR_LUT1", {{"INIT", "10"}}, "", "O < I0\nO = I0", 2},
        {"blackbox KVR_LUT2(in I0, I1, out O) end", "KVR_LUT2", {}, "", "O < I0 I1", 8},
        {"blackbox KVR_LUT4(in I0, I1, I2, I3, out O) end", "KVR_LUT4", {}, "", "O < I0 I1 I2 I3", 5},
        {"blackbox KVR_CARRY(in A, B, out S, CO) end", "KVR_CARRY", {}, "", "S CO < A B", 2},
        {"blackbox KVR_RAMD2(in W_CLK clock, W_EN, W_DATA, R_ADDR, out R_DATA) end",
         "KVR_RAMD2",
         {},
         "",
         "W_CLK rise\nR_DATA @ W_CLK\nR_DATA < R_ADDR\nW_EN > W_CLK enable\nW_DATA > W_CLK data",
         2},
        {"blackbox KVR_RAM2(in W_CLK clock, W_EN, W_ADDR, R_CLK clock, R_EN, R_ADDR, out R_DATA) end",
         "KVR_RAM2",
         {},
         "",
         "W_CLK rise\nR_CLK rise\nR_DATA @ R_CLK\nW_EN > W_CLK enable\nW_ADDR > W_CLK data\nR_EN > R_CLK enable\n"
         "R_ADDR > R_CLK data",
         2},
        {"blackbox KVR_DPRAM2(in CLK_A clock, ADDR_A, CLK_B clock, ADDR_B, out Q_A, Q_B) end",
         "KVR_DPRAM2",
         {},
         "",
         "CLK_A rise\nCLK_B rise\nQ_A @ CLK_A\nQ_B @ CLK_B\nADDR_A > CLK_A data\nADDR_B > CLK_B data",
         2},
        {"blackbox KVR_DSP2(in CLK clock, CE, A, B, out P) end",
         "KVR_DSP2",
         {},
         "",
         "CLK rise\nP @ CLK\nCE > CLK enable\nA > CLK data\nB > CLK data",
         1},
        {"blackbox KVR_SRL2(in C clock, D, A, out Q) end",
         "KVR_SRL2",
         {},
         "",
         "C rise\nQ @ C\nQ < A\nD > C data\nA > C data",
         1},
        {"blackbox KVR_IDDR(in C clock, D, out Q0, Q1) end",
         "KVR_IDDR",
         {},
         "",
         "C both\nQ0 @ C\nQ1 @ C\nD > C data",
         1},
        {"blackbox KVR_GBUFCE(in I, CE, out O) end", "KVR_GBUFCE", {}, "", "O < I CE\nO = I", 3},
        {"blackbox KVR_IBUF(in I, out O) end", "KVR_IBUF", {}, "", "O < I\nO = I", 2},
        {"blackbox KVR_IOBUF(in I, OE, out O, inout IO) end", "KVR_IOBUF", {}, "", "O < I OE IO\nO = IO\nIO < I OE", 2},
        {"blackbox KVR_VCC(out O) end", "KVR_VCC", {}, "", "O is constant", 1},
        {"blackbox BOX(in A, B, out Y, Z) end", "", {}, "", "Y is black-box\nZ is black-box\nbox A B", 1},
        {"blackbox LATCH(in D, G, out Q) @NETLISTDB_CELL_KIND=latch end", "", {}, "", "Q < D G\nlatch", 2},
        {"blackbox PLL(in CLKIN, RST, out CLKOUT, LOCK) @NETLISTDB_CELL_KIND=pll end",
         "",
         {},
         "",
         "CLKIN reference\nCLKOUT is black-box\nLOCK is black-box\nbox CLKIN RST",
         1},
    };
    make(cells);
    return cells;
}

CellFacts parse(std::string_view facts)
{
    CellFacts parsed;
    std::istringstream lines{std::string(facts)};
    std::string line;
    while (std::getline(lines, line)) {
        std::istringstream words(line);
        std::vector<std::string> left;
        std::vector<std::string> right;
        std::string sign;
        std::string word;
        while (words >> word) {
            if (word == "<" || word == "=" || word == "!" || word == "@" || word == ">" || word == "is") {
                sign = word;
            } else {
                (sign.empty() ? left : right).push_back(word);
            }
        }
        if (left.front() == "latch") {
            parsed.isLatch = true;
        } else if (left.front() == "box") {
            parsed.boxPins.insert(parsed.boxPins.end(), left.begin() + 1, left.end());
        } else if (sign.empty()) {
            parsed.clockPins.push_back({left[0], left[1]});
        } else if (sign == "is") {
            parsed.ends.push_back({left[0], right[0]});
        } else if (sign == ">") {
            parsed.captures.push_back({left[0], right[0], right[1]});
        } else if (sign == "=" || sign == "!") {
            parsed.wires.push_back({left[0], right[0], sign == "!"});
        } else {
            for (const std::string &to : left) {
                for (const std::string &from : right) {
                    (sign == "<" ? parsed.follows : parsed.launches).push_back({to, from});
                }
            }
        }
    }
    return parsed;
}

} // namespace clockmap_test
