// Attributes, parameters and source positions.

#include "ReaderTest.h"

#include <yosys/SourcePosition.h>

namespace yosystest {
namespace {

class YosysAttributes : public ReaderTest {
  protected:
    static std::string position(std::string_view src)
    {
        kvr::netlistdb::yosys::SourcePositions positions;
        const Verific::linefile_type handle = positions.encode(src);
        return !handle ? "none"
                       : std::string(Verific::LineFile::GetFileName(handle)) + " " +
                             std::to_string(Verific::LineFile::GetLineNo(handle));
    }
};

TEST_F(YosysAttributes, GiveThePositionOfTheInnermostRange)
{
    EXPECT_EQ(position("rtl/a.v:12.3-14.5"), "rtl/a.v 12");
    EXPECT_EQ(position("/abs/dir/a.v:7.1-7.2"), "/abs/dir/a.v 7");
    EXPECT_EQ(position("top.v:7.1-7.2|sub.v:9.1-9.2|leaf.v:11.1-11.2"), "leaf.v 11");
    EXPECT_EQ(position("a.v:3.1-3.2|no range"), "a.v 3");
    EXPECT_EQ(position("a.v:12"), "a.v 12");
    EXPECT_EQ(position("a.v:12-14"), "a.v 12");
    EXPECT_EQ(position("no range|b.v:3.1-3.2"), "b.v 3");
}

TEST_F(YosysAttributes, GivePositionsInFilesWhoseNamesHoldColonsAndBlanks)
{
    EXPECT_EQ(position("C:\\rtl\\a.v:12.3-12.9"), "C:\\rtl\\a.v 12");
    EXPECT_EQ(position("my file:2.v:5.1"), "my file:2.v 5");
    EXPECT_EQ(position("<techmap.v>:260.23-260.28"), "<techmap.v> 260");
}

TEST_F(YosysAttributes, ThatHoldNoRangeGiveNoPosition)
{
    for (const char *src : {"", "a.v", ":12.3", "a.v:", "a.v:x", "a.v:12x", "a.v:99999999999", "|", "a.v:-4"}) {
        EXPECT_EQ(position(src), "none") << src;
    }
}

TEST_F(YosysAttributes, AreCarriedOverAsTheyStand)
{
    const Verific::Netlist *top = readModules(R"("top": {"attributes": {
        "text": "a \"quoted\" text", "empty": "", "bits": "01xz", "number": 42, "negative": -3, "real": 2.50,
        "hdlname": "top", "wide": "00000000000000000000000000000001"}})");
    EXPECT_EQ(print(top), "work/top {text=a \"quoted\" text, empty=, bits=01xz, number=42, negative=-3, real=2.50, "
                          "hdlname=top, wide=00000000000000000000000000000001}\n");
}

TEST_F(YosysAttributes, ThatLookLikeBitsLoseTheBlankThatYosysPutBehindThem)
{
    const Verific::Netlist *top = readModules(R"("top": {"attributes": {
        "a": "0101 ", "b": " ", "c": "1  ", "d": "bits ", "e": "0 1 ", "f": "01x2 "}})");
    EXPECT_STREQ(top->GetAttValue("a"), "0101");
    EXPECT_STREQ(top->GetAttValue("b"), "");
    EXPECT_STREQ(top->GetAttValue("c"), "1 ");
    EXPECT_STREQ(top->GetAttValue("d"), "bits ");
    EXPECT_STREQ(top->GetAttValue("e"), "0 1 ");
    EXPECT_STREQ(top->GetAttValue("f"), "01x2 ");
}

TEST_F(YosysAttributes, CalledProtectedProtectTheirObjectUnlessTheyAreZero)
{
    const Verific::Netlist *top = readModules(R"("sub": {"attributes": {"protected": 1}}, "top": {
        "attributes": {"protected": "00000000000000000000000000000000"},
        "netnames": {"n": {"bits": [2], "attributes": {"protected": "00000000000000000000000000000010"}},
                     "m": {"bits": [3], "attributes": {"protected": 0}}},
        "cells": {"u": {"type": "sub", "attributes": {"protected": "1"}}}})");
    EXPECT_EQ(print(top), "work/top\n"
                          "net n protected\n"
                          "net m\n"
                          "u: work/sub () protected\n");
    EXPECT_EQ(print(netlistOf("work", "sub")), "work/sub protected\n");
}

TEST_F(YosysAttributes, CalledLikeParametersStayApartFromThem)
{
    const Verific::Netlist *top = readModules(R"("sub": {}, "top": {"cells": {"u": {"type": "sub",
        "parameters": {"INIT": "0110", "NAME": "x y", "DEPTH": 16, "EMPTY": " "}, "attributes": {"INIT": "a"}}}})");
    EXPECT_EQ(linesOf(top, "u"), "u: work/sub () #INIT=0110 #NAME=x y #DEPTH=16 #EMPTY= {INIT=a}\n");
}

TEST_F(YosysAttributes, ParametersThatAreWrittenAlikeAreHeldOnceUntilTheyChange)
{
    Verific::Netlist *const top = readModules(R"("sub": {}, "top": {"cells": {
        "u1": {"type": "sub", "parameters": {"INIT": "0110", "D": 1}},
        "u2": {"type": "sub", "parameters": {"INIT": "0110", "D": 1}},
        "u3": {"type": "sub", "parameters": {"INIT": "0110", "D": 2}},
        "u4": {"type": "sub", "parameters": {}}}})");
    EXPECT_EQ(top->GetInst("u1")->GetParameters(), top->GetInst("u2")->GetParameters());
    top->GetInst("u1")->AddParam("D", "3");
    EXPECT_EQ(linesOf(top, "u"), "u1: work/sub () #INIT=0110 #D=3\n"
                                 "u2: work/sub () #INIT=0110 #D=1\n"
                                 "u3: work/sub () #INIT=0110 #D=2\n"
                                 "u4: work/sub ()\n");
}

TEST_F(YosysAttributes, EachOfManyInstancesHasItsOwnParameters)
{
    constexpr int COUNT = 20000; // more than the reader remembers
    std::string cells;
    for (int number = 0; number < COUNT; ++number) {
        const std::string text = std::to_string(number % (COUNT / 2));
        cells += (number == 0 ? "\"u" : ", \"u") + std::to_string(number) +
                 R"(": {"type": "sub", "parameters": {"INIT": "i)" + text + "\"}}";
    }
    const Verific::Netlist *const top = readModules(R"("sub": {}, "top": {"cells": {)" + cells + "}}");
    for (int number = 0; number < COUNT; ++number) {
        const Verific::Instance *const inst = top->GetInst(("u" + std::to_string(number)).c_str());
        ASSERT_STREQ(static_cast<const char *>(inst->GetParameters()->GetValue("INIT")),
                     ("i" + std::to_string(number % (COUNT / 2))).c_str());
    }
}

} // namespace
} // namespace yosystest
