#include "tests/unit/analysis/MapTest.h"

namespace analysis_test {

namespace analysis = kvr::netlistdb::analysis;

namespace {

class Proof : public MapTest {
  protected:
    /// One line a step: `net <- cell type output<input at file:line`.
    std::string text(const std::vector<ChainStep> &steps) const
    {
        std::string lines;
        for (const ChainStep &step : steps) {
            const char *const kinds[] = {"cell", "hierarchy", "register", "end"};
            lines += step.netName + " <- " + kinds[static_cast<unsigned>(step.kind)];
            for (const std::string &part : {step.cell, step.cellType, step.output}) {
                lines += part.empty() ? "" : " " + part;
            }
            lines += step.input.empty() ? "" : "<" + step.input;
            const std::string file = step.place.file.substr(step.place.file.rfind('/') + 1);
            lines += file.empty() ? "" : " at " + file + ":" + std::to_string(step.place.line);
            lines += '\n';
        }
        return lines;
    }
};

constexpr const char *PROOF_DESIGN = R"(
    register DFF(in d, clk, out q) clock=clk end
    primitive $_AND_(in A, B, out Y) type=7 end
    primitive $_NOT_(in A, out Y) type=6 input=A end
    blackbox BOX(out Y) end
    module leaf(in ck, d, out q)
        r: DFF(clk=ck, d=d, q=q) at leaf.v:2
    end
    module top(in clk, d, x, out y) at top.v:1
        n: $_NOT_(A=clk, Y=clk_n) at top.v:3
        u: leaf(ck=clk_n, d=d, q=q) at top.v:4
        b: BOX(Y=box) at top.v:5
        g: $_AND_(A=q, B=box, Y=z) at top.v:6
        h: $_AND_(A=z, B=x, Y=y) at top.v:7
    end)";

TEST_F(Proof, AChainNamesEveryNetCellPinAndPositionDownToTheRootOfTheClock)
{
    elaboratedMap(PROOF_DESIGN);
    const analysis::LaunchProof proof = map->why(instanceOf(""), netIn("", "y"));
    ASSERT_EQ(proof.clocks.size(), 1U);
    EXPECT_EQ(map->clocks()[proof.clocks[0].clock].name, "clk");
    EXPECT_EQ(proof.clocks[0].cells, 2U);
    EXPECT_EQ(text(proof.clocks[0].data), "y <- cell h $_AND_ Y<A at top.v:7\n"
                                          "z <- cell g $_AND_ Y<A at top.v:6\n"
                                          "q <- hierarchy u leaf q at top.v:4\n"
                                          "u/q <- register u/r DFF q<clk at leaf.v:2\n");
    EXPECT_EQ(text(proof.clocks[0].clockToRoot), "u/ck <- hierarchy ck\n"
                                                 "clk_n <- cell n $_NOT_ Y<A at top.v:3\n"
                                                 "clk <- end\n");
}

TEST_F(Proof, WhatElseReachesTheNetIsShownToo)
{
    elaboratedMap(PROOF_DESIGN);
    const analysis::LaunchProof proof = map->why(instanceOf(""), netIn("", "y"));
    ASSERT_EQ(proof.ends.size(), 2U);
    EXPECT_EQ(proof.ends[0].end, analysis::REACHED_BY_INPUT_PORT);
    EXPECT_EQ(text(proof.ends[0].data), "y <- cell h $_AND_ Y<B at top.v:7\nx <- end x\n");
    EXPECT_EQ(proof.ends[1].end, analysis::REACHED_BY_BLACK_BOX);
    EXPECT_EQ(text(proof.ends[1].data), "y <- cell h $_AND_ Y<A at top.v:7\n"
                                        "z <- cell g $_AND_ Y<B at top.v:6\n"
                                        "box <- end b BOX Y at top.v:5\n");
}

TEST_F(Proof, ForANetWithoutClockItSaysWhatWasReachedInstead)
{
    elaboratedMap(PROOF_DESIGN);
    const analysis::LaunchProof proof = map->why(instanceOf("u"), netIn("u", "d"));
    EXPECT_TRUE(proof.clocks.empty());
    ASSERT_EQ(proof.ends.size(), 1U);
    EXPECT_EQ(text(proof.ends[0].data), "u/d <- hierarchy d\nd <- end d\n");
}

TEST_F(Proof, AClockNetworkLeadsToItsRoot)
{
    elaboratedMap(PROOF_DESIGN);
    const analysis::LaunchProof proof = map->why(instanceOf("u"), netIn("u", "ck"));
    ASSERT_EQ(proof.networks.size(), 1U);
    EXPECT_EQ(proof.networks[0].cells, 1U);
    EXPECT_EQ(text(proof.networks[0].data), "u/ck <- hierarchy ck\n"
                                            "clk_n <- cell n $_NOT_ Y<A at top.v:3\n"
                                            "clk <- end\n");
}

} // namespace
} // namespace analysis_test
