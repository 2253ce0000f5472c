// Cancelling from a second thread while the first one pulls results.

#include <netlistdb/BFSItemIterator.h>
#include <netlistdb/VDBHelper.h>
#include <netlistdb/VDBResultSet.h>

#include "tests/support/MockItems.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

namespace kvr::netlistdb {
namespace {

class CancelTest : public testing::Test {
  protected:
    CancelTest()
    {
        for (int i = 0; i < 100; ++i) {
            tree.net(module, "n" + std::to_string(i));
        }
        param.startItem = &top;
        param.filterByName = true;
        param.pattern = "n";
    }

    testsupport::MockTree tree;
    testsupport::MockNetlist &module = tree.module("top");
    testsupport::MockInstance &top = tree.instance("top", &module);
    VDBSearchParam param;
};

TEST_F(CancelTest, EndsALoopThatWouldNeverEnd)
{
    auto *iterator = new BFSItemIterator(nullptr, param);
    VDBResultSet results(iterator, [this, iterator] {
        if (iterator->isEnd()) {
            iterator->fetchMoreItem(&top);
        }
        VDBHelper::matchParam(iterator, param);
        return true;
    });
    std::atomic<bool> pulling{false};
    std::thread canceller([&] {
        while (!pulling) {
            std::this_thread::yield();
        }
        results.cancel();
    });
    for (results.next(); results.status() == RESULT_MATCH; results.next()) {
        pulling = true;
    }
    canceller.join();
    results.next();
    EXPECT_EQ(results.status(), RESULT_NONE);
}

TEST_F(CancelTest, WaitsForARunningStepWhoseResultStands)
{
    for (int round = 0; round < 50; ++round) {
        std::atomic<bool> inStep{false};
        std::atomic<bool> cancelling{false};
        std::atomic<bool> cancelled{false};
        bool cancelledInStep = false;
        auto *iterator = new BFSItemIterator(nullptr, param);
        VDBResultSet results(iterator, [&] {
            inStep = true;
            while (!cancelling) {
                std::this_thread::yield();
            }
            const bool hit = VDBHelper::matchParam(iterator, param);
            for (int i = 0; i < 100; ++i) {
                std::this_thread::yield();
            }
            cancelledInStep = cancelledInStep || cancelled;
            return hit;
        });
        std::thread canceller([&] {
            while (!inStep) {
                std::this_thread::yield();
            }
            cancelling = true;
            results.cancel();
            cancelled = true;
        });
        results.next();
        EXPECT_EQ(results.status(), RESULT_MATCH);
        EXPECT_EQ(results.getCurrent(), &top);
        canceller.join();
        EXPECT_FALSE(cancelledInStep);
        EXPECT_EQ(results.status(), RESULT_MATCH);
        results.next();
        EXPECT_EQ(results.status(), RESULT_NONE);
    }
}

} // namespace
} // namespace kvr::netlistdb
