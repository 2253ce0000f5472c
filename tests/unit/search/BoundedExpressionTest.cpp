#include "search/BoundedExpression.h"

#include "ThreadOfSize.h"
#include "search/ExpressionStack.h"

#include <gtest/gtest.h>

#include <netlistdb/VDBHelper.h>
#include <netlistdb/VDBSearchParam.h>

#include "tests/support/ListIterator.h"
#include "tests/support/MockItems.h"

#include <optional>
#include <random>
#include <string>
#include <vector>

namespace kvr::netlistdb {
namespace {

using testsupport::stackUsed;

constexpr std::size_t large = std::size_t{64} * 1024 * 1024;
constexpr std::size_t medium = std::size_t{512} * 1024;

std::string times(unsigned count, const std::string &text)
{
    std::string all;
    for (; count > 0; --count) {
        all += text;
    }
    return all;
}

/// Runs @p call on a thread with @p bytes of stack; what std::regex_error it ends with, nothing when it returns.
template <typename Call> std::optional<std::regex_constants::error_type> faultOn(std::size_t bytes, Call call)
{
    std::optional<std::regex_constants::error_type> fault;
    stackUsed(bytes, [&] {
        try {
            call();
        } catch (const std::regex_error &error) {
            fault = error.code();
        }
    });
    return fault;
}

constexpr auto STACK = std::regex_constants::error_stack;

TEST(ExpressionStack, BoundsWhatCompilingTakes)
{
    const std::size_t idle = stackUsed(large, [] {});
    for (const std::string &pattern :
         {times(600, "a"), times(600, "a*"), times(600, "\\d"), times(20, "[a-z]"), times(600, "a|"),
          times(300, "(") + "a" + times(300, ")"), times(300, "(?:") + "a" + times(300, ")"),
          times(300, "(?=") + "a" + times(300, ")"), times(300, "(?!") + "a" + times(300, ")"),
          times(300, "(a|b") + times(300, ")*"), times(200, "(a(b)c") + times(200, ")"), times(300, "("),
          times(200, "(\\)[)]\\c)[[:alpha:])]") + "a" + times(200, ")"), times(300, "()")}) {
        for (const auto options : {std::regex::ECMAScript, std::regex::icase}) {
            const std::size_t used = stackUsed(large, [&] {
                try {
                    const std::regex expression(pattern, options);
                } catch (const std::regex_error &) {
                    // Where it ends is as deep as where it is.
                }
            });
            EXPECT_LT(used - idle, stackReserve + stackToCompile(pattern)) << pattern.substr(0, 20);
        }
    }
}

TEST(ExpressionStack, GrowsWithWhatIsOpenAtATimeOnly)
{
    EXPECT_EQ(stackToCompile(times(500, "(a)|")), stackToCompile("(a)|"));
    EXPECT_EQ(stackToCompile(times(500, "abc|")), stackToCompile("abc|"));
    EXPECT_EQ(stackToCompile("[()((]a"), stackToCompile("ab"));
    EXPECT_EQ(stackToCompile("[[:(:](\\](]a"), stackToCompile("ab"));
    EXPECT_EQ(stackToCompile("\\(\\c(a"), stackToCompile("abc"));
    EXPECT_LT(stackToCompile("(a(b)c)d"), stackToCompile("(a(b(c)d))"));
}

TEST(ExpressionStack, BoundsWhatASearchTakes)
{
    const std::size_t idle = stackUsed(large, [] {});
    const std::string text = times(300, "a");
    for (const std::string &pattern :
         {times(300, "a"), std::string(".*b"), std::string(".*?b"), std::string("(a)*b"), std::string("(a|b)*c"),
          std::string("[a]*b"), std::string("(?:(a|b)|c)*d"), std::string("(a)(\\1)*b"), std::string("((((a))))*b"),
          times(20, "^") + ".*b", times(4, "b??") + "(a|\\b)*b"}) {
        const std::regex expression(pattern);
        const std::size_t used = stackUsed(large, [&] { BoundedExpression(expression).isFoundIn(text); });
        EXPECT_LT(used - idle, stackReserve + stackPerPosition(expression) * (text.size() + 1)) << pattern;
    }
}

TEST(ExpressionStack, BoundsWhatASearchTakesWithoutAPosition)
{
    const std::size_t idle = stackUsed(large, [] {});
    for (const std::string &pattern :
         {times(1000, "b|") + "b", times(1000, "b??") + "c", times(200, "(?=") + "b" + times(200, ")"),
          times(200, "(?!") + "b" + times(200, ")")}) {
        std::regex expression;
        stackUsed(large, [&] { expression.assign(pattern); });
        EXPECT_GT(stackBetweenPositions(expression), 0U);
        const std::size_t used = stackUsed(large, [&] { BoundedExpression(expression).isFoundIn("a"); });
        EXPECT_LT(used - idle, stackReserve + stackBetweenPositions(expression)) << pattern.substr(0, 20);
    }
}

TEST(BoundedExpression, RefusesToCompileWhatWouldEndTheStack)
{
    for (const std::string &pattern : {times(20'000, "(") + times(20'000, ")"), times(90'000, "a"),
                                       times(20'000, "(?="), times(20'000, "(a|") + times(20'000, ")*")}) {
        const auto fault = faultOn(medium, [&] { compileBounded(pattern, std::regex::ECMAScript); });
        EXPECT_EQ(fault, STACK) << pattern.substr(0, 20);
    }
    EXPECT_EQ(faultOn(medium, [] { compileBounded("(top|u_core)/(data|stage)_[a-z0-9_]*q$", std::regex::icase); }),
              std::nullopt);
}

TEST(BoundedExpression, EndsASearchBeforeTheStackEnds)
{
    const std::string longText = times(64'000, "a");
    for (const std::string &pattern :
         {std::string(".*[y]"), std::string("(a|b)*$"), std::string("(?=.*y)"), std::string("(?:a+?)*?y"),
          std::string("(a)(\\1)*y"), times(300, "y|") + ".*y"}) {
        const std::regex expression(pattern);
        EXPECT_EQ(faultOn(medium, [&] { BoundedExpression(expression).isFoundIn(longText); }), STACK) << pattern;
        EXPECT_EQ(faultOn(medium, [&] { BoundedExpression(expression).matches(longText); }), STACK) << pattern;
    }
}

TEST(BoundedExpression, EndsASearchInALongChainOfAlternativesBeforeTheStackEnds)
{
    std::regex expression;
    stackUsed(large, [&] { expression.assign(times(1500, "y|") + "y"); });
    EXPECT_EQ(faultOn(medium, [&] { BoundedExpression(expression).isFoundIn("a"); }), STACK);
    stackUsed(large, [&] { expression.assign(times(1500, "y??") + "z"); });
    EXPECT_EQ(faultOn(medium, [&] { BoundedExpression(expression).isFoundIn("a"); }), STACK);
}

TEST(BoundedExpression, FindsTheSameOnStacksOfAnySize)
{
    const std::regex expression("(a|b)*c");
    const std::string text = times(400, "ab") + "c";
    for (std::size_t kilobytes = 128; kilobytes <= 8192; kilobytes += kilobytes / 4 / 64 * 64 + 64) {
        bool isFound = false;
        const auto fault = faultOn(kilobytes * 1024, [&] { isFound = BoundedExpression(expression).isFoundIn(text); });
        EXPECT_TRUE(fault == STACK || isFound) << kilobytes;
        EXPECT_TRUE(kilobytes < 4096 || !fault) << kilobytes;
    }
}

TEST(BoundedExpression, AgreesWithTheStandardLibraryOnBothWays)
{
    std::mt19937 random(1);
    const auto text = [&random](const std::string &letters, unsigned longest) {
        std::string made(random() % (longest + 1), ' ');
        for (char &c : made) {
            c = letters[random() % letters.size()];
        }
        return made;
    };
    unsigned found = 0;
    for (unsigned round = 0; round < 20'000; ++round) {
        const std::string pattern = text("aabb01.^$*+?()|[]\\bdw1=!:", 8);
        std::optional<std::regex> expression;
        try {
            expression.emplace(pattern, random() % 2 == 0 ? std::regex::icase : std::regex::ECMAScript);
        } catch (const std::regex_error &) {
            continue;
        }
        // Where nothing is known of the stack every text goes the checked way: the second expression takes it.
        BoundedExpression plain(*expression);
        BoundedExpression checked(*expression, BoundedExpression::Way::Checked);
        for (unsigned i = 0; i < 3; ++i) {
            const std::string name = text("abAB01_/", 8);
            const bool isFound = std::regex_search(name, *expression, std::regex_constants::match_any);
            const bool isMatch = std::regex_match(name, *expression);
            ASSERT_EQ(plain.isFoundIn(name), isFound) << pattern << " in " << name;
            ASSERT_EQ(checked.isFoundIn(name), isFound) << pattern << " in " << name;
            ASSERT_EQ(plain.matches(name), isMatch) << pattern << " and " << name;
            ASSERT_EQ(checked.matches(name), isMatch) << pattern << " and " << name;
            found += isFound ? 1 : 0;
        }
    }
    EXPECT_GT(found, 5000U);
}

TEST(BoundedExpression, KnowsAnExpressionWithoutPattern)
{
    const std::regex expression;
    BoundedExpression bounded(expression);
    EXPECT_EQ(bounded.isFoundIn("a"), std::regex_search("a", expression));
    EXPECT_EQ(bounded.matches(""), std::regex_match("", expression));
}

/// A matcher over one item with a long name, on a thread with little stack.
template <typename Item, typename Match> auto faultOf(Item &item, const std::string &pattern, Match match)
{
    const std::regex expression(pattern);
    return faultOn(medium, [&] {
        testsupport::ListIterator iterator({&item});
        match(&iterator, expression);
    });
}

TEST(Matchers, ThrowInPlaceOfEndingTheStack)
{
    const std::string name = times(64'000, "a");
    testsupport::MockInstance instance(name, nullptr, nullptr);
    testsupport::MockNetlist netlist(name, true);
    testsupport::MockPort port(name);
    testsupport::MockNet net({name, true, 1, ITEM_NET});
    EXPECT_EQ(faultOf(instance, ".*[y]", VDBHelper::matchInstanceRegex), STACK);
    EXPECT_EQ(faultOf(netlist, ".*[y]", VDBHelper::matchNetlistRegex), STACK);
    EXPECT_EQ(faultOf(port, ".*[y]", VDBHelper::matchPortRegex), STACK);
    EXPECT_EQ(faultOf(net, ".*[y]",
                      [&](TreeIterator *iterator, const std::regex &expression) {
                          iterator->setContext(&instance);
                          return VDBHelper::matchNetRegex(iterator, expression);
                      }),
              STACK);
}

TEST(Matchers, ThrowInPlaceOfCompilingWhatWouldEndTheStack)
{
    testsupport::MockInstance instance("i", nullptr, nullptr);
    for (const std::string &pattern : {times(20'000, "(") + times(20'000, ")"), times(90'000, "a")}) {
        const auto fault = faultOn(medium, [&] {
            testsupport::ListIterator iterator({&instance});
            VDBSearchParam param;
            param.filterByName = true;
            param.useRegex = true;
            param.pattern = pattern;
            VDBHelper::matchParam(&iterator, param);
        });
        EXPECT_EQ(fault, STACK);
    }
}

} // namespace
} // namespace kvr::netlistdb
