#include "search/ModuleMemo.h"

#include "tests/support/MockItems.h"

#include <gtest/gtest.h>

#include <deque>
#include <map>
#include <random>

namespace kvr::netlistdb {
namespace {

using testsupport::MockNetlist;

TEST(ModuleMemo, AgreesWithAMapWhateverComesInWhichOrder)
{
    std::mt19937 random(1);
    std::deque<MockNetlist> netlists;
    for (unsigned i = 0; i < 3000; ++i) {
        netlists.emplace_back("same name", random() % 2 == 0);
    }
    ModuleMemo memo;
    std::map<const IVDBNetlist *, ModuleFacts *> met;
    for (unsigned round = 0; round < 20'000; ++round) {
        const IVDBNetlist *netlist = random() % 50 == 0 ? nullptr : &netlists[random() % (1 + round / 4 % 3000)];
        ModuleFacts &facts = memo.of(netlist);
        ASSERT_EQ(facts.netlist, netlist);
        ASSERT_EQ(facts.isUserDeclared, netlist != nullptr && netlist->isUserDeclared());
        ASSERT_EQ(met.try_emplace(netlist, &facts).first->second, &facts) << "stays where it is";
    }
    EXPECT_GT(met.size(), 2000U);
}

} // namespace
} // namespace kvr::netlistdb
