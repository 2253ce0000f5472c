#include <DataBase.h>

#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace {

using namespace Verific;

std::string attributesOf(const DesignObj *object)
{
    std::string text;
    MapIter iter;
    Att *att = nullptr;
    FOREACH_ATTRIBUTE (object, iter, att) {
        text += std::string(att->Key()) + "=" + (att->Value() != nullptr ? att->Value() : "null") + " ";
    }
    return text;
}

TEST(DesignObj, TellsANullNameFromAnEmptyOne)
{
    EXPECT_EQ(Net(nullptr).Name(), nullptr);
    EXPECT_STREQ(Net("").Name(), "");
    EXPECT_STREQ(Net("n").Name(), "n");
}

TEST(DesignObj, CopiesItsName)
{
    std::string name = "before";
    const Net net(name.c_str());
    name = "after!";
    EXPECT_STREQ(net.Name(), "before");
}

TEST(DesignObj, StartsWithoutPositionFlagsAndAttributes)
{
    const Net net("n");
    EXPECT_FALSE(net.Linefile());
    EXPECT_FALSE(net.IsProtected());
    EXPECT_FALSE(net.IsUserDeclared());
    EXPECT_EQ(attributesOf(&net), "");
    EXPECT_EQ(net.GetAtt("x"), nullptr);
}

TEST(DesignObj, KeepsPositionAndFlagsApart)
{
    Net net("n");
    net.SetLinefile(77);
    net.SetProtected(4);
    EXPECT_EQ(net.Linefile(), 77u);
    EXPECT_TRUE(net.IsProtected());
    EXPECT_FALSE(net.IsUserDeclared());
    net.SetUserDeclared(1);
    net.SetProtected(0);
    EXPECT_FALSE(net.IsProtected());
    EXPECT_TRUE(net.IsUserDeclared());
}

TEST(DesignObj, KeepsAttributesInOrderOfAddition)
{
    Net net("n");
    net.AddAtt(new Att("b", "1"));
    net.AddAtt(new Att("a", nullptr));
    net.AddAtt(new Att("b", "2"));
    net.AddAtt(nullptr);
    EXPECT_EQ(attributesOf(&net), "b=1 a=null b=2 ");
    EXPECT_EQ(net.attributeCount(), 3u);
}

TEST(DesignObj, AnswersTheFirstAttributeOfAKey)
{
    Net net("n");
    net.AddAtt(new Att("k", "1"));
    net.AddAtt(new Att("k", "2"));
    net.AddAtt(new Att("bare", nullptr));
    net.AddAtt(new Att(nullptr, "keyless"));
    EXPECT_STREQ(net.GetAttValue("k"), "1");
    EXPECT_EQ(net.GetAttValue("bare"), nullptr);
    ASSERT_NE(net.GetAtt("bare"), nullptr);
    EXPECT_STREQ(net.GetAtt("bare")->Key(), "bare");
    EXPECT_EQ(net.GetAtt("other"), nullptr);
    EXPECT_EQ(net.GetAttValue("other"), nullptr);
    EXPECT_EQ(net.GetAtt(nullptr), nullptr);
}

TEST(DesignObj, LoopsOverNothingWhenNull)
{
    EXPECT_EQ(attributesOf(nullptr), "");
}

TEST(DesignObj, SharesAttributesWithACopyUntilOneSideAddsOne)
{
    Netlist original("v");
    original.AddAtt(new Att("k", "1"));
    const std::unique_ptr<Netlist> copy(original.Copy(nullptr));
    EXPECT_EQ(copy->GetAtt("k"), original.GetAtt("k"));
    copy->AddAtt(new Att("copy", "2"));
    EXPECT_EQ(attributesOf(&original), "k=1 ");
    EXPECT_EQ(attributesOf(copy.get()), "k=1 copy=2 ");
    original.AddAtt(new Att("original", "3"));
    EXPECT_EQ(attributesOf(&original), "k=1 original=3 ");
    EXPECT_EQ(attributesOf(copy.get()), "k=1 copy=2 ");
}

} // namespace
