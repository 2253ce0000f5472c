// What nets are called beside their own names, and which names count as whose.

#include "ReaderTest.h"
#include "platform/names/OtherNames.h"

#include <yosys/UserModuleName.h>

#include <cstdlib>
#include <vector>

namespace yosystest {
namespace {

namespace names = kvr::netlistdb::names;
namespace yosys = kvr::netlistdb::yosys;

class YosysOtherNames : public ReaderTest {
  protected:
    static const Verific::Netlist *read(const std::string &netNames, const std::string &rest = "",
                                        const std::string &modules = "")
    {
        return readModules(R"("top": {"attributes": {"top": 1}, "netnames": {)" + netNames + "}" + rest + "}" +
                           modules);
    }
    static std::string net(const std::string &name, const std::string &bits, const std::string &attributes = "",
                           const char *hidden = "0")
    {
        return "\"" + name + R"(": {"hide_name": )" + hidden + ", \"bits\": [" + bits + "], \"attributes\": {" +
               attributes + "}}";
    }
    /// The name that bit 2 has and the others, of these names.
    static std::string namesOf(const std::vector<std::string> &names, const std::string &modules = "")
    {
        std::string netNames;
        for (const std::string &name : names) {
            netNames += (netNames.empty() ? "" : ", ") + net(name, "2", R"("src": "t.v:1")");
        }
        const Verific::Netlist *top = read(netNames, "", modules);
        std::string line = linesOf(top, "net");
        line = line.substr(4, line.find_first_of(" \n", 4) - 4);
        return line + " " + linesOf(top, "also").substr(5, 1);
    }
};

TEST_F(YosysOtherNames, OfANetAreAllKept)
{
    const Verific::Netlist *top =
        read(net("b", "2", R"("src": "t.v:1")") + "," + net("longer", "2", R"("src": "t.v:2", "keep": 1)") + "," +
             net("$auto$1", "2", R"("src": "t.v:3")", "1"));
    EXPECT_EQ(linesOf(top, "net"), "net b at t.v:1 {keep=1}\n");
    EXPECT_EQ(linesOf(top, "also"), "also d longer   t.v:2  =b\n"
                                    "also h $auto$1   t.v:3  =b\n");
}

TEST_F(YosysOtherNames, OfVectorsNameTheNetsOfTheirBitsInRuns)
{
    const Verific::Netlist *top =
        read(net("a", "2, 3, 4, 5") + "," + net("vector", R"(3, 4, 9, "0", "0", "x", 5, 5)") + "," + net("one", "9") +
             R"(, "up": {"hide_name": 0, "upto": 1, "offset": 4, "bits": [4, 3, 2]})");
    EXPECT_EQ(linesOf(top, "also"), "also d vector 7 0   1:2=a =one 2*0 1*x 3:3=a 3:3=a\n"
                                    "also d up 4 6   2:0=a\n");
}

TEST_F(YosysOtherNames, KeepVectorsWholeThatAreNetsInPart)
{
    const Verific::Netlist *top = read(net("frame", "2, 3, 4") + "," + net("tx", "2"));
    EXPECT_EQ(linesOf(top, "net"), "net frame[1] user-declared=1\n"
                                   "net frame[2] user-declared=1\n"
                                   "net tx user-declared=1\n");
    EXPECT_EQ(linesOf(top, "also"), "also d frame 2 0   =tx 1:2=frame\n");
}

TEST_F(YosysOtherNames, OfConstantsMakeNoNets)
{
    const Verific::Netlist *top = read(net("tied", R"("1", "0")") + "," + net("low", R"("0")"));
    EXPECT_EQ(linesOf(top, "net"), "");
    EXPECT_EQ(linesOf(top, "also"), "also d tied 1 0   1*1 1*0\n"
                                    "also d low     1*0\n");
}

TEST_F(YosysOtherNames, TellWhereTheyStandInTheHierarchy)
{
    const Verific::Netlist *top =
        read(net("x", "2") + "," + net("u_a.u_b.x", "2", R"("hdlname": "u_a u_b x", "src": "t.v:1|b.v:3|t.v:2")") +
             "," + net("$flatten\\\\u_a.\\\\u_b.$auto$7", "2", R"("scopename": "u_a u_b")", "1") + "," +
             net("$other", "2", R"("scopename": "u_a")", "1"));
    EXPECT_EQ(linesOf(top, "also"), "also d u_a.u_b.x   t.v:1|b.v:3|t.v:2 u_a u_b x =x\n"
                                    "also h $flatten\\\\u_a.\\\\u_b.$auto$7    u_a u_b $auto$7 =x\n"
                                    "also h $other    u_a $other =x\n");
}

TEST_F(YosysOtherNames, MayHoldAnyCharacter)
{
    const Verific::Netlist *top = read(net("a=b*c\\td\\\\e\\nf", "2") + "," + net("x", "2"));
    std::vector<std::string> names;
    std::vector<std::string> nets;
    names::readOtherNames(top->GetAttValue(names::OTHER_NAMES), [&](const names::OtherName &name) {
        names.push_back(name.name);
        nets.push_back(name.bits.at(0).net);
    });
    EXPECT_EQ(names, std::vector<std::string>{"a=b*c\td\\e\nf"});
    EXPECT_EQ(nets, std::vector<std::string>{"x"});
}

TEST_F(YosysOtherNames, StayInSavedNetlistsAndCopies)
{
    const Verific::Netlist *top = read(net("a", "2, 3") + "," + net("b", "3, 2"));
    const std::string before = linesOf(top, "also");
    ASSERT_EQ(before, "also d b 1 0   1:0=a\n");
    char file[] = "/tmp/other_names.XXXXXX";
    ASSERT_NE(mkstemp(file), -1);
    ASSERT_NE(top->SaveToFile(file), 0u);
    EXPECT_EQ(linesOf(Verific::Netlist::RestoreFromFile(file), "also"), before);
    std::remove(file);
    const std::unique_ptr<Verific::Netlist> copy(top->Copy(nullptr));
    EXPECT_STREQ(copy->GetAttValue(names::OTHER_NAMES), top->GetAttValue(names::OTHER_NAMES));
}

TEST_F(YosysOtherNames, PreferADeclaredNameToOneThatSynthesisDerived)
{
    constexpr const char *CELLS =
        R"(, "SB_LUT4": {"attributes": {"blackbox": 1}, "ports": {"O": {"direction": "output", "bits": [2]},
                                                                 "I3": {"direction": "input", "bits": [3]}}})";
    EXPECT_EQ(namesOf({"q_SB_LUT4_O_I3", "a_much_longer_name_of_the_user"}, CELLS), "a_much_longer_name_of_the_user s");
    EXPECT_EQ(namesOf({"q_SB_LUT4_O_12_I3", "long_name_of_the_user"}, CELLS), "long_name_of_the_user s");
    EXPECT_EQ(namesOf({"_042_", "long_name_of_the_user"}), "long_name_of_the_user s");
    EXPECT_EQ(namesOf({"_auto_1", "long_name_of_the_user"}), "long_name_of_the_user s");
    EXPECT_EQ(namesOf({"a$SB_IO_IN_$glb_clk", "long_name_of_the_user_abc"}), "long_name_of_the_user_abc s");
    EXPECT_EQ(namesOf({"q_$_DFF_P__Q_D", "long_name_of_the_user"}), "long_name_of_the_user s");
}

TEST_F(YosysOtherNames, ThatOnlyResembleDerivedOnesAreTheUsers)
{
    constexpr const char *CELLS =
        R"(, "FIFO": {"attributes": {"blackbox": 1}, "ports": {"full": {"direction": "output", "bits": [2]}}})";
    for (const char *name :
         {"rx_FIFO_full", "u_FIFO_full_q", "my_SB_LUT4", "x_SB_LUT4_O", "_1", "__", "a$b", "x_auto_"}) {
        EXPECT_EQ(namesOf({name, "a_much_longer_name"}, CELLS), std::string(name) + " d") << name;
    }
}

TEST_F(YosysOtherNames, AreHiddenWhereTheFileHidesThemAndNotForALeadingDollar)
{
    const Verific::Netlist *top =
        read(net("$esc", "2", R"("src": "t.v:4")") + "," + net("_secret", "3", R"("src": "t.v:5")", "1"));
    EXPECT_EQ(linesOf(top, "net"), "net $esc at t.v:4\n"
                                   "net _secret\n");
}

TEST_F(YosysOtherNames, DerivedOnesHaveNoPositionButTellWhereTheyComeFrom)
{
    EXPECT_EQ(linesOf(read(net("_042_", "2", R"("src": "t.v:5.1-5.2")")), "net"), "net _042_ {src=t.v:5.1-5.2}\n");
}

TEST(YosysUserModuleName, ShowsTheParameters)
{
    const auto nameOf = [](const char *name, const std::vector<std::pair<std::string, std::string>> &parameters = {}) {
        const yosys::UserModuleName result = yosys::userModuleName(name, parameters);
        return result.module + " " + result.text;
    };
    EXPECT_EQ(nameOf("$paramod\\cdc_sync\\WIDTH=s32'00000000000000000000000000000010"), "cdc_sync cdc_sync(WIDTH=2)");
    EXPECT_EQ(nameOf("$paramod\\m\\A=s32'11111111111111111111111111111110\\B=4'1111"), "m m(A=-2,B=15)");
    EXPECT_EQ(nameOf("$paramod\\m\\S=t16'0100100001101001"), "m m(S=\"Hi\")");
    EXPECT_EQ(nameOf("$paramod\\m\\M=32'10000000000000000000000000000001"), "m m(M=0x80000001)");
    EXPECT_EQ(nameOf("$paramod\\m\\X=4'01xz"), "m m(X=4'b01xz)");
    EXPECT_EQ(nameOf("$paramod$0123\\fifo", {{"DEPTH", "00000000000000000000000000010000"}, {"KIND", "fast"}}),
              "fifo fifo(DEPTH=16,KIND=\"fast\")");
    EXPECT_EQ(nameOf("fifo", {{"DEPTH", "1"}}), " ");
    EXPECT_EQ(nameOf("$paramod"), " ");
    EXPECT_EQ(nameOf("$abc"), " ");
}

class YosysFlattenedPositions : public ReaderTest {};

TEST_F(YosysFlattenedPositions, OfNetsAreTheirDeclarations)
{
    // As yosys orders the ranges of nets that came through one, two and three levels.
    const Verific::Netlist *top = readModules(R"("top": {"netnames": {
        "a": {"hide_name": 0, "bits": [2], "attributes": {"hdlname": "u1 a", "src": "u1.v:1|own.v:9"}},
        "b": {"hide_name": 0, "bits": [3], "attributes": {"hdlname": "u1 u2 b", "src": "u1.v:1|own.v:9|u2.v:2"}},
        "c": {"hide_name": 0, "bits": [4],
              "attributes": {"src": "u1.v:1|u3.v:3|own.v:9|u2.v:2", "hdlname": "u1 u2 u3 c"}},
        "d": {"hide_name": 0, "bits": [5], "attributes": {"src": "u1.v:1|u2.v:2|own.v:9"}}}})");
    EXPECT_EQ(linesOf(top, "net"), "net a at own.v:9 {hdlname=u1 a, src=u1.v:1|own.v:9}\n"
                                   "net b at own.v:9 {hdlname=u1 u2 b, src=u1.v:1|own.v:9|u2.v:2}\n"
                                   "net c at own.v:9 {hdlname=u1 u2 u3 c, src=u1.v:1|u3.v:3|own.v:9|u2.v:2}\n"
                                   "net d at own.v:9 {src=u1.v:1|u2.v:2|own.v:9}\n");
}

TEST_F(YosysFlattenedPositions, OfInstancesAreTheirInstantiations)
{
    const Verific::Netlist *top = readModules(R"("top": {"attributes": {"top": 1}, "cells": {
        "u1.u2.ram": {"hide_name": 0, "type": "sub",
                      "attributes": {"hdlname": "u1 u2 ram", "src": "u1.v:1|own.v:9|u2.v:2"}},
        "q_SB_DFF_Q": {"hide_name": 0, "type": "sub", "attributes": {"src": "own.v:9|ff_map.v:2"}}}}, "sub": {})");
    EXPECT_EQ(linesOf(top, "u1"), "u1.u2.ram: work/sub () at own.v:9 {hdlname=u1 u2 ram, src=u1.v:1|own.v:9|u2.v:2}\n");
    EXPECT_EQ(linesOf(top, "q_"), "q_SB_DFF_Q: work/sub () at own.v:9 {src=own.v:9|ff_map.v:2}\n");
}

class YosysAnnotations : public ReaderTest {};

TEST_F(YosysAnnotations, AreNoCells)
{
    for (const char *type : {"$scopeinfo", "$specify2", "$specify3", "$specrule", "$print", "$check", "$assert",
                             "$assume", "$live", "$fair", "$cover"}) {
        Verific::Libset::Reset();
        const Verific::Netlist *top =
            readModules(R"("top": {"netnames": {"a": {"bits": [2]}}, "cells": {"x": {"type": ")" + std::string(type) +
                        R"(", "parameters": {"TYPE": "module"}, "attributes": {}, "port_directions": {"A": "input"},
                            "connections": {"A": [2, "1"]}}}})");
        EXPECT_EQ(print(top), "work/top\nnet a\n") << type;
    }
}

class YosysTopByUserName : public ReaderTest {
  protected:
    static constexpr const char *TWO = R"("top": {},
        "$paramod\\fifo\\W=s32'00000000000000000000000000000010": {},
        "$paramod\\fifo\\W=s32'00000000000000000000000000000100": {}, "$paramod$12\\ram": {})";
    static std::string topOf(const char *wanted)
    {
        Verific::Libset::Reset();
        return readModules(TWO, {wanted, {}})->CellBaseName();
    }
};

TEST_F(YosysTopByUserName, IsFoundWhenItIsTheOnlyOne)
{
    EXPECT_EQ(topOf("ram"), "$paramod$12\\ram");
    EXPECT_EQ(topOf("fifo(W=4)"), "$paramod\\fifo\\W=s32'00000000000000000000000000000100");
}

TEST_F(YosysTopByUserName, IsRefusedWithTheCandidatesWhenThereAreSeveral)
{
    try {
        topOf("fifo");
        FAIL();
    } catch (const yosys::ReadError &error) {
        EXPECT_STREQ(error.what(),
                     "design.json: several modules were made from 'fifo', which was asked for as the top: "
                     "'fifo(W=2)', 'fifo(W=4)'");
    }
}

} // namespace
} // namespace yosystest
