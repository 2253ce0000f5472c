#include <netlistdb/VDBResultSet.h>

#include "tests/support/ListIterator.h"
#include "tests/support/MockItems.h"
#include "tests/support/Throws.h"
#include "tests/support/VirtualSlots.h"

#include <gtest/gtest.h>

#include <pthread.h>

#include <memory>
#include <new>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <type_traits>

namespace kvr::netlistdb {
namespace {

using testsupport::ListIterator;
using testsupport::messageOf;
using testsupport::MockPort;

/// Opens the lock of a result set to the tests: explicit instantiations may name private members.
std::mutex &lockOf(VDBResultSet &results);
template <std::mutex VDBResultSet::*Member> struct LockAccess {
    friend std::mutex &lockOf(VDBResultSet &results) { return results.*Member; }
};
template struct LockAccess<&VDBResultSet::m_lock>;

bool isLocked(VDBResultSet &results)
{
    bool locked = true;
    std::thread([&] {
        if (lockOf(results).try_lock()) {
            locked = false;
            lockOf(results).unlock();
        }
    }).join();
    return locked;
}

/// Expects that a step left the set locked, and unlocks it, so that it can be used again and destroyed.
void expectLocked(VDBResultSet &results)
{
    ASSERT_TRUE(isLocked(results));
    lockOf(results).unlock();
}

/// A set over three ports whose predicate counts its runs and returns what the test says.
class VDBResultSetTest : public testing::Test {
  protected:
    VDBResultSetTest()
        : items(new ListIterator({&a, &b, &c})), results(std::make_unique<VDBResultSet>(items, [this] {
              ++runs;
              return step();
          }))
    {
    }

    MockPort a{"a"};
    MockPort b{"b"};
    MockPort c{"c"};
    ListIterator *items;
    int runs = 0;
    std::function<bool()> step = [this] { return !items->isEnd(); };
    std::unique_ptr<VDBResultSet> results;
};

TEST_F(VDBResultSetTest, EvaluatesNothingBeforeTheFirstStep)
{
    EXPECT_EQ(results->status(), RESULT_MATCH) << "though there is no result yet";
    EXPECT_EQ(results->getContext(), nullptr);
    EXPECT_EQ(runs, 0);
}

TEST_F(VDBResultSetTest, StepsThroughTheItemsFromTheFirstOnToTheEnd)
{
    for (IVDBItem *expected : {&a, &b, &c}) {
        results->next();
        EXPECT_EQ(results->status(), RESULT_MATCH);
        EXPECT_EQ(results->getCurrent(), expected);
    }
    for (int i = 0; i < 2; ++i) {
        results->next();
        EXPECT_EQ(results->status(), RESULT_NONE);
        EXPECT_EQ(results->getCurrent(), nullptr);
    }
    EXPECT_EQ(runs, 5);
}

TEST_F(VDBResultSetTest, GetCurrentStepsOnceWhenNobodyHas)
{
    EXPECT_EQ(results->getCurrent(), &a);
    EXPECT_EQ(results->getCurrent(), &a);
    EXPECT_EQ(runs, 1);
    results->next();
    EXPECT_EQ(results->getCurrent(), &b);
}

TEST_F(VDBResultSetTest, TakesTheContextFromTheIterator)
{
    items->setContext(&c);
    EXPECT_EQ(results->getContext(), &c);
    EXPECT_EQ(runs, 0);
}

TEST_F(VDBResultSetTest, PreviousChangesNothing)
{
    results->previous();
    EXPECT_EQ(runs, 0);
    results->next();
    results->next();
    results->previous();
    EXPECT_EQ(results->status(), RESULT_MATCH);
    EXPECT_EQ(results->getCurrent(), &b);
    EXPECT_EQ(runs, 2);
}

TEST_F(VDBResultSetTest, StillMovesAfterCancelWithStatusNone)
{
    results->next();
    results->cancel();
    EXPECT_EQ(results->status(), RESULT_MATCH) << "the step before stands";
    results->next();
    EXPECT_EQ(results->status(), RESULT_NONE);
    EXPECT_EQ(results->getCurrent(), &b);
    results->next();
    EXPECT_EQ(results->status(), RESULT_NONE);
    EXPECT_EQ(results->getCurrent(), &c);
    EXPECT_EQ(runs, 3);
}

TEST_F(VDBResultSetTest, CanBeCancelledBeforeTheFirstStep)
{
    results->cancel();
    results->cancel();
    EXPECT_EQ(results->status(), RESULT_MATCH);
    results->next();
    EXPECT_EQ(results->status(), RESULT_NONE);
    EXPECT_EQ(results->getCurrent(), &a);
}

TEST_F(VDBResultSetTest, StaysLockedAfterAnExceptionWithStatusUnchanged)
{
    VDBResultSet &set = *results;
    step = []() -> bool { throw std::runtime_error("first step"); };
    EXPECT_EQ(messageOf<std::runtime_error>([&] { set.getCurrent(); }), "first step");
    EXPECT_EQ(set.status(), RESULT_MATCH);
    expectLocked(set);

    step = [] { return true; };
    set.next();
    EXPECT_EQ(set.getCurrent(), &a) << "the failed step does not count as the first one";
    EXPECT_FALSE(isLocked(set));

    step = [] { return false; };
    set.next();
    step = []() -> bool { throw std::bad_alloc(); };
    EXPECT_THROW(set.next(), std::bad_alloc);
    EXPECT_EQ(set.status(), RESULT_NONE);
    expectLocked(set);
}

TEST_F(VDBResultSetTest, HasStatusNoneAfterAnExceptionWhenItWasCancelled)
{
    VDBResultSet &set = *results;
    set.next();
    set.cancel();
    step = []() -> bool { throw std::runtime_error("step"); };
    EXPECT_EQ(messageOf<std::runtime_error>([&] { set.next(); }), "step");
    EXPECT_EQ(set.status(), RESULT_NONE);
    expectLocked(set);
}

TEST(VDBResultSet, ThrowsWithoutPredicate)
{
    MockPort port("p");
    VDBResultSet set(new ListIterator({&port}), std::function<bool()>());
    EXPECT_THROW(set.next(), std::bad_function_call);
    EXPECT_EQ(set.status(), RESULT_MATCH);
    expectLocked(set);
}

TEST(VDBResultSet, PassesOnWhatTheIteratorThrowsBeforeThePredicateRuns)
{
    class ThrowingIterator : public ListIterator {
      public:
        using ListIterator::ListIterator;
        void next() override { throw std::runtime_error("Unknown item"); }
    };
    MockPort port("p");
    int runs = 0;
    VDBResultSet set(new ThrowingIterator(std::vector<IVDBItem *>{&port}), [&runs] { return ++runs > 0; });
    set.next();
    EXPECT_EQ(messageOf<std::runtime_error>([&] { set.next(); }), "Unknown item");
    EXPECT_EQ(set.status(), RESULT_MATCH);
    EXPECT_EQ(runs, 1);
    expectLocked(set);
}

TEST(VDBResultSet, DeletesItsIteratorButNoItem)
{
    class CountedIterator : public ListIterator {
      public:
        CountedIterator(std::vector<IVDBItem *> items, int &deleted)
            : ListIterator(std::move(items)), m_deleted(deleted)
        {
        }
        ~CountedIterator() override { ++m_deleted; }

      private:
        int &m_deleted;
    };
    MockPort port("p");
    int deleted = 0;
    IVDBResultSet *results = new VDBResultSet(new CountedIterator({&port}, deleted), [] { return true; });
    results->next();
    EXPECT_EQ(deleted, 0);
    delete results;
    EXPECT_EQ(deleted, 1);
    EXPECT_EQ(port.getName(), "p");
}

TEST_F(VDBResultSetTest, ReportsAFailingLockAndStillDiesQuietly)
{
    // A lock that finds out about a second lock from the same thread, in place of one that would wait for ever.
    pthread_mutex_t *native = lockOf(*results).native_handle();
    pthread_mutexattr_t attributes;
    ASSERT_EQ(pthread_mutexattr_init(&attributes), 0);
    ASSERT_EQ(pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ERRORCHECK), 0);
    ASSERT_EQ(pthread_mutex_init(native, &attributes), 0);
    ASSERT_EQ(pthread_mutexattr_destroy(&attributes), 0);
    ASSERT_EQ(pthread_mutex_lock(native), 0);

    EXPECT_THROW(results->next(), std::system_error);
    EXPECT_THROW(results->cancel(), std::system_error);
    EXPECT_EQ(runs, 0);
    EXPECT_EQ(results->status(), RESULT_MATCH);
    results.reset();
}

TEST(IVDBResultSet, HasItsOperationsAndCodesInOrder)
{
    EXPECT_EQ(testsupport::virtualSlot(&IVDBResultSet::cancel), 2U);
    EXPECT_EQ(testsupport::virtualSlot(&IVDBResultSet::next), 3U);
    EXPECT_EQ(testsupport::virtualSlot(&IVDBResultSet::previous), 4U);
    EXPECT_EQ(testsupport::virtualSlot(&IVDBResultSet::status), 5U);
    EXPECT_EQ(testsupport::virtualSlot(&IVDBResultSet::getCurrent), 6U);
    EXPECT_EQ(testsupport::virtualSlot(&IVDBResultSet::getContext), 7U);
    EXPECT_EQ(RESULT_MATCH, 0U);
    EXPECT_EQ(RESULT_NONE, 1U);
    EXPECT_TRUE(std::is_nothrow_destructible_v<VDBResultSet>);
}

} // namespace
} // namespace kvr::netlistdb
