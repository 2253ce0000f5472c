#include <Map.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Verific::Map;
using Verific::MapIter;
using Verific::POINTER_HASH;
using Verific::STRING_HASH;

std::string keysOf(const Map *map)
{
    std::string text;
    MapIter iter;
    const char *key = nullptr;
    const char *value = nullptr;
    FOREACH_MAP_ITEM (map, iter, &key, &value) {
        text += std::string(key) + "=" + value + " ";
    }
    return text;
}

std::vector<std::string> numberedKeys(int count)
{
    std::vector<std::string> keys;
    for (int i = 0; i < count; ++i) {
        keys.push_back("key" + std::to_string(i));
    }
    return keys;
}

TEST(Map, ComparesTextKeysByContent)
{
    Map map(STRING_HASH);
    const std::string key = "clk";
    const std::string same = "clk";
    map.Insert(key.c_str(), "one");
    EXPECT_STREQ(static_cast<const char *>(map.GetValue(same.c_str())), "one");
    EXPECT_EQ(map.GetValue("cl"), nullptr);
}

TEST(Map, ComparesPointerKeysByAddress)
{
    Map map(POINTER_HASH);
    const std::string key = "clk";
    const std::string same = "clk";
    map.Insert(key.c_str(), "one");
    EXPECT_EQ(map.GetValue(same.c_str()), nullptr);
    EXPECT_STREQ(static_cast<const char *>(map.GetValue(key.c_str())), "one");
}

TEST(Map, KeepsTheFirstValueUnlessToldToOverwrite)
{
    Map map;
    EXPECT_EQ(map.Insert("a", "1"), 1u);
    EXPECT_EQ(map.Insert("a", "2"), 0u);
    EXPECT_EQ(keysOf(&map), "a=1 ");
    EXPECT_EQ(map.Insert("a", "3", 1), 1u);
    EXPECT_EQ(keysOf(&map), "a=3 ");
    EXPECT_EQ(map.Size(), 1u);
}

TEST(Map, RefusesANullText)
{
    Map map;
    EXPECT_EQ(map.Insert(nullptr, "x"), 0u);
    EXPECT_EQ(map.GetValue(nullptr), nullptr);
    EXPECT_EQ(map.Size(), 0u);
    Map pointers(POINTER_HASH);
    EXPECT_EQ(pointers.Insert(nullptr, "x"), 1u);
    EXPECT_STREQ(static_cast<const char *>(pointers.GetValue(nullptr)), "x");
}

TEST(Map, IteratesInOrderOfInsertion)
{
    Map map;
    for (const char *key : {"z", "a", "m", "b"}) {
        map.Insert(key, key);
    }
    EXPECT_EQ(keysOf(&map), "z=z a=a m=m b=b ");
    map.Remove("a");
    map.Insert("a", "again");
    EXPECT_EQ(keysOf(&map), "z=z m=m b=b a=again ");
}

TEST(Map, IteratesOverNothingWhenNull)
{
    EXPECT_EQ(keysOf(nullptr), "");
    MapIter iter;
    iter.First(nullptr);
    void *key = &iter;
    EXPECT_EQ(iter.Next(&key, nullptr), 0u);
    EXPECT_EQ(key, nullptr);
}

TEST(Map, StaysTrueWhileItGrowsAndShrinks)
{
    const std::vector<std::string> keys = numberedKeys(5000);
    Map map;
    for (const std::string &key : keys) {
        ASSERT_EQ(map.Insert(key.c_str(), &key), 1u);
        ASSERT_EQ(map.GetValue(key.c_str()), &key);
    }
    for (std::size_t i = 0; i < keys.size(); i += 3) {
        ASSERT_EQ(map.Remove(keys[i].c_str()), 1u);
        ASSERT_EQ(map.Remove(keys[i].c_str()), 0u);
    }
    for (std::size_t i = 0; i < keys.size(); ++i) {
        ASSERT_EQ(map.GetValue(keys[i].c_str()), i % 3 == 0 ? nullptr : &keys[i]);
    }
    MapIter iter;
    const char *key = nullptr;
    std::size_t at = 0;
    FOREACH_MAP_ITEM (&map, iter, &key, nullptr) {
        at += at % 3 == 0 ? 1 : 0;
        ASSERT_EQ(key, keys[at]);
        ++at;
    }
}

TEST(Map, ForgetsGapsWhenEntriesComeAndGo)
{
    const std::vector<std::string> keys = numberedKeys(100);
    Map map;
    map.Insert("anchor", "0");
    for (int round = 0; round < 1000; ++round) {
        for (const std::string &key : keys) {
            map.Insert(key.c_str(), "x");
        }
        for (const std::string &key : keys) {
            map.Remove(key.c_str());
        }
        map.Insert("tail", "t");
        map.Remove("anchor");
        map.Insert("anchor", "0");
        map.Remove("tail");
    }
    EXPECT_EQ(map.Size(), 1u);
    EXPECT_LT(map.slots(), 300u);
    EXPECT_EQ(keysOf(&map), "anchor=0 ");
}

TEST(Map, AllowsRemovalOfAnyEntryWhileIterating)
{
    const std::vector<std::string> keys = numberedKeys(50);
    Map map;
    for (const std::string &key : keys) {
        map.Insert(key.c_str(), key.c_str());
    }
    unsigned met = 0;
    MapIter iter;
    const char *key = nullptr;
    FOREACH_MAP_ITEM (&map, iter, &key, nullptr) {
        map.Remove(key);
        if (met == 10) {
            for (unsigned i = 20; i < 50; ++i) {
                map.Remove(keys[i].c_str());
            }
        }
        ++met;
    }
    EXPECT_EQ(met, 20u);
    EXPECT_EQ(map.Size(), 0u);
}

TEST(Map, FindsTheFirstOfEntriesUnderOneKey)
{
    Map map;
    const std::vector<std::string> keys = numberedKeys(20);
    map.append("twin", "first");
    for (const std::string &key : keys) {
        map.append(key.c_str(), "x");
    }
    const unsigned second = map.append("twin", "second");
    map.append(nullptr, "nameless");
    EXPECT_STREQ(static_cast<const char *>(map.GetValue("twin")), "first");
    map.removeSlot(0);
    EXPECT_STREQ(static_cast<const char *>(map.GetValue("twin")), "second");
    EXPECT_STREQ(static_cast<const char *>(map.keyAt(second)), "twin");
    map.removeSlot(second);
    EXPECT_EQ(map.GetValue("twin"), nullptr);
    EXPECT_EQ(map.Size(), 21u);
}

TEST(Map, TakesManyEntriesUnderOneKeyWithoutSlowingDown)
{
    Map map;
    for (unsigned i = 0; i < 200000; ++i) {
        map.append("same", i % 2 == 0 ? "even" : "odd");
    }
    EXPECT_STREQ(static_cast<const char *>(map.GetValue("same")), "even");
    map.append("other", "o");
    EXPECT_STREQ(static_cast<const char *>(map.GetValue("other")), "o");
}

TEST(Map, ResetEmptiesIt)
{
    Map map;
    for (const std::string &key : numberedKeys(20)) {
        map.Insert(key.c_str(), "x");
    }
    map.Reset();
    EXPECT_EQ(map.Size(), 0u);
    EXPECT_EQ(map.GetValue("key3"), nullptr);
    map.Insert("b", "2");
    EXPECT_EQ(keysOf(&map), "b=2 ");
}

} // namespace
