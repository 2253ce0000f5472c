#include "memory/SlabPool.h"

#include "memory/Sanitizers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <random>
#include <set>
#include <sys/mman.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace kvr::memory {
namespace {

struct Object {
    unsigned char *memory;
    std::size_t size;
    unsigned char mark; ///< in every byte
};

/// Objects of a pool, each filled with a mark of its own.
class Objects {
  public:
    explicit Objects(SlabPool &pool) : m_pool(pool) {}
    ~Objects()
    {
        while (!m_all.empty()) {
            free(0);
        }
    }
    Objects(const Objects &) = delete;
    Objects &operator=(const Objects &) = delete;

    void add(std::size_t size)
    {
        const auto mark = static_cast<unsigned char>(m_made++ % 251);
        auto *const memory = static_cast<unsigned char *>(m_pool.allocate(size));
        std::memset(memory, mark, size);
        m_all.push_back({memory, size, mark});
    }
    /// Takes the object at @p place out and expects that nobody else has written to it.
    void free(std::size_t place)
    {
        const Object object = m_all[place];
        EXPECT_TRUE(std::all_of(object.memory, object.memory + object.size,
                                [&](unsigned char byte) { return byte == object.mark; }))
            << "an object of " << object.size << " bytes has been overwritten";
        m_pool.free(object.memory, object.size);
        m_all[place] = m_all.back();
        m_all.pop_back();
    }
    std::size_t size() const { return m_all.size(); }

  private:
    SlabPool &m_pool;
    std::vector<Object> m_all;
    std::size_t m_made = 0;
};

TEST(SlabPool, TakesNothingFromTheSystemBeforeTheFirstObject)
{
    SlabPool pool;
    EXPECT_EQ(pool.mapped(), 0U);
    void *const object = pool.allocate(8);
    EXPECT_EQ(pool.mapped(), SlabPool::SLAB_SIZE);
    pool.free(object, 8);
}

TEST(SlabPool, AlignsObjectsForWhatTheyMayHold)
{
    SlabPool pool;
    for (std::size_t size = 1; size <= SlabPool::LARGEST; ++size) {
        void *const first = pool.allocate(size);
        void *const second = pool.allocate(size);
        for (void *object : {first, second}) {
            const std::size_t alignment = size % 16 == 0 ? 16 : 8;
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(object) % alignment, 0U) << size;
            pool.free(object, size);
        }
    }
}

TEST(SlabPool, ObjectsOfAllSizesDoNotOverlapInAnyOrderOfFreeing)
{
    SlabPool pool;
    std::mt19937 random(7);
    for (int round = 0; round < 5; ++round) {
        Objects objects(pool);
        for (int step = 0; step < 40000; ++step) {
            if (objects.size() == 0 || random() % 5 < 3) {
                objects.add(1 + random() % SlabPool::LARGEST);
            } else {
                objects.free(random() % objects.size());
            }
        }
    }
}

TEST(SlabPool, UsesFreedMemoryAgain)
{
    SlabPool pool;
    std::vector<void *> objects;
    for (int each = 0; each < 100000; ++each) {
        objects.push_back(pool.allocate(80));
    }
    const std::size_t mapped = pool.mapped();
    EXPECT_LT(mapped, 100000 * 80 * 1.1 + SlabPool::SLAB_SIZE);
    for (std::size_t each = 0; each < objects.size(); each += 2) {
        pool.free(objects[each], 80);
    }
    for (std::size_t each = 0; each < objects.size(); each += 2) {
        objects[each] = pool.allocate(80);
    }
    EXPECT_EQ(pool.mapped(), mapped);
    EXPECT_EQ(std::set<void *>(objects.begin(), objects.end()).size(), objects.size());
    for (void *object : objects) {
        pool.free(object, 80);
    }
}

TEST(SlabPool, FillsEveryPlaceOfASlabAgainWhateverTheSize)
{
    std::mt19937 random(3);
    constexpr std::size_t STEP = IS_SANITIZED ? 56 : 8;
    for (std::size_t size = 8; size <= SlabPool::LARGEST; size += STEP) {
        SlabPool pool;
        std::vector<unsigned char *> objects;
        const auto make = [&] {
            objects.push_back(static_cast<unsigned char *>(pool.allocate(size)));
            std::memset(objects.back(), 0xA5, size); // the head is not where an object is
        };
        make();
        while (pool.mapped() == SlabPool::SLAB_SIZE) {
            make();
        }
        EXPECT_GT((objects.size() - 1) * size, SlabPool::SLAB_SIZE * 95 / 100) << size;
        const std::set<unsigned char *> all(objects.begin(), objects.end());
        EXPECT_EQ(all.size(), objects.size()) << size;
        unsigned char *const other = objects.back();
        objects.pop_back();
        for (const std::size_t kept : {objects.size() / 2, std::size_t{1}, std::size_t{0}}) {
            const std::size_t before = objects.size();
            std::shuffle(objects.begin(), objects.end(), random);
            while (objects.size() > kept) {
                pool.free(objects.back(), size);
                objects.pop_back();
            }
            while (objects.size() < before) {
                make();
            }
            std::set<unsigned char *> again(objects.begin(), objects.end());
            again.insert(other);
            EXPECT_EQ(again.size(), all.size()) << size;
            EXPECT_EQ(pool.mapped(), 2 * SlabPool::SLAB_SIZE) << size;
        }
        objects.push_back(other);
        for (unsigned char *object : objects) {
            pool.free(object, size);
        }
    }
}

TEST(SlabPool, GivesMemoryBackWhenAllObjectsAreGone)
{
    SlabPool pool;
    for (const bool backwards : {false, true}) {
        std::vector<void *> objects;
        for (int each = 0; each < 50000; ++each) {
            objects.push_back(pool.allocate(96));
        }
        EXPECT_GT(pool.mapped(), 50000U * 96U);
        if (backwards) {
            std::reverse(objects.begin(), objects.end());
        }
        for (void *object : objects) {
            pool.free(object, 96);
        }
        EXPECT_LE(pool.mapped(), 2 * SlabPool::SLAB_SIZE);
    }
}

TEST(SlabPool, GivesMostOfTheKeptSlabBackToo)
{
    const auto pageSize = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const auto isResident = [&](void *object) {
        unsigned char state = 0;
        const std::uintptr_t page = reinterpret_cast<std::uintptr_t>(object) / pageSize * pageSize;
        EXPECT_EQ(mincore(reinterpret_cast<void *>(page), pageSize, &state), 0);
        return (state & 1) != 0;
    };
    SlabPool pool;
    for (int round = 0; round < 2; ++round) {
        std::vector<void *> objects;
        for (std::size_t taken = 0; taken < SlabPool::SLAB_SIZE * 9 / 10; taken += 96) {
            objects.push_back(pool.allocate(96));
            std::memset(objects.back(), 0xA5, 96);
        }
        ASSERT_EQ(pool.mapped(), SlabPool::SLAB_SIZE);
        EXPECT_TRUE(isResident(objects.back()));
        for (void *object : objects) {
            pool.free(object, 96);
        }
        EXPECT_EQ(pool.mapped(), SlabPool::SLAB_SIZE);
        EXPECT_FALSE(isResident(objects.back()));
    }
}

TEST(SlabPool, KeepsOneSlabForObjectsThatComeAndGo)
{
    SlabPool pool;
    void *const first = pool.allocate(64);
    pool.free(first, 64);
    EXPECT_EQ(pool.mapped(), SlabPool::SLAB_SIZE);
    void *const again = pool.allocate(64);
    EXPECT_EQ(again, first);
    pool.free(again, 64);
}

TEST(SlabPool, ServesSeveralThreadsThatFreeEachOthersObjects)
{
    SlabPool pool;
    constexpr std::size_t PLACES = 512;
    std::vector<std::atomic<unsigned char *>> places(PLACES);
    const auto exchange = [&](unsigned seed) {
        std::mt19937 random(seed);
        for (int step = 0; step < 50000; ++step) {
            auto *const fresh = static_cast<unsigned char *>(pool.allocate(40));
            std::memset(fresh, static_cast<int>(seed), 40);
            unsigned char *const old = places[random() % PLACES].exchange(fresh);
            if (old != nullptr) {
                EXPECT_TRUE(std::all_of(old, old + 40, [&](unsigned char byte) { return byte == old[0]; }));
                pool.free(old, 40);
            }
        }
    };
    std::vector<std::thread> threads;
    for (unsigned seed = 1; seed <= 4; ++seed) {
        threads.emplace_back(exchange, seed);
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    for (std::atomic<unsigned char *> &place : places) {
        if (place != nullptr) {
            pool.free(place, 40);
        }
    }
    EXPECT_EQ(pool.mapped(), SlabPool::SLAB_SIZE);
}

#if KVR_HAS_ADDRESS_SANITIZER
TEST(SlabPool, PoisonsWhatIsNotInUse)
{
    SlabPool pool;
    auto *const object = static_cast<char *>(pool.allocate(32));
    EXPECT_EQ(__asan_region_is_poisoned(object, 32), nullptr);
    EXPECT_NE(__asan_region_is_poisoned(object + 32, 32), nullptr);
    pool.free(object, 32);
    EXPECT_EQ(__asan_region_is_poisoned(object, 32), object);
}
#endif

} // namespace
} // namespace kvr::memory
