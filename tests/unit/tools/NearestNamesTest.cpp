#include "design/NearestNames.h"

#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace kvr::netlistdb::tool {
namespace {

using Names = std::vector<std::string>;

Names nearest(const std::string &wanted, const Names &names)
{
    NearestNames found(wanted);
    for (const std::string &name : names) {
        found.offer(name);
    }
    return found.best();
}

/// Four for a letter that is added, dropped, replaced or swapped with its neighbour, one for its case.
std::size_t costOf(const std::string &a, const std::string &b)
{
    std::vector<std::vector<std::size_t>> cost(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) {
        for (std::size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                cost[i][j] = 4 * (i + j);
                continue;
            }
            const char x = a[i - 1];
            const char y = b[j - 1];
            const std::size_t change = x == y ? 0 : std::tolower(x) == std::tolower(y) ? 1 : 4;
            cost[i][j] = std::min({cost[i - 1][j - 1] + change, cost[i - 1][j] + 4, cost[i][j - 1] + 4});
            if (i > 1 && j > 1 && x == b[j - 2] && y == a[i - 2]) {
                cost[i][j] = std::min(cost[i][j], cost[i - 2][j - 2] + 4);
            }
        }
    }
    return cost[a.size()][b.size()];
}

TEST(NearestNames, ThoseThatAreNearestComeFirst)
{
    EXPECT_EQ(nearest("clk_sis", {"clk_ads", "clk_adc", "clk_sys", "rst_sys", "CLK_SYS"}),
              (Names{"clk_sys", "clk_ads", "CLK_SYS"}))
        << "more than a letter in three is another name";
    EXPECT_EQ(nearest("clk_sys", {"nothing", "like", "it"}), Names());
    EXPECT_EQ(nearest("fifo", {"u_dsp_fifo_in_of_the_input_stage"}), (Names{"u_dsp_fifo_in_of_the_input_stage"}));
}

TEST(NearestNames, NoneIsLeftOutThatIsNearer)
{
    std::mt19937 random(7);
    const auto any = [&random](std::size_t most) {
        std::string name(2 + random() % most, 'a');
        std::generate(name.begin(), name.end(), [&] { return "abAB_0"[random() % 6]; });
        return name;
    };
    for (int round = 0; round < 200; ++round) {
        const std::string wanted = any(9);
        std::set<std::string> names;
        for (int number = 0; number < 60; ++number) {
            names.insert(any(9));
        }
        const std::size_t farthest = std::max<std::size_t>(4, 4 * wanted.size() / 3);
        std::vector<std::pair<std::size_t, std::string>> expected;
        for (const std::string &name : names) {
            const bool holds = wanted.size() >= 3 && name.find(wanted) != std::string::npos;
            const std::size_t cost = costOf(wanted, name);
            if (cost <= farthest || holds) {
                expected.emplace_back(std::min(cost, farthest), name);
            }
        }
        std::sort(expected.begin(), expected.end());
        expected.resize(std::min<std::size_t>(expected.size(), 3));
        Names best;
        std::transform(expected.begin(), expected.end(), std::back_inserter(best),
                       [](const auto &each) { return each.second; });
        EXPECT_EQ(nearest(wanted, Names(names.begin(), names.end())), best) << wanted;
    }
}

} // namespace
} // namespace kvr::netlistdb::tool
