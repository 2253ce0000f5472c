#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistText.h"
#include "tests/support/ScratchFile.h"
#include "tests/support/Sources.h"
#include "tests/support/TreeText.h"

#include <netlistdb/netlistdb.h>

#include <DataBase.h>
#include <LineFile.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

namespace kvr::netlistdb {
namespace {

using testsupport::ELABORATED;
using testsupport::LibsetGuard;
using testsupport::netlistFromText;
using testsupport::POST_MAP;

/// A design with clocks in several levels, a generic cell and device cells; @p name tells two of them apart.
std::string designText(char name)
{
    std::string text = R"(
        operator inv_?(in a, out y) end
        register DFF(in clk, d, out q) clock=clk end
        module stage_?(in clk, d, out q) at stage.v:1
            net n at stage.v:2
            i: inv_?(a=d, y=n)
            r: DFF(clk=clk, d=n, q=q)
        end
        module pair_?(in clk, d, out q) at pair.v:1
            s1: stage_?(clk=clk, d=d, q=m)
            s2: stage_?(clk=clk, d=m, q=q)
        end
        module top_?(in clk_a, clk_b, in d, out q, r) at top.v:1
            a: pair_?(clk=clk_a, d=d, q=q)
            b: pair_?(clk=clk_b, d=q, q=r)
            f: KVR_FF(C=clk_b, D=r, Q=mapped)
        end)";
    std::replace(text.begin(), text.end(), '?', name);
    return text;
}

std::string answersOf(DesignDatabase &database, IDesignDatabase::SOURCE_TYPE type)
{
    IVDBInstance *root = database.getRoot(type);
    if (root == nullptr) {
        return "not loaded\n";
    }
    std::string text = testsupport::treeText(*root);
    std::vector<IVDBInstance *> instances{root};
    for (std::size_t at = 0; at < instances.size(); ++at) {
        IVDBInstance *instance = instances[at];
        text += instance->getPath() + " in " + instance->getModule()->GetLibName() + "\n";
        text += testsupport::moduleText(*instance->getModule());
        for (const bool fromBuses : {false, true}) {
            for (IVDBNet *net : instance->getModule()->getNets(fromBuses)) {
                const IClockDomain *clock = database.findDrivingClockDomains(instance, net, type);
                const IVDBLineInfo *position = net->getLineInfo();
                text += net->getName() + " clocked by " + (clock != nullptr ? clock->getName() : "nothing") +
                        (position != nullptr ? " at " + position->getFilePath() : "") + "\n";
            }
        }
        instances.insert(instances.end(), instance->getSubInstances().begin(), instance->getSubInstances().end());
    }
    VDBSearchParam param;
    param.startItem = root;
    const std::unique_ptr<IVDBResultSet> results(database.search(param));
    for (results->next(); results->status() == RESULT_MATCH; results->next()) {
        text += "found " + results->getCurrent()->getName() + "\n";
    }
    std::vector<std::string> domains;
    for (const IClockDomain *domain : database.listAllClockDomains(type)) {
        domains.push_back("domain " + domain->getName() + "\n");
    }
    std::sort(domains.begin(), domains.end());
    return std::accumulate(domains.begin(), domains.end(), text);
}

std::string answersOf(DesignDatabase &database)
{
    return answersOf(database, ELABORATED) + answersOf(database, POST_MAP);
}

/// Files in which designs are saved, and the ways of loading them.
class DatabaseLifetimes : public testing::Test {
  protected:
    static constexpr std::array<char, 2> NAMES = {'x', 'y'};
    enum Load { FROM_FILE, FROM_MEMORY };

    DatabaseLifetimes()
    {
        for (const char name : NAMES) {
            auto file = std::make_unique<testsupport::ScratchFile>(std::string("lifetimes_") + name);
            EXPECT_NE(netlistFromText(designText(name))->SaveToFile(file->path().c_str()), 0u);
            LibsetGuard::clear();
            m_files.push_back(std::move(file));
        }
    }

    const std::string &file(std::size_t design) const { return m_files[design]->path(); }

    std::unique_ptr<DesignDatabase> load(std::size_t design, Load way) const
    {
        auto database = std::make_unique<DesignDatabase>(true);
        if (way == FROM_FILE) {
            EXPECT_TRUE(database->parseElaboratedNetlistFromFile(file(design)));
            EXPECT_TRUE(database->parsePostMapNetlistFromFile(file(design)));
        } else {
            Verific::Netlist *top = netlistFromText(designText(NAMES[design]));
            EXPECT_TRUE(database->parseElaboratedNetlist(top));
            EXPECT_TRUE(database->parsePostMapNetlist(top));
        }
        return database;
    }

    std::string alone(std::size_t design, Load way) const
    {
        const LibsetGuard clean;
        return answersOf(*load(design, way));
    }

    /// The number of netlists in each cell of the libset.
    static std::map<std::string, unsigned> netlistsInTheLibset()
    {
        std::map<std::string, unsigned> counts;
        Verific::MapIter libraries;
        const Verific::Library *library = nullptr;
        FOREACH_LIBRARY_OF_LIBSET (Verific::Libset::Global(), libraries, library) {
            Verific::MapIter cells;
            const Verific::Cell *cell = nullptr;
            FOREACH_CELL_OF_LIBRARY (library, cells, cell) {
                counts[std::string(library->Name()) + "." + cell->Name()] = cell->NumOfNetlists();
            }
        }
        return counts;
    }

    LibsetGuard m_guard;
    std::vector<std::unique_ptr<testsupport::ScratchFile>> m_files;
};

TEST_F(DatabaseLifetimes, TheDesignsOfThisTestHaveClocksToAskFor)
{
    const std::string answers = alone(0, FROM_FILE);
    EXPECT_NE(answers.find("clocked by clk_a"), std::string::npos) << answers;
    EXPECT_NE(answers.find("clocked by clk_b"), std::string::npos) << answers;
}

TEST_F(DatabaseLifetimes, TwoDatabasesGiveTheirOwnAnswersInEveryOrderOfCreationAndDestruction)
{
    for (const std::size_t secondDesign : {0u, 1u}) {
        for (const Load way : {FROM_FILE, FROM_MEMORY}) {
            const std::string ofFirst = alone(0, way);
            const std::string ofSecond = alone(secondDesign, way);
            for (const bool firstGoesFirst : {true, false}) {
                for (const bool askedBefore : {true, false}) {
                    auto first = load(0, way);
                    auto second = load(secondDesign, way);
                    if (askedBefore) {
                        EXPECT_EQ(answersOf(*first), ofFirst);
                        EXPECT_EQ(answersOf(*second), ofSecond);
                    }
                    (firstGoesFirst ? first : second).reset();
                    EXPECT_EQ(answersOf(firstGoesFirst ? *second : *first), firstGoesFirst ? ofSecond : ofFirst);
                    // The libset is empty, and whoever comes next starts afresh.
                    (firstGoesFirst ? first : second) = load(1, way);
                    EXPECT_EQ(answersOf(firstGoesFirst ? *second : *first), firstGoesFirst ? ofSecond : ofFirst);
                    EXPECT_EQ(answersOf(firstGoesFirst ? *first : *second), alone(1, way));
                }
            }
        }
    }
}

TEST_F(DatabaseLifetimes, TheLibrarySetMayBeFreedAfterTheImport)
{
    const std::string expected = alone(0, FROM_MEMORY);
    const auto database = load(0, FROM_MEMORY);
    delete Verific::Libset::Global()->GetLibrary("Operators");
    EXPECT_EQ(answersOf(*database), expected);
    Verific::Libset::Reset();
    EXPECT_EQ(answersOf(*database), expected);
    const std::string postMap = answersOf(*database, POST_MAP);
    EXPECT_TRUE(database->reset(ELABORATED));
    EXPECT_EQ(answersOf(*database), "not loaded\n" + postMap);
}

TEST_F(DatabaseLifetimes, AHundredReloadsOfAFileAddNothingToTheLibset)
{
    for (const bool keep : {true, false}) {
        const LibsetGuard clean;
        const auto before = liveItemCounts();
        DesignDatabase database(keep);
        for (int round = 0; round < 100; ++round) {
            ASSERT_TRUE(database.parseElaboratedNetlistFromFile(file(0)));
            ASSERT_TRUE(database.parsePostMapNetlistFromFile(file(0)));
            ASSERT_TRUE(database.reset(ELABORATED));
            ASSERT_TRUE(database.reset(POST_MAP));
            ASSERT_EQ(netlistsInTheLibset(), (std::map<std::string, unsigned>{{"work.top_x", 0}}))
                << "round " << round << ", keeps source netlists: " << keep;
            ASSERT_EQ(liveItemCounts(), before);
        }
    }
}

TEST_F(DatabaseLifetimes, AHundredReloadsOfAFileKeepItsNumberInTheTableOfSourceFiles)
{
    DesignDatabase database(true);
    Verific::linefile_type position = 0;
    for (int round = 0; round < 100; ++round) {
        ASSERT_TRUE(database.parseElaboratedNetlistFromFile(file(0)));
        const Verific::linefile_type again = database.workingCopy(ELABORATED)->Linefile();
        ASSERT_NE(again, 0u);
        ASSERT_EQ(again, round == 0 ? again : position);
        position = again;
        ASSERT_TRUE(database.reset(ELABORATED));
    }
}

} // namespace
} // namespace kvr::netlistdb
