#include <netlistdb/VDBInstance.h>
#include <netlistdb/VDBLineInfo.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <memory>
#include <new>

namespace kvr::netlistdb {
namespace {

bool isAligned(const void *address, std::size_t alignment)
{
    return reinterpret_cast<std::uintptr_t>(address) % alignment == 0;
}

/// A caller's class of several times the size.
struct WideInstance : VDBInstance {
    WideInstance() : VDBInstance(nullptr, nullptr) { notes.fill(7); }
    std::array<std::uint64_t, 200> notes;
};

struct alignas(64) AlignedInstance : VDBInstance {
    AlignedInstance() : VDBInstance(nullptr, nullptr) {}
};

struct alignas(16) PairInstance : VDBInstance {
    PairInstance() : VDBInstance(nullptr, nullptr) {}
};

TEST(PooledItem, DerivedClassesAreDeletedThroughAnyInterface)
{
    std::unique_ptr<IVDBInstance> small = std::make_unique<VDBInstance>(nullptr, nullptr);
    std::unique_ptr<IVDBItem> wide = std::make_unique<WideInstance>();
    EXPECT_EQ(static_cast<WideInstance &>(*wide).notes.back(), 7U);
}

TEST(PooledItem, DerivedClassesKeepTheirAlignment)
{
    for (int time = 0; time < 5; ++time) {
        const std::unique_ptr<IVDBInstance> aligned(new AlignedInstance);
        EXPECT_TRUE(isAligned(dynamic_cast<const void *>(aligned.get()), 64));
        const std::unique_ptr<IVDBInstance> pair(new PairInstance);
        EXPECT_TRUE(isAligned(dynamic_cast<const void *>(pair.get()), 16));
    }
}

TEST(PooledItem, ItemsCanBeMadeInAPlaceOfTheCallers)
{
    alignas(VDBLineInfo) std::array<unsigned char, sizeof(VDBLineInfo)> place{};
    auto *const position = new (place.data()) VDBLineInfo("/rtl/top.v", 3);
    EXPECT_EQ(static_cast<void *>(position), place.data());
    EXPECT_EQ(position->getLineNumber(), 3U);
    position->~VDBLineInfo();
}

} // namespace
} // namespace kvr::netlistdb
