#include "clock/VisitedPairs.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <vector>

namespace kvr::netlistdb {
namespace {

InstanceNet pairAt(std::uintptr_t instance, std::uintptr_t net)
{
    return {reinterpret_cast<IVDBInstance *>(instance), reinterpret_cast<IVDBNet *>(net)};
}

TEST(VisitedPairs, AgreesWithAnOrderedSetInQueriesOfEverySize)
{
    std::mt19937 random(1);
    VisitedPairs visited; // one object for all queries, as a database has it
    for (const unsigned size : {0U, 1U, 12U, 13U, 14U, 200U, 5U, 13U, 10'000U, 12U, 4'096U, 4'097U, 3U, 0U}) {
        visited.clear();
        ASSERT_TRUE(visited.empty());
        std::set<InstanceNet> expected;
        std::vector<InstanceNet> inOrder;
        while (expected.size() < size) {
            const InstanceNet pair = pairAt(random() % 3 * 8, random() % (size * 2) * 8);
            const bool isNew = expected.insert(pair).second;
            ASSERT_EQ(visited.contains(pair), !isNew);
            ASSERT_EQ(visited.insert(pair), isNew);
            if (isNew) {
                inOrder.push_back(pair);
            }
        }
        for (unsigned round = 0; round < 100; ++round) {
            const InstanceNet pair = pairAt(random() % 4 * 8, random() % (size * 2 + 1) * 8);
            ASSERT_EQ(visited.contains(pair), expected.count(pair) == 1);
        }
        ASSERT_EQ(std::vector<InstanceNet>(visited.begin(), visited.end()), inOrder);
        ASSERT_EQ(visited.empty(), size == 0);
    }
}

} // namespace
} // namespace kvr::netlistdb
