// Cells with ports that do not fit together, as no tool writes them: they are black boxes, and nothing is read beyond
// their pins.

#include "tests/unit/analysis/CrossProbeTest.h"

namespace analysis_test {
namespace {

class MalformedCells : public CrossProbeTest {
  protected:
    /// What becomes of the output of @p cell, which has the pins a and b of 3 and 5 bits.
    std::string outputOf(const std::string &type, const std::string &ports, const std::string &cell)
    {
        const std::string design = type + "(" + ports + ") end\nmodule top(in [2:0] a, in [4:0] b, in c, out n)\n" +
                                   "x: " + cell + "\no: $not(A=y, Y=n) end";
        load("operator " + design, "operator " + design);
        return found("y");
    }
};

TEST_F(MalformedCells, OfATableWithTooFewWords)
{
    EXPECT_EQ(outputOf("$bmux", "in [2:0] A, in [4:0] S, out Y", "$bmux(A=a, S=b, Y=y)"), "exact y");
}

TEST_F(MalformedCells, OfADecoderWithTooFewOutputs)
{
    EXPECT_EQ(outputOf("$demux", "in [2:0] A, in [4:0] S, out Y", "$demux(A=a, S=b, Y=y)"), "exact y");
}

TEST_F(MalformedCells, OfASelectorWithTooFewWords)
{
    EXPECT_EQ(outputOf("$pmux", "in [2:0] A, in [4:0] S, out Y", "$pmux(A=a, S=b, Y=y)"), "exact y");
}

TEST_F(MalformedCells, OfATableWithoutInputs)
{
    EXPECT_EQ(outputOf("$lut", "out Y", "$lut(Y=y) #LUT=1"), "exact y");
}

TEST_F(MalformedCells, OfARegisterWithoutData)
{
    EXPECT_EQ(outputOf("$aldff", "in CLK, in [2:0] D, in [4:0] AD, out Y", "$aldff(CLK=c, D=a, AD=b, Y=y)"), "exact y");
}

} // namespace
} // namespace analysis_test
