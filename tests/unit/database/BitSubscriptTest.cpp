#include "database/BitSubscript.h"

#include "tests/support/Throws.h"

#include <gtest/gtest.h>

#include <random>
#include <regex>
#include <stdexcept>
#include <string>

namespace kvr::netlistdb {
namespace {

/// "base|index", "none", or "out of range".
std::string recognised(const std::string &name)
{
    try {
        const auto subscript = bitSubscript(name);
        return subscript.has_value() ? name.substr(0, subscript->baseLength) + "|" + std::to_string(subscript->index)
                                     : "none";
    } catch (const std::out_of_range &error) {
        return std::string("out of range: ") + error.what();
    }
}

/// The same with the expression that the rule is written in.
std::string matched(const std::string &name)
{
    static const std::regex SUBSCRIPT(R"(\[([0-9]+)\]$)");
    std::smatch match;
    if (!std::regex_search(name, match, SUBSCRIPT)) {
        return "none";
    }
    try {
        const int index = std::stoi(match[1].str());
        return match.prefix().str() + "|" + std::to_string(index);
    } catch (const std::out_of_range &error) {
        return std::string("out of range: ") + error.what();
    }
}

TEST(BitSubscript, IsDecimalDigitsInBracketsAtTheVeryEnd)
{
    EXPECT_EQ(recognised("data[7]"), "data|7");
    EXPECT_EQ(recognised("m[3].q"), "none");
    EXPECT_EQ(recognised("m[3].q[1]"), "m[3].q|1");
    EXPECT_EQ(recognised("a[1][2]"), "a[1]|2");
    EXPECT_EQ(recognised("data"), "none");
    EXPECT_EQ(recognised(""), "none");
}

TEST(BitSubscript, MayHaveAnEmptyBase)
{
    EXPECT_EQ(recognised("[0]"), "|0");
}

TEST(BitSubscript, IgnoresLeadingZeros)
{
    EXPECT_EQ(recognised("m[03]"), "m|3");
    EXPECT_EQ(recognised("m[00000000000000000000000001]"), "m|1");
}

TEST(BitSubscript, NeedsDigitsAndBothBrackets)
{
    for (const char *name : {"m[]", "m[a]", "m[1a]", "m[-1]", "m[+1]", "m[ 1]", "m[1 ]", "m1]", "1]", "]", "m[1",
                             "m[1] ", "m[1]]", "m[0x1]", "m(1)"}) {
        EXPECT_EQ(recognised(name), "none") << name;
    }
    EXPECT_EQ(recognised("m[[1]"), "m[|1");
}

TEST(BitSubscript, EndsOnlyAtTheEndOfTheNameNotAtALineBreak)
{
    EXPECT_EQ(recognised("m[1]\n"), "none");
    EXPECT_EQ(recognised("m[1]\nq"), "none");
    EXPECT_EQ(recognised("m\n[1]"), "m\n|1");
}

TEST(BitSubscript, ThrowsBeyondASigned32BitIndex)
{
    EXPECT_EQ(recognised("m[2147483647]"), "m|2147483647");
    EXPECT_EQ(testsupport::messageOf<std::out_of_range>([] { bitSubscript("m[2147483648]"); }), "stoi");
    EXPECT_EQ(testsupport::messageOf<std::out_of_range>([] { bitSubscript("m[99999999999999999999999999999999]"); }),
              "stoi");
}

TEST(BitSubscript, AgreesWithTheRegularExpressionOnRandomNames)
{
    std::mt19937 random(20240);
    const std::string alphabet = "[[]]0012389a\n_";
    for (int round = 0; round < 20000; ++round) {
        std::string name;
        for (std::size_t length = random() % 12; length > 0; --length) {
            name += alphabet[random() % alphabet.size()];
        }
        if (random() % 3 == 0) {
            name += "[" + std::to_string(random() % 2 != 0 ? random() : random() % 20) + "]";
        }
        ASSERT_EQ(recognised(name), matched(name)) << "name: " << name;
    }
}

} // namespace
} // namespace kvr::netlistdb
