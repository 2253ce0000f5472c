// The text that keeps the other names of nets: what is written comes back, and what is damaged is passed over.

#include "platform/names/OtherNames.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kvr::netlistdb::names {
namespace {

std::vector<OtherName> namesIn(std::string_view text)
{
    std::vector<OtherName> names;
    readOtherNames(text, [&](const OtherName &name) { names.push_back(name); });
    return names;
}

TEST(OtherNames, ComeBackAsTheyWereWritten)
{
    OtherNamesText text;
    text.begin(NameKind::Declared, "tab\tback\\slash\nline", 4, 0, "t.v:1", "u_a x");
    text.addNet("n=1*2");
    text.addVectorBit("v", 3);
    text.addVectorBit("v", 2);
    text.addConstant('x');
    text.addConstant('x');
    text.end();
    text.begin(NameKind::Hidden, "bit", "", "");
    text.addNet("n");
    text.end();

    const std::vector<OtherName> names = namesIn(text.text());
    ASSERT_EQ(names.size(), 2u);
    EXPECT_EQ(names[0].kind, NameKind::Declared);
    EXPECT_EQ(names[0].name, "tab\tback\\slash\nline");
    EXPECT_TRUE(names[0].isVector);
    EXPECT_EQ(names[0].left, 4);
    EXPECT_EQ(names[0].right, 0);
    EXPECT_EQ(names[0].src, "t.v:1");
    EXPECT_EQ(names[0].hdlName, "u_a x");
    ASSERT_EQ(names[0].bits.size(), 3u);
    EXPECT_EQ(names[0].bits[0].kind, NetRun::Kind::Net);
    EXPECT_EQ(names[0].bits[0].net, "n=1*2");
    EXPECT_EQ(names[0].bits[1].kind, NetRun::Kind::Vector);
    EXPECT_EQ(names[0].bits[1].first, 3);
    EXPECT_EQ(names[0].bits[1].last, 2);
    EXPECT_EQ(names[0].bits[1].count, 2u);
    EXPECT_EQ(names[0].bits[2].kind, NetRun::Kind::Constant);
    EXPECT_EQ(names[0].bits[2].constant, 'x');
    EXPECT_EQ(names[0].bits[2].count, 2u);
    EXPECT_EQ(names[1].kind, NameKind::Hidden);
    EXPECT_FALSE(names[1].isVector);
    ASSERT_EQ(names[1].bits.size(), 1u);
    EXPECT_EQ(names[1].bits[0].net, "n");
}

TEST(OtherNames, BitsThatTurnBackBeginARunOfTheirOwn)
{
    OtherNamesText text;
    text.begin(NameKind::Derived, "d", 2, 0, "", "");
    for (const int index : {0, 1, 0}) {
        text.addVectorBit("v", index);
    }
    text.end();
    EXPECT_EQ(text.text(), "s\td\t2\t0\t\t\t0:1=v\t0:0=v\n");
}

TEST(OtherNames, LinesThatAreDamagedArePassedOver)
{
    std::string found;
    for (const char *const text :
         {"", "x", "q\tname\t\t\t\t\t=a", "d\tn\t7\t\t\t\t=a", "d\tn\t\t\t\t\ta", "d\tn\t\t\t\t\t*0",
          "d\tn\t\t\t\t\t0*0", "d\tn\t\t\t\t\t1:=a", "d\tn\t\t\t\t\t9999999999*0", "d\tn\t\t\t\t\t99999999*0",
          "d\tn\t\t\t\t\t0:2147483647=a", "\n\n\\", "d\tgood"}) {
        for (const OtherName &name : namesIn(text)) {
            found += name.name;
        }
    }
    EXPECT_EQ(found, "good");
}

TEST(OtherNames, OfFlattenedInstancesHaveTheirLevels)
{
    EXPECT_EQ(hierarchicalName("u_a.x", "u_a x", ""), "u_a x");
    EXPECT_EQ(hierarchicalName("$flatten\\u_a.\\u_b.$auto$7", "", "u_a u_b"), "u_a u_b $auto$7");
    EXPECT_EQ(hierarchicalName("$other", "", "u_a"), "u_a $other");
    EXPECT_EQ(hierarchicalName("x", "", ""), "");
}

} // namespace
} // namespace kvr::netlistdb::names
