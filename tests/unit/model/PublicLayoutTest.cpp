// Callers make, embed and derive from public classes and are built against released headers: size and alignment stay.

#include <netlistdb/netlistdb.h>

#include <gtest/gtest.h>

#include <cstddef>

namespace kvr::netlistdb {
namespace {

#if defined(__x86_64__) && defined(__GLIBCXX__) && _GLIBCXX_USE_CXX11_ABI

template <typename Class> void expectLayout(std::size_t size, const char *name)
{
    EXPECT_EQ(sizeof(Class), size) << name;
    EXPECT_EQ(alignof(Class), 8U) << name;
}

#define EXPECT_LAYOUT(Class, size) expectLayout<Class>(size, #Class)

TEST(PublicLayout, OfTheInterfacesIsFixed)
{
    EXPECT_LAYOUT(IVDBItem, 8);
    EXPECT_LAYOUT(IWidth, 8);
    EXPECT_LAYOUT(IVDBNetBase, 16);
    EXPECT_LAYOUT(IVDBNet, 16);
    EXPECT_LAYOUT(IVDBNetBus, 16);
    EXPECT_LAYOUT(IVDBNetlist, 8);
    EXPECT_LAYOUT(IVDBPort, 8);
    EXPECT_LAYOUT(IVDBInstance, 8);
    EXPECT_LAYOUT(IClockDomain, 8);
    EXPECT_LAYOUT(IVDBLineInfo, 8);
    EXPECT_LAYOUT(IDesignDatabase, 8);
    EXPECT_LAYOUT(IVDBResultSet, 8);
    EXPECT_LAYOUT(TreeIterator, 8);
}

TEST(PublicLayout, OfTheItemsIsFixed)
{
    EXPECT_LAYOUT(VDBNet, 56);
    EXPECT_LAYOUT(VDBNetBus, 88);
    EXPECT_LAYOUT(VDBPort, 56);
    EXPECT_LAYOUT(VDBNetlist, 152);
    EXPECT_LAYOUT(VDBInstance, 56);
    EXPECT_LAYOUT(VDBLineInfo, 32);
    EXPECT_LAYOUT(VDBClockDomain, 56);
}

TEST(PublicLayout, OfDatabaseAndSearchIsFixed)
{
    EXPECT_LAYOUT(DesignDatabase, 16);
    EXPECT_LAYOUT(InstanceNet, 16);
    EXPECT_LAYOUT(InstanceNetSet, 56);
    EXPECT_LAYOUT(InstanceNetSet::const_iterator, 24);
    EXPECT_LAYOUT(VDBSearchParam, 80);
    EXPECT_LAYOUT(BFSItemIterator, 112);
    EXPECT_LAYOUT(VDBResultSet, 104);
}

#endif

} // namespace
} // namespace kvr::netlistdb
