#include "analysis/probe/LogicProgram.h"
#include "analysis/probe/Hash.h"
#include "analysis/probe/Logic.h"
#include "analysis/probe/LogicOrder.h"
#include "tests/unit/clock/ClockTest.h"

#include <netlistdb/netlistdb.h>

#include <string>
#include <vector>

namespace analysis_test {
namespace {

using namespace kvr::netlistdb;
using namespace kvr::netlistdb::analysis;
using namespace kvr::netlistdb::analysis::probe;

constexpr std::size_t INPUTS = 7;
constexpr std::size_t CELLS_IN_ALL = 6000; ///< more than are sorted at once

/// Tables of one to six inputs, gates of two and of one, and adders, each behind what stands before it.
std::string randomLogic(Random &random)
{
    std::string text = R"(
        operator $_NOT_(in A, out Y) end
        operator $_AND_(in A, B, out Y) end
        operator $_NAND_(in A, B, out Y) end
        operator $_OR_(in A, B, out Y) end
        operator $_NOR_(in A, B, out Y) end
        operator $_XOR_(in A, B, out Y) end
        operator $_XNOR_(in A, B, out Y) end
        operator KVR_LUT1(in I0, out O) end
        operator KVR_LUT2(in I0, I1, out O) end
        operator KVR_LUT3(in I0, I1, I2, out O) end
        operator KVR_LUT4(in I0, I1, I2, I3, out O) end
        operator KVR_LUT5(in I0, I1, I2, I3, I4, out O) end
        operator KVR_LUT6(in I0, I1, I2, I3, I4, I5, out O) end
        module top(in n0, n1, n2, n3, n4, n5, n6)
)";
    static constexpr const char *gates[] = {"AND", "NAND", "OR", "NOR", "XOR", "XNOR"};
    for (std::size_t cell = INPUTS; cell < CELLS_IN_ALL; ++cell) {
        // Mostly near by, so that the logic is deep.
        const auto net = [&] {
            const std::size_t back = random.next() % 4 != 0 ? std::min<std::size_t>(cell, 40) : cell;
            return "n" + std::to_string(cell - 1 - random.next() % back);
        };
        const std::string name = "c" + std::to_string(cell) + ": ";
        const std::string output = "=n" + std::to_string(cell) + ")";
        const std::size_t kind = random.next() % 8;
        if (kind == 0) {
            text += name + "$_NOT_(A=" + net() + ", Y" + output;
        } else if (kind == 1) {
            text += name + "$_" + gates[random.next() % 6] + "_(A=" + net() + ", B=" + net() + ", Y" + output;
        } else {
            const std::size_t inputs = kind - 1;
            text += name + "KVR_LUT" + std::to_string(inputs) + "(";
            for (std::size_t input = 0; input < inputs; ++input) {
                text += "I" + std::to_string(input) + "=" + net() + ", ";
            }
            text += "O" + output + " #INIT=";
            for (std::size_t bit = 0; bit < std::size_t{1} << inputs; ++bit) {
                text += (random.next() & 1) != 0 ? '1' : '0';
            }
        }
        text += "\n";
    }
    return text + "end";
}

class LogicProgramTest : public clock_test::ClockTest {};

TEST_F(LogicProgramTest, ComputesWhatEachCellComputesByItself)
{
    Random random(5);
    postMap(randomLogic(random).c_str());
    const BitGraph graph(*database, clock_test::POST_MAP);
    const std::vector<std::uint32_t> order = logicOrderOf(graph);
    ASSERT_EQ(order.size(), CELLS_IN_ALL - INPUTS);
    std::vector<bool> special(graph.signalCount, false);
    special[graph.outputsOf(graph.nodes[order[order.size() / 2]])[0]] = true;

    for (const unsigned unknownPower : {1U, 5U, 63U}) {
        std::vector<Lanes> values(graph.signalCount, UNKNOWN);
        values[SIGNAL_ZERO] = ZERO;
        values[SIGNAL_ONE] = ONE;
        for (const TopPort &port : graph.ports) {
            const std::uint64_t value = random.next();
            const std::uint64_t unknown = random.seldom(unknownPower);
            values[port.signal] = {~value | unknown, value | unknown};
        }
        std::vector<Lanes> wanted = values;
        for (const std::uint32_t node : order) {
            const Step step = graph.stepOf(node);
            evaluate(*step.part, step.in, step.out, wanted);
        }
        std::size_t others = 0;
        LogicProgram(graph, order, special).run(values, [&](const Step &step) {
            ++others;
            evaluate(*step.part, step.in, step.out, values);
        });
        EXPECT_TRUE(values == wanted) << "unknown one time in 2 to the " << unknownPower;
        EXPECT_EQ(others, 1U) << "only the special one is left to the caller";
    }
}

} // namespace
} // namespace analysis_test
