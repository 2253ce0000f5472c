#include "search/RequiredText.h"

#include <gtest/gtest.h>

namespace kvr::netlistdb {
namespace {

TEST(RequiredText, IsThePatternItselfWhenNothingInItIsSpecial)
{
    EXPECT_EQ(requiredText("clk"), "clk");
    EXPECT_EQ(requiredText("top/u_core/clk-1 <x>"), "top/u_core/clk-1 <x>");
    EXPECT_EQ(requiredText(""), "");
}

TEST(RequiredText, IsTheLongestRunBetweenGaps)
{
    EXPECT_EQ(requiredText("^clk$"), "clk");
    EXPECT_EQ(requiredText("a.clk_.*b"), "clk_");
    EXPECT_EQ(requiredText("u_core[0-9]+/data_[a-z_]*x"), "u_core");
    EXPECT_EQ(requiredText("a[^b]longer"), "longer");
    EXPECT_EQ(requiredText(".*"), "");
}

TEST(RequiredText, HoldsNoCharacterThatAQuantifierCanDrop)
{
    EXPECT_EQ(requiredText("abc?"), "ab");
    EXPECT_EQ(requiredText("abc*d"), "ab");
    EXPECT_EQ(requiredText("abc{0,1}"), "ab");
    EXPECT_EQ(requiredText("abc+??de"), "ab");
    EXPECT_EQ(requiredText("abc+{0}def"), "def");
    EXPECT_EQ(requiredText("a*?bc"), "bc");
    EXPECT_EQ(requiredText("\\[*3"), "3");
    EXPECT_EQ(requiredText(".{3}ab"), "ab");
}

TEST(RequiredText, TakesEscapedPunctuationAsItStands)
{
    EXPECT_EQ(requiredText("data\\[3\\]"), "data[3]");
    EXPECT_EQ(requiredText("a\\.b\\$\\/c\\\\"), "a.b$/c\\");
}

TEST(RequiredText, IsEmptyForWhatItDoesNotKnow)
{
    for (const char *pattern : {"abc|d",          "(abc)",    "abc(?:d)", "abc\\d", "abc\\b", "abc\\x41", "abc\\",
                                "abc[[:alpha:]]", "abc[\\]]", "abc[]d]",  "abc[",   "abc[a",  "abc[]",    "abc]",
                                "abc}",           "abc{x}",   "abc.{1",   "+abc",   "*",      "abc\x80",  "abc\n"}) {
        EXPECT_EQ(requiredText(pattern), "") << pattern;
    }
    EXPECT_EQ(requiredText(std::string("abc\0d", 5)), "");
}

} // namespace
} // namespace kvr::netlistdb
