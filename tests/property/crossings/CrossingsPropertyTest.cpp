#include "tests/property/crossings/ReferenceCrossings.h"
#include "tests/support/LibsetGuard.h"

#include <netlistdb/analysis/Crossings.h>
#include <netlistdb/netlistdb.h>

#include <gtest/gtest.h>

#include <algorithm>

using namespace kvr::netlistdb;
using namespace kvr::netlistdb::analysis;

namespace crossings_property_test {
namespace {

/// As ReferenceCrossings::all() writes it.
std::string lineOf(const ClockMap &map, const Crossing &crossing)
{
    std::string pin = crossing.to.pin;
    pin.erase(std::remove_if(pin.begin(), pin.end(), [](char c) { return c == '[' || c == ']'; }), pin.end());
    std::string line = crossing.launch ? map.clocks()[*crossing.launch].name : "none";
    line += ">" + map.clocks()[crossing.capture].name;
    line += " " + crossing.to.cell;
    line += "." + pin;
    line += " " + std::to_string(crossing.cells);
    return line;
}

class CrossingsPropertyTest : public ::testing::TestWithParam<bool> {};

TEST_P(CrossingsPropertyTest, ThePathsAreThoseOfTheUnfoldedDesign)
{
    const bool elaborated = GetParam();
    std::size_t paths = 0;
    std::size_t classes = 0;
    for (unsigned seed = 1; seed <= 300 && !HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const testsupport::LibsetGuard guard;
        const RandomDesign design(seed, elaborated);
        const ReferenceMap clocks(design);
        const ReferenceCrossings reference(design, clocks);
        DesignDatabase database(true);
        const auto source = elaborated ? IDesignDatabase::SOURCE_ELABORATED : IDesignDatabase::SOURCE_POST_MAP;
        elaborated ? database.parseElaboratedNetlist(design.top()) : database.parsePostMapNetlist(design.top());
        const ClockMap map(database, source);
        const Crossings crossings(map);
        std::set<std::string> expected;
        for (const auto &[line, sources] : reference.all()) {
            expected.insert(line);
        }
        std::set<std::string> found;
        for (const Crossing &crossing : crossings.all()) {
            classes |= crossing.kinds;
            if (crossing.to.pin.empty()) {
                EXPECT_EQ(crossing.kind, CrossingClass::Memory);
                continue;
            }
            const std::string line = lineOf(map, crossing);
            EXPECT_TRUE(found.insert(line).second) << line << " is there twice";
            const auto known = reference.all().find(line);
            if (known != reference.all().end()) {
                EXPECT_EQ(known->second.count(crossing.from.name), 1U) << line << " from " << crossing.from.name;
            }
        }
        EXPECT_EQ(found, expected);
        paths += found.size();
    }
    EXPECT_GT(paths, 500U);
    EXPECT_NE(classes & 1U << static_cast<unsigned>(CrossingClass::SeveralClocks), 0U);
}

TEST_P(CrossingsPropertyTest, ASecondLookFindsTheSame)
{
    for (unsigned seed = 2000; seed < 2050; ++seed) {
        const testsupport::LibsetGuard guard;
        const RandomDesign design(seed, GetParam());
        DesignDatabase database(true);
        const auto source = GetParam() ? IDesignDatabase::SOURCE_ELABORATED : IDesignDatabase::SOURCE_POST_MAP;
        GetParam() ? database.parseElaboratedNetlist(design.top()) : database.parsePostMapNetlist(design.top());
        const ClockMap map(database, source);
        const Crossings first(map);
        const Crossings second(map);
        ASSERT_EQ(first.all().size(), second.all().size());
        for (std::size_t at = 0; at < first.all().size(); ++at) {
            EXPECT_EQ(lineOf(map, first.all()[at]), lineOf(map, second.all()[at]));
            EXPECT_EQ(first.all()[at].kinds, second.all()[at].kinds);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Forms, CrossingsPropertyTest, ::testing::Bool(),
                         [](const auto &form) { return form.param ? "Elaborated" : "PostMap"; });

} // namespace
} // namespace crossings_property_test
