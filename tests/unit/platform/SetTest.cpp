#include <Array.h>
#include <Set.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Verific::Array;
using Verific::POINTER_HASH;
using Verific::Set;
using Verific::SetIter;
using Verific::STRING_HASH;

std::string itemsOf(const Set *set)
{
    std::string text;
    SetIter iter;
    const char *item = nullptr;
    FOREACH_SET_ITEM (set, iter, &item) {
        text += std::string(item) + " ";
    }
    return text;
}

TEST(Set, HoldsEachItemOnceInOrderOfInsertion)
{
    Set set(STRING_HASH);
    for (const char *item : {"b", "a", "b", "c", "a"}) {
        set.Insert(item);
    }
    EXPECT_EQ(itemsOf(&set), "b a c ");
    EXPECT_EQ(set.Size(), 3u);
    EXPECT_EQ(set.Insert("c"), 0u);
    EXPECT_EQ(set.Insert(nullptr), 0u);
    EXPECT_EQ(itemsOf(nullptr), "");
}

TEST(Set, AnswersTheEqualItemItHolds)
{
    Set set(STRING_HASH);
    const std::string held = "x";
    const std::string asked = "x";
    set.Insert(held.c_str());
    EXPECT_EQ(set.Get(asked.c_str()), held.c_str());
    EXPECT_EQ(set.Get("y"), nullptr);
    EXPECT_EQ(set.Get(nullptr), nullptr);
}

TEST(Set, KnowsTheItemInsertedLastOfThoseStillThere)
{
    Set set(STRING_HASH);
    EXPECT_EQ(set.GetLast(), nullptr);
    for (const char *item : {"a", "b", "c"}) {
        set.Insert(item);
    }
    EXPECT_STREQ(static_cast<const char *>(set.GetLast()), "c");
    set.Remove("c");
    EXPECT_STREQ(static_cast<const char *>(set.GetLast()), "b");
    set.Remove("a");
    EXPECT_STREQ(static_cast<const char *>(set.GetLast()), "b");
    set.Remove("b");
    EXPECT_EQ(set.GetLast(), nullptr);
}

TEST(Set, StaysTrueWhileItGrowsAndShrinks)
{
    std::vector<int> items(3000);
    Set set(POINTER_HASH);
    for (const int &item : items) {
        ASSERT_EQ(set.Insert(&item), 1u);
        ASSERT_EQ(set.Insert(&item), 0u);
    }
    for (std::size_t i = 0; i < items.size(); i += 2) {
        ASSERT_EQ(set.Remove(&items[i]), 1u);
        ASSERT_EQ(set.Remove(&items[i]), 0u);
    }
    for (std::size_t i = 0; i < items.size(); ++i) {
        ASSERT_EQ(set.Get(&items[i]), i % 2 == 0 ? nullptr : &items[i]);
    }
    SetIter iter;
    int *item = nullptr;
    std::size_t at = 1;
    FOREACH_SET_ITEM (&set, iter, &item) {
        ASSERT_EQ(item, &items[at]);
        at += 2;
    }
    EXPECT_EQ(at, items.size() + 1);
}

TEST(Set, AllowsRemovalWhileIterating)
{
    std::vector<int> items(40);
    Set set(POINTER_HASH);
    for (const int &item : items) {
        set.Insert(&item);
    }
    unsigned met = 0;
    SetIter iter;
    int *item = nullptr;
    FOREACH_SET_ITEM (&set, iter, &item) {
        set.Remove(item);
        ++met;
    }
    EXPECT_EQ(met, 40u);
    EXPECT_EQ(set.Size(), 0u);
    set.Reset();
    EXPECT_EQ(set.Insert(&met), 1u);
}

TEST(Set, ForgetsGapsWhenItemsComeAndGo)
{
    std::vector<int> items(100);
    int anchor = 0;
    Set set(POINTER_HASH);
    for (int round = 0; round < 1000; ++round) {
        for (const int &item : items) {
            set.Insert(&item);
        }
        set.Remove(&anchor);
        set.Insert(&anchor);
        for (const int &item : items) {
            set.Remove(&item);
        }
    }
    EXPECT_EQ(set.Size(), 1u);
    EXPECT_LT(set.slots(), 300u);
}

TEST(Array, KeepsItemsInOrder)
{
    Array array;
    EXPECT_EQ(array.GetLast(), nullptr);
    int first = 0;
    int second = 0;
    array.InsertLast(&first);
    array.InsertLast(&second);
    EXPECT_EQ(array.Size(), 2u);
    EXPECT_EQ(array.At(0), &first);
    EXPECT_EQ(array.GetFirst(), &first);
    EXPECT_EQ(array.GetLast(), &second);
    EXPECT_EQ(array.At(2), nullptr);
    array.Reset();
    EXPECT_EQ(array.Size(), 0u);
}

} // namespace
