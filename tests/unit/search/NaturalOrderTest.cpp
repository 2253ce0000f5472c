#include "search/NaturalOrder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <random>
#include <string>
#include <vector>

namespace kvr::netlistdb {
namespace {

TEST(NaturalOrder, ComparesNumbersByValue)
{
    EXPECT_EQ(naturalCompareNoCase("net2", "net10"), -1);
    EXPECT_EQ(naturalCompareNoCase("net10", "net2"), 1);
    EXPECT_EQ(naturalCompareNoCase("net10", "net10"), 0);
    EXPECT_EQ(naturalCompareNoCase("a99b", "a100a"), -1);
    EXPECT_EQ(naturalCompareNoCase("a123", "a132"), -1);
    EXPECT_EQ(naturalCompareNoCase("99999999999999999999999998", "99999999999999999999999999"), -1);
}

TEST(NaturalOrder, ComparesLettersWithoutCase)
{
    EXPECT_EQ(naturalCompareNoCase("Net_a", "net_A"), 0);
    EXPECT_EQ(naturalCompareNoCase("a", "B"), -1);
    EXPECT_EQ(naturalCompareNoCase("_", "a"), 1) << "letters count as upper case";
}

TEST(NaturalOrder, ComparesNumbersWithALeadingZeroDigitByDigit)
{
    EXPECT_EQ(naturalCompareNoCase("a01", "a1"), -1);
    EXPECT_EQ(naturalCompareNoCase("a1", "a01"), 1);
    EXPECT_EQ(naturalCompareNoCase("a010", "a09"), -1);
    EXPECT_EQ(naturalCompareNoCase("a0", "a00"), -1);
    EXPECT_EQ(naturalCompareNoCase("a9", "a010"), 1);
    EXPECT_EQ(naturalCompareNoCase("0", "0"), 0);
}

TEST(NaturalOrder, ComparesOnlyTheHeadOfARunForAZero)
{
    EXPECT_EQ(naturalCompareNoCase("105", "16"), 1);
    EXPECT_EQ(naturalCompareNoCase("100", "100a"), -1);
}

TEST(NaturalOrder, LeavesOutWhiteSpace)
{
    EXPECT_EQ(naturalCompareNoCase(" \t\n\v\f\ra  b", "ab "), 0);
    EXPECT_EQ(naturalCompareNoCase("1 2", "12"), -1) << "white space ends a number";
    EXPECT_EQ(naturalCompareNoCase("   ", ""), 0);
}

TEST(NaturalOrder, PutsTheShorterNameFirst)
{
    EXPECT_EQ(naturalCompareNoCase("", "a"), -1);
    EXPECT_EQ(naturalCompareNoCase("ab", "a"), 1);
    EXPECT_EQ(naturalCompareNoCase("", ""), 0);
}

TEST(NaturalOrder, ComparesBytesAsSigned)
{
    EXPECT_EQ(naturalCompareNoCase("\x80", "a"), -1);
    EXPECT_EQ(naturalCompareNoCase("\xFF", "\x80"), 1);
    EXPECT_EQ(naturalCompareNoCase("a\xC3", "a"), -1) << "even before the end of a name";
    EXPECT_EQ(naturalCompareNoCase("9", "\xB2"), 1);
}

/// The comparison written down position by position.
int referenceCompare(const std::string &left, const std::string &right)
{
    const auto at = [](const std::string &s, std::size_t i) { return i < s.size() ? s[i] : '\0'; };
    const auto digit = [](char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; };
    const auto space = [](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; };
    std::size_t i = 0;
    std::size_t j = 0;
    for (;; ++i, ++j) {
        while (space(at(left, i))) {
            ++i;
        }
        while (space(at(right, j))) {
            ++j;
        }
        if (digit(at(left, i)) && digit(at(right, j))) {
            const bool fraction = at(left, i) == '0' || at(right, j) == '0';
            int bias = 0;
            for (std::size_t k = 0;; ++k) {
                const char a = at(left, i + k);
                const char b = at(right, j + k);
                if (!digit(a) || !digit(b)) {
                    bias = digit(a) ? 1 : (digit(b) ? -1 : bias);
                    break;
                }
                if (a != b && bias == 0) {
                    bias = a < b ? -1 : 1;
                    if (fraction) {
                        break;
                    }
                }
            }
            if (bias != 0) {
                return bias;
            }
        }
        if (at(left, i) == '\0' && at(right, j) == '\0') {
            return 0;
        }
        const auto a = static_cast<signed char>(std::toupper(static_cast<unsigned char>(at(left, i))));
        const auto b = static_cast<signed char>(std::toupper(static_cast<unsigned char>(at(right, j))));
        if (a != b) {
            return a < b ? -1 : 1;
        }
    }
}

std::string hostileName(std::mt19937 &random)
{
    const std::string alphabet = "001129aAzZ_[/ \t\x01\x7F\x80\xA0\xFF";
    std::string name(random() % 12, ' ');
    std::generate(name.begin(), name.end(), [&] { return alphabet[random() % alphabet.size()]; });
    return name;
}

TEST(NaturalOrder, AgreesWithTheReferenceOnHostileNames)
{
    std::mt19937 random(1);
    for (int i = 0; i < 200000; ++i) {
        const std::string a = hostileName(random);
        const std::string b = random() % 4 == 0 ? a + hostileName(random) : hostileName(random);
        ASSERT_EQ(naturalCompareNoCase(a.c_str(), b.c_str()), referenceCompare(a, b))
            << testing::PrintToString(a) << " and " << testing::PrintToString(b);
        ASSERT_EQ(naturalCompareNoCase(b.c_str(), a.c_str()), referenceCompare(b, a));
    }
}

TEST(NaturalOrder, SortsHostileNames)
{
    std::mt19937 random(2);
    for (const std::size_t count : {0U, 1U, 2U, 3U, 17U, 1000U, 4096U, 10001U}) {
        std::vector<std::string> names(count);
        std::generate(names.begin(), names.end(), [&] { return hostileName(random); });
        std::vector<const std::string *> order;
        for (const std::string &name : names) {
            order.push_back(&name);
        }
        std::stable_sort(order.begin(), order.end(), [](const std::string *a, const std::string *b) {
            return naturalCompareNoCase(a->c_str(), b->c_str()) < 0;
        });
        for (std::size_t i = 1; i < order.size(); ++i) {
            const int compared = referenceCompare(*order[i - 1], *order[i]);
            ASSERT_LE(compared, 0);
            ASSERT_TRUE(compared < 0 || order[i - 1] < order[i]) << "equal names keep their order";
        }
    }
}

} // namespace
} // namespace kvr::netlistdb
