#include "Designs.h"
#include "SavedFileBytes.h"
#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistDump.h"

#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include <DataBase.h>
#include <gtest/gtest.h>

namespace {

using namespace Verific;
using namespace platformtest;

class DamagedFileTest : public testing::Test {
  protected:
    void SetUp() override
    {
        ASSERT_EQ(makeEverything()->SaveToFile(m_file.c_str()), 1u);
        m_bytes = readBytes(m_file);
        testsupport::LibsetGuard::clear();
        // Something that must stay as it is.
        Netlist *bystander = makeNetlist("work", "top");
        addInstance(bystander, "i", makeGate());
        m_before = dumpLibset();
    }

    Netlist *restore(const std::string &bytes)
    {
        writeBytes(m_file, bytes);
        return Netlist::RestoreFromFile(m_file.c_str());
    }

    /// Restores content that may be anything: either nothing at all happens or a sound design comes.
    void restoreAnything(const std::string &bytes)
    {
        Netlist *top = restore(bytes);
        if (top == nullptr) {
            ++m_refused;
            ASSERT_EQ(dumpLibset(), m_before);
            return;
        }
        ++m_accepted;
        ASSERT_TRUE(isFreeOfCycles());
        ASSERT_NE(testsupport::dumpHierarchy(top), "");
        SetUpBystander();
    }

    void SetUpBystander()
    {
        testsupport::LibsetGuard::clear();
        Netlist *bystander = makeNetlist("work", "top");
        addInstance(bystander, "i", makeGate());
    }

    static std::string dumpLibset()
    {
        std::string text;
        forEachNetlist([&text](const Cell *cell, const Netlist *netlist) {
            text += std::string(cell->Owner()->Name()) + "/" + cell->Name() + " " +
                    std::to_string(netlist->NumOfRefs()) + "\n" + testsupport::dumpNetlist(netlist);
        });
        return text + std::to_string(Libset::Global()->GetLibraries()->Size());
    }

    template <typename Visit> static void forEachNetlist(Visit visit)
    {
        MapIter iter;
        MapIter cellIter;
        MapIter netlistIter;
        Library *library = nullptr;
        Cell *cell = nullptr;
        Netlist *netlist = nullptr;
        FOREACH_LIBRARY_OF_LIBSET (Libset::Global(), iter, library) {
            FOREACH_CELL_OF_LIBRARY (library, cellIter, cell) {
                FOREACH_NETLIST_OF_CELL (cell, netlistIter, netlist) {
                    visit(cell, netlist);
                }
            }
        }
    }

    /// Takes netlists whose views are all taken until none is left.
    static bool isFreeOfCycles()
    {
        std::vector<const Netlist *> left;
        forEachNetlist([&left](const Cell *, const Netlist *netlist) { left.push_back(netlist); });
        Set done(POINTER_HASH);
        for (std::size_t before = left.size() + 1; left.size() < before;) {
            before = left.size();
            std::vector<const Netlist *> waiting;
            for (const Netlist *netlist : left) {
                bool ready = true;
                MapIter iter;
                Instance *inst = nullptr;
                FOREACH_INSTANCE_OF_NETLIST (netlist, iter, inst) {
                    ready = ready && (inst->View() == nullptr || done.Get(inst->View()) != nullptr);
                }
                if (ready) {
                    done.Insert(netlist);
                } else {
                    waiting.push_back(netlist);
                }
            }
            left = waiting;
        }
        return left.empty();
    }

    testsupport::LibsetGuard m_guard;
    ScratchDirectory m_scratch;
    std::string m_file = m_scratch.file("design.nl");
    std::string m_bytes;
    std::string m_before;
    unsigned m_refused = 0;
    unsigned m_accepted = 0;
};

TEST_F(DamagedFileTest, IsRestoredWhenWhole)
{
    EXPECT_NE(restore(m_bytes), nullptr);
    EXPECT_NE(dumpLibset(), m_before);
    EXPECT_EQ(resealed(m_bytes), m_bytes);
}

TEST_F(DamagedFileTest, IsRefusedWithAnyBitFlipped)
{
    for (std::size_t at = 0; at < m_bytes.size(); ++at) {
        for (int bit = 0; bit < 8; ++bit) {
            std::string bytes = m_bytes;
            bytes[at] = static_cast<char>(bytes[at] ^ (1 << bit));
            ASSERT_EQ(restore(bytes), nullptr) << "byte " << at << " bit " << bit;
        }
    }
    EXPECT_EQ(dumpLibset(), m_before);
}

TEST_F(DamagedFileTest, IsRefusedAtEveryShorterLength)
{
    for (std::size_t length = 0; length < m_bytes.size(); ++length) {
        ASSERT_EQ(restore(m_bytes.substr(0, length)), nullptr) << length;
    }
    EXPECT_EQ(dumpLibset(), m_before);
}

TEST_F(DamagedFileTest, IsRefusedWithBytesAdded)
{
    EXPECT_EQ(restore(m_bytes + '\0'), nullptr);
    EXPECT_EQ(restore(m_bytes + std::string(8, '\0')), nullptr);
    EXPECT_EQ(restore('\0' + m_bytes), nullptr);
    EXPECT_EQ(restore(m_bytes + m_bytes), nullptr);
}

TEST_F(DamagedFileTest, IsRefusedWhenForeign)
{
    EXPECT_EQ(restore(""), nullptr);
    EXPECT_EQ(restore("{ \"creator\": \"someone\", \"modules\": {} }"), nullptr);
    EXPECT_EQ(restore(std::string(1000, '\0')), nullptr);
    std::string bytes = m_bytes;
    bytes.replace(0, 4, "ELF!");
    EXPECT_EQ(restore(resealed(bytes)), nullptr);
    EXPECT_EQ(dumpLibset(), m_before);
}

TEST_F(DamagedFileTest, IsRefusedInANewerVersion)
{
    std::string bytes = m_bytes;
    ++bytes[VERSION_AT];
    EXPECT_EQ(restore(resealed(bytes)), nullptr);
    bytes = m_bytes;
    bytes[ZERO_AT] = 1;
    EXPECT_EQ(restore(resealed(bytes)), nullptr);
}

TEST_F(DamagedFileTest, IsRefusedWithoutContent)
{
    EXPECT_EQ(restore(resealed(m_bytes.substr(0, HEADER_SIZE))), nullptr);
    EXPECT_EQ(restore(resealed(m_bytes.substr(0, HEADER_SIZE) + std::string(8, '\0'))), nullptr);
    EXPECT_EQ(restore(resealed(m_bytes.substr(0, HEADER_SIZE) + std::string(64, '\0'))), nullptr);
    EXPECT_EQ(dumpLibset(), m_before);
}

/// Words are where lengths, numbers and pointers of the content lie.
TEST_F(DamagedFileTest, NoSingleWordOfTheContentDoesHarm)
{
    for (std::size_t at = HEADER_SIZE; at + 4 <= m_bytes.size(); at += 4) {
        std::uint32_t word = 0;
        std::memcpy(&word, &m_bytes[at], sizeof word);
        for (const std::uint32_t other : {0u, 1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, word - 1, word + 1, word + 8, word << 3,
                                          word ^ 0x80000000u, 0x1FFFFFFFu, 0xFFFFFFF8u, 0xFFFFFFFFu}) {
            if (other != word) {
                std::string bytes = m_bytes;
                std::memcpy(&bytes[at], &other, sizeof other);
                ASSERT_NO_FATAL_FAILURE(restoreAnything(resealed(bytes))) << "word at " << at << " is " << other;
            }
        }
    }
    EXPECT_GT(m_refused, 5000u);
    EXPECT_GT(m_accepted, 100u);
}

TEST_F(DamagedFileTest, NoTruncatedContentDoesHarm)
{
    for (std::size_t length = HEADER_SIZE; length < m_bytes.size(); length += 8) {
        ASSERT_NO_FATAL_FAILURE(restoreAnything(resealed(m_bytes.substr(0, length)))) << length;
    }
    EXPECT_GT(m_refused, 100u);
}

TEST_F(DamagedFileTest, NoRandomContentDoesHarm)
{
    constexpr unsigned SEED = 20240611;
    std::mt19937 random(SEED);
    const auto below = [&random](std::size_t bound) {
        return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random);
    };
    for (int round = 0; round < 10000; ++round) {
        std::string bytes = m_bytes;
        for (std::size_t changes = 1 + below(8); changes > 0; --changes) {
            const std::size_t at = HEADER_SIZE + below(bytes.size() - HEADER_SIZE);
            switch (below(4)) {
            case 0:
                bytes[at] = static_cast<char>(below(256));
                break;
            case 1:
                bytes[at] = static_cast<char>(bytes[at] ^ (1 << below(8)));
                break;
            case 2: { // a run copied from elsewhere, as pointers into other lists are
                const std::size_t from = HEADER_SIZE + below(bytes.size() / 8 - HEADER_SIZE / 8) * 8;
                const std::size_t to = HEADER_SIZE + below(bytes.size() / 8 - HEADER_SIZE / 8) * 8;
                std::memmove(&bytes[to], &bytes[from], std::min(bytes.size() - std::max(from, to), 8 * (1 + below(4))));
                break;
            }
            default:
                bytes[at] = static_cast<char>(0xFF);
                break;
            }
        }
        ASSERT_NO_FATAL_FAILURE(restoreAnything(resealed(bytes))) << "seed " << SEED << " round " << round;
    }
    EXPECT_GT(m_refused, 1000u);
    EXPECT_GT(m_accepted, 100u);
}

} // namespace
