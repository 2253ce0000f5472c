#include "model/NameBlock.h"

#include "tests/support/failing_allocator/FailingAllocator.h"

#include <netlistdb/IVDBNetBus.h>
#include <netlistdb/NameText.h>
#include <netlistdb/VDBInstance.h>
#include <netlistdb/VDBNet.h>
#include <netlistdb/VDBNetBus.h>

#include <DataBase.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace kvr::netlistdb {
namespace {

using testsupport::failAllocation;
using testsupport::Outcome;

/// Holds a name while a test runs.
class Held {
  public:
    explicit Held(const char *name) : m_block(NameBlock::make(name)) {}
    ~Held() { NameBlock::release(m_block); }
    Held(const Held &) = delete;
    Held &operator=(const Held &) = delete;

    NameBlock *get() const { return m_block; }

  private:
    NameBlock *m_block;
};

TEST(NameBlock, IsNoneForNoName)
{
    for (const char *name : {static_cast<const char *>(nullptr), ""}) {
        const Held held(name);
        EXPECT_EQ(held.get(), nullptr);
        EXPECT_EQ(NameBlock::text(held.get()), "");
        EXPECT_EQ(*NameBlock::text(held.get()).data(), '\0');
        EXPECT_EQ(NameBlock::string(held.get()), "");
        EXPECT_EQ(NameBlock::share(held.get()), nullptr);
    }
}

TEST(NameBlock, KeepsNamesOfAllLengths)
{
    for (std::size_t length = 1; length < 2000; length += length < 40 || (length > 450 && length < 540) ? 1 : 97) {
        const std::string name(length, static_cast<char>('a' + length % 26));
        const Held held(name.c_str());
        const std::string_view text = NameBlock::text(held.get());
        EXPECT_EQ(text, name);
        EXPECT_EQ(std::strlen(text.data()), length);
        EXPECT_EQ(NameBlock::string(held.get()), name);
    }
}

TEST(NameBlock, MakesOneString)
{
    const Held held("a_name_that_is_longer_than_a_string_itself");
    const std::string &string = NameBlock::string(held.get());
    EXPECT_EQ(&NameBlock::string(held.get()), &string);
}

TEST(NameBlock, LivesUntilTheLastHolderLetsGo)
{
    NameBlock *const block = NameBlock::make("shared");
    EXPECT_EQ(NameBlock::share(block), block);
    NameBlock::release(block);
    EXPECT_EQ(NameBlock::string(block), "shared");
    NameBlock::release(block);
}

TEST(NameBlock, IsUnchangedWhenThereIsNoMemoryForItsString)
{
    const char *const name = "a_name_that_is_longer_than_a_string_itself";
    int failures = 0;
    for (long number = 0;; ++number) {
        const Held held(name);
        const Outcome outcome = failAllocation(number, [&] { NameBlock::string(held.get()); });
        EXPECT_EQ(NameBlock::text(held.get()), name);
        EXPECT_EQ(NameBlock::string(held.get()), name);
        if (outcome == Outcome::NOT_REACHED) {
            break;
        }
        EXPECT_EQ(outcome, Outcome::THREW);
        ++failures;
    }
    EXPECT_EQ(failures, 2);
}

template <typename Item> class Renamed : public Item {
  public:
    using Item::Item;
    const std::string &getName() const override { return m_name; }

  private:
    std::string m_name = "another name";
};

TEST(NameText, IsWhatGetNameReturns)
{
    const Verific::Net source("a net's name");
    const Verific::Instance use("an instance's name", nullptr);
    const VDBNet net(&source);
    const VDBInstance instance(nullptr, nullptr, &use);
    const VDBInstance root(nullptr, nullptr);
    const VDBNetBus bus("a bus's name", 2);
    const Renamed<VDBNet> renamedNet(&source);
    const Renamed<VDBInstance> renamedInstance(nullptr, nullptr, &use);
    EXPECT_EQ(nameText(net), "a net's name");
    EXPECT_EQ(nameText(instance), "an instance's name");
    EXPECT_EQ(nameText(root), "");
    EXPECT_EQ(nameText(bus), "a bus's name");
    EXPECT_EQ(nameText(renamedNet), "another name");
    EXPECT_EQ(nameText(renamedInstance), "another name");
    const std::vector<const IVDBItem *> all = {&net, &instance, &root, &bus, &renamedNet, &renamedInstance};
    for (const IVDBItem *item : all) {
        EXPECT_EQ(nameText(*item), item->getName());
        EXPECT_EQ(nameText(*item).data()[item->getName().size()], '\0');
    }
}

TEST(NameText, IsThereWhenMemoryIsNot)
{
    const Verific::Net source("a_name_that_is_longer_than_a_string_itself");
    const VDBNet net(&source);
    std::string_view text;
    EXPECT_EQ(failAllocation(0, [&] { text = nameText(net); }), Outcome::NOT_REACHED);
    EXPECT_EQ(text, source.Name());
}

} // namespace
} // namespace kvr::netlistdb
