#include "serve/Worker.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <stdexcept>
#include <string>

namespace kvr::netlistdb::tool {
namespace {

bool canBeRead(int descriptor)
{
    pollfd source{descriptor, POLLIN, 0};
    return poll(&source, 1, 0) == 1;
}

TEST(Worker, TasksAreDoneInTheirOrderAndPreparationsWait)
{
    std::string done;
    {
        std::mutex gate;
        std::unique_lock<std::mutex> closed(gate);
        Worker worker([&] { const std::lock_guard<std::mutex> open(gate); });
        worker.prepare([&] { done += "p"; });
        worker.post([&] { done += "1"; });
        worker.post([&] { done += "2"; });
        worker.prepare([&] { done += "never"; });
        closed.unlock();
        worker.drain();
        EXPECT_EQ(done.substr(0, 2), "12");
        worker.finish();
    }
    EXPECT_TRUE(done == "12" || done == "12p") << done;
}

TEST(Worker, PreparationsAreDoneWhileNobodyAsks)
{
    std::mutex lock;
    std::condition_variable changed;
    bool isDone = false;
    Worker worker([] {});
    worker.prepare([&] {
        const std::lock_guard<std::mutex> guard(lock);
        isDone = true;
        changed.notify_all();
    });
    std::unique_lock<std::mutex> guard(lock);
    EXPECT_TRUE(changed.wait_for(guard, std::chrono::seconds(60), [&] { return isDone; }));
}

TEST(Worker, WhatATaskThrowsEndsTheThreadAndIsThrownAtTheEnd)
{
    bool isDone = false;
    Worker worker([] {});
    worker.post([] { throw std::runtime_error("broken"); });
    worker.post([&] { isDone = true; });
    worker.drain();
    EXPECT_TRUE(canBeRead(worker.failed()));
    EXPECT_FALSE(isDone);
    EXPECT_THROW(worker.finish(), std::runtime_error);
}

} // namespace
} // namespace kvr::netlistdb::tool
