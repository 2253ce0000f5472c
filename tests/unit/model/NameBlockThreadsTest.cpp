#include "model/NameBlock.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace kvr::netlistdb {
namespace {

TEST(NameBlock, GivesAllThreadsOneString)
{
    constexpr std::size_t THREADS = 4;
    constexpr std::size_t NAMES = 2000;
    std::vector<NameBlock *> blocks;
    for (std::size_t at = 0; at < NAMES; ++at) {
        blocks.push_back(NameBlock::make(("a_name_longer_than_fifteen_" + std::to_string(at)).c_str()));
    }
    std::vector<std::vector<const std::string *>> seen(THREADS);
    std::vector<std::thread> threads;
    for (std::vector<const std::string *> &strings : seen) {
        threads.emplace_back([&blocks, &strings] {
            for (const NameBlock *block : blocks) {
                strings.push_back(&NameBlock::string(block));
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    for (std::size_t at = 0; at < NAMES; ++at) {
        EXPECT_EQ(*seen[0][at], "a_name_longer_than_fifteen_" + std::to_string(at));
        for (const std::vector<const std::string *> &strings : seen) {
            EXPECT_EQ(strings[at], seen[0][at]);
        }
        NameBlock::release(blocks[at]);
    }
}

} // namespace
} // namespace kvr::netlistdb
