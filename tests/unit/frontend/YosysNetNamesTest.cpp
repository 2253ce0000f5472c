// Which of its names a bit takes, and what becomes of vectors.

#include "ReaderTest.h"

#include <algorithm>
#include <vector>

namespace yosystest {
namespace {

class YosysNetNames : public ReaderTest {
  protected:
    /// The nets and buses of a module with these netnames and ports.
    static std::string nets(const std::string &netNames, const std::string &ports = "")
    {
        Verific::Libset::Reset();
        const Verific::Netlist *top =
            readModules("\"top\": {\"ports\": {" + ports + "}, \"netnames\": {" + netNames + "}}");
        return linesOf(top, "bus") + linesOf(top, "net");
    }

    static constexpr const char *SRC = R"("attributes": {"src": "t.v:5.1-5.2"})";

    static std::string net(const std::string &name, const std::string &bits, const std::string &more = SRC)
    {
        return "\"" + name + "\": {\"bits\": [" + bits + "], " + more + "}";
    }
    /// The name that bit 2 takes when its user names are these, in any order.
    static std::string best(std::vector<std::string> names)
    {
        std::sort(names.begin(), names.end());
        std::string taken;
        do {
            std::string netNames;
            for (const std::string &name : names) {
                netNames += (netNames.empty() ? "" : ", ") + net(name, "2");
            }
            const std::string lines = nets(netNames);
            const std::string now = lines.substr(4, lines.find(" at ") - 4);
            if (!taken.empty() && taken != now) {
                return "depends on the order: " + taken + " or " + now;
            }
            taken = now;
        } while (std::next_permutation(names.begin(), names.end()));
        return taken;
    }
};

TEST_F(YosysNetNames, PreferAPortToEveryOther)
{
    EXPECT_EQ(nets(net("a", "2") + "," + net("long_port", "2"), R"("long_port": {"direction": "input", "bits": [2]})"),
              "net long_port at t.v:5\n");
}

TEST_F(YosysNetNames, AreNoBetterForAPosition)
{
    EXPECT_EQ(nets(net("a", "2", R"("hide_name": 0)") + "," + net("u_core.long_name", "2")), "net a user-declared=1\n");
}

TEST_F(YosysNetNames, PreferAVisibleNameWithoutPositionToAGeneratedOne)
{
    EXPECT_EQ(nets(net("$1", "2") + "," + net("visible.but.nowhere", "2", R"("hide_name": 0)")),
              "net visible.but.nowhere user-declared=1\n");
}

TEST_F(YosysNetNames, OfGeneratedNetsHaveNoPosition)
{
    EXPECT_EQ(
        nets(net("$auto$1", "2") + "," + net("hidden", "3", R"("hide_name": 1, "attributes": {"src": "t.v:5.1-5.2"})")),
        "net $auto$1\n"
        "net hidden\n");
}

TEST_F(YosysNetNames, PreferFewerHierarchySeparators)
{
    EXPECT_EQ(best({"a.b", "much_longer_name"}), "much_longer_name");
    EXPECT_EQ(best({"a/b.c", "u_core/long_name", "x.y/z"}), "u_core/long_name");
}

TEST_F(YosysNetNames, PreferShorterOnes)
{
    EXPECT_EQ(best({"bbb", "aaaa", "u.b"}), "bbb");
}

TEST_F(YosysNetNames, PreferTheFirstInByteOrder)
{
    EXPECT_EQ(best({"b", "a", "B"}), "B");
    EXPECT_EQ(best({"\xC3\xA4", "zz"}), "zz"); // two bytes each: bytes compare as unsigned
}

TEST_F(YosysNetNames, OfVectorsMakeABusWhenAllBitsTakeThem)
{
    EXPECT_EQ(nets(net("q", "2, 3") + "," + net("longer", "3")), "bus q [1:0] at t.v:5\n"
                                                                 "net q[0] in q at t.v:5\n"
                                                                 "net q[1] in q at t.v:5\n");
}

TEST_F(YosysNetNames, OfVectorsCountWithOffsetAndDirection)
{
    EXPECT_EQ(nets(net("q", "2, 3", R"("offset": 6, "upto": 1)") + "," + net("r", "4, 5", R"("offset": 6)")),
              "bus q [6:7]\n"
              "bus r [7:6]\n"
              "net q[7] in q\n"
              "net q[6] in q\n"
              "net r[6] in r\n"
              "net r[7] in r\n");
}

TEST_F(YosysNetNames, ThatBearTheirIndexAreScalarsThoughTheyKeepTheOffset)
{
    EXPECT_EQ(nets(net("q[3]", "2", R"("offset": 3)") + "," + net("r", "4", R"("offset": 3)")), "bus r [3:3]\n"
                                                                                                "net q[3]\n"
                                                                                                "net r[3] in r\n");
}

TEST_F(YosysNetNames, OfPartlyTakenVectorsStayOnBitNetsUnderTheirIndex)
{
    EXPECT_EQ(nets(net("data", "2, 3, 4", R"("offset": 8, "attributes": {"src": "t.v:5.1", "keep": "1"})") + "," +
                   net("b", "3")),
              "net data[8] at t.v:5 {keep=1}\n"
              "net data[10] at t.v:5 {keep=1}\n"
              "net b at t.v:5 {keep=1}\n");
}

TEST_F(YosysNetNames, OfVectorsWithConstantBitsMakeNoBus)
{
    EXPECT_EQ(nets(net("data", "\"0\", 3, \"x\"")), "net data[1] at t.v:5\n");
}

TEST_F(YosysNetNames, OfVectorsThatRepeatABitMakeNoBus)
{
    EXPECT_EQ(nets(net("sign", "2, 3, 3")), "net sign[0] at t.v:5\n"
                                            "net sign[1] at t.v:5\n");
}

TEST_F(YosysNetNames, OfVectorsAreComparedWithoutTheIndex)
{
    // "ab" is longer than "z", although "z[10]" is longer than "ab".
    EXPECT_EQ(nets(net("ab", "2") + "," + net("z", "2", R"("offset": 10, "attributes": {"src": "t.v:5.1-5.2"})")),
              "bus z [10:10] at t.v:5\n"
              "net z[10] in z at t.v:5\n");
}

TEST_F(YosysNetNames, StandAsTheyAreInTheFile)
{
    EXPECT_EQ(nets(net("\\\\$esc", "2") + "," + net("a\\\"b", "3") + "," + net("m[3].q", "4") + "," +
                   net("\\u00e4", "5") + "," + net("a/b\\/c", "6")),
              "net \\$esc at t.v:5\n"
              "net a\"b at t.v:5\n"
              "net m[3].q at t.v:5\n"
              "net \xC3\xA4 at t.v:5\n"
              "net a/b/c at t.v:5\n");
}

TEST_F(YosysNetNames, OfBusesCarryAttributesOnceAndPositionAndProtectionOnEveryBit)
{
    EXPECT_EQ(nets(net("s", "2, 3",
                       R"("attributes": {"src": "t.v:5.1-5.2", "keep": "1",
                                         "protected": "00000000000000000000000000000001"})")),
              "bus s [1:0] at t.v:5 protected {keep=1}\n"
              "net s[0] in s at t.v:5 protected\n"
              "net s[1] in s at t.v:5 protected\n");
}

TEST_F(YosysNetNames, MissingForABitAreMadeUpWithoutClash)
{
    const Verific::Netlist *top =
        readModules(R"("top": {"netnames": {"$bit$7": {"bits": [2]}, "$const$0": {"bits": [3]},
                                                                      "$bit$7_": {"bits": [4]}},
        "cells": {"$const$0": {"type": "sub", "connections": {"a": [7], "b": ["0"]}}}},
        "sub": {"ports": {"a": {"direction": "input", "bits": [2]}, "b": {"direction": "input", "bits": [3]}}})");
    EXPECT_EQ(print(top), "work/top\n"
                          "net $bit$7\n"
                          "net $const$0\n"
                          "net $bit$7_\n"
                          "net $bit$7__\n"
                          "net $const$0_\n"
                          "$const$0: work/sub (a=$bit$7__, b=$const$0_)\n"
                          "$const$0_: Constants/$gnd (Y=$const$0_)\n");
}

TEST_F(YosysNetNames, OfBitsWithLargeNumbersAreFoundWithoutATableOfThatSize)
{
    const Verific::Netlist *top = readModules(R"("top": {"netnames": {"a": {"bits": [2147483647]}},
        "cells": {"u": {"type": "sub", "connections": {"a": [2147483647], "b": [2000000000]}}}},
        "sub": {"ports": {"a": {"direction": "input", "bits": [2]}, "b": {"direction": "input", "bits": [3]}}})");
    EXPECT_EQ(linesOf(top, "u"), "u: work/sub (a=a, b=$bit$2000000000)\n");
}

TEST_F(YosysNetNames, OfOneModuleMeanNothingInTheNext)
{
    readModules(R"("a": {"netnames": {"x": {"bits": [2]}, "y": {"bits": [3]}}},
                   "b": {"netnames": {"z": {"bits": [3]}}, "cells": {"u": {"type": "a"}}})");
    EXPECT_EQ(linesOf(netlistOf("work", "a"), "net"), "net x\nnet y\n");
    EXPECT_EQ(linesOf(netlistOf("work", "b"), "net"), "net z\n");
}

} // namespace
} // namespace yosystest
