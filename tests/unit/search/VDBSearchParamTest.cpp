#include <netlistdb/VDBSearchParam.h>

#include "tests/support/MockItems.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace kvr::netlistdb {
namespace {

TEST(VDBSearchParam, StartsWithEveryKindAndNoFilterOrderOrStart)
{
    const VDBSearchParam param;
    EXPECT_EQ(param.itemTypes, 65535U);
    EXPECT_FALSE(param.filterByName);
    EXPECT_FALSE(param.useRegex);
    EXPECT_EQ(param.pattern, "");
    EXPECT_FALSE(param.ignoreCase);
    EXPECT_FALSE(param.userModulesOnly);
    EXPECT_FALSE(param.collapseNonUserModules);
    EXPECT_FALSE(param.userNetsOnly);
    EXPECT_FALSE(param.userPortsOnly);
    EXPECT_FALSE(param.spareFlag);
    EXPECT_FALSE(param.sortItems);
    EXPECT_EQ(param.nameOrder, SORT_NONE);
    EXPECT_EQ(param.widthOrder, SORT_NONE);
    EXPECT_EQ(param.spareValue, 0U);
    EXPECT_EQ(param.startItem, nullptr);
}

TEST(VDBSearchParam, CopiesEveryField)
{
    testsupport::MockPort start("p");
    VDBSearchParam param;
    param.itemTypes = 10;
    param.filterByName = true;
    param.useRegex = true;
    param.pattern = "a pattern too long to be kept inside the string object";
    param.ignoreCase = true;
    param.userModulesOnly = true;
    param.collapseNonUserModules = true;
    param.userNetsOnly = true;
    param.userPortsOnly = true;
    param.spareFlag = true;
    param.sortItems = true;
    param.nameOrder = SORT_DESCENDING;
    param.widthOrder = static_cast<SortOrder>(7);
    param.spareValue = 4294967295U;
    param.startItem = &start;

    const VDBSearchParam copy(param);
    param.pattern[0] = 'x';
    EXPECT_EQ(copy.itemTypes, 10U);
    EXPECT_TRUE(copy.filterByName);
    EXPECT_TRUE(copy.useRegex);
    EXPECT_EQ(copy.pattern, "a pattern too long to be kept inside the string object");
    EXPECT_TRUE(copy.ignoreCase);
    EXPECT_TRUE(copy.userModulesOnly);
    EXPECT_TRUE(copy.collapseNonUserModules);
    EXPECT_TRUE(copy.userNetsOnly);
    EXPECT_TRUE(copy.userPortsOnly);
    EXPECT_TRUE(copy.spareFlag);
    EXPECT_TRUE(copy.sortItems);
    EXPECT_EQ(copy.nameOrder, SORT_DESCENDING);
    EXPECT_EQ(copy.widthOrder, 7U);
    EXPECT_EQ(copy.spareValue, 4294967295U);
    EXPECT_EQ(copy.startItem, &start);
}

TEST(VDBSearchParam, HasOrdersOf32BitsAndAVirtualDestructor)
{
    EXPECT_EQ(sizeof(SortOrder), 4U);
    EXPECT_EQ(SORT_NONE, 0U);
    EXPECT_EQ(SORT_ASCENDING, 1U);
    EXPECT_EQ(SORT_DESCENDING, 2U);
    EXPECT_TRUE(std::has_virtual_destructor_v<VDBSearchParam>);
}

} // namespace
} // namespace kvr::netlistdb
