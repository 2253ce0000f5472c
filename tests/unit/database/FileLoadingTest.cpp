#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistText.h"
#include "tests/support/ScratchFile.h"
#include "tests/support/Sources.h"
#include "tests/support/TreeText.h"

#include <netlistdb/netlistdb.h>

#include <DataBase.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace kvr::netlistdb {
namespace {

using testsupport::ELABORATED;
using testsupport::LibsetGuard;
using testsupport::netlistFromText;
using testsupport::POST_MAP;
using testsupport::treeText;

/// A saved netlist, gone with the object. The libset is empty afterwards.
class SavedNetlist : public testsupport::ScratchFile {
  public:
    explicit SavedNetlist(std::string_view text) : ScratchFile("saved_netlist")
    {
        const Verific::Netlist *top = netlistFromText(text);
        EXPECT_NE(top->SaveToFile(path().c_str()), 0u);
        LibsetGuard::clear();
    }
};

constexpr const char *LOADED_DESIGN = "module leaf(in a) end module mid() l: leaf() end module top() m: mid() end";

/// Takes the place of the imports, and notes what they were given.
class OverridingDatabase : public DesignDatabase {
  public:
    OverridingDatabase() : DesignDatabase(false) {}
    bool parseElaboratedNetlist(Verific::Netlist *netlist) override { return note("elaborated", netlist); }
    bool parsePostMapNetlist(Verific::Netlist *netlist) override { return note("post-map", netlist); }

    bool answer = true;
    bool throws = false;
    std::vector<std::string> calls;

  private:
    bool note(const std::string &import, Verific::Netlist *netlist)
    {
        calls.push_back(import + " " + netlist->CellBaseName());
        if (throws) {
            throw std::runtime_error("no");
        }
        return answer;
    }
};

TEST(FileLoading, ImportsASavedNetlist)
{
    LibsetGuard guard;
    const SavedNetlist saved(LOADED_DESIGN);
    DesignDatabase database(true);
    EXPECT_TRUE(database.parseElaboratedNetlistFromFile(saved.path()));
    EXPECT_EQ(treeText(*database.getRoot(ELABORATED)), "m: mid\n  l: leaf\n");
    EXPECT_EQ(database.getTopModule(ELABORATED)->getName(), "top");
    EXPECT_EQ(database.getTopModule(ELABORATED)->GetLibName(), "work");
    EXPECT_FALSE(database.isSourceLoaded(POST_MAP));
    EXPECT_TRUE(database.parsePostMapNetlistFromFile(saved.path()));
    EXPECT_EQ(treeText(*database.getRoot(POST_MAP)), "m: mid\n");
}

TEST(FileLoading, AnswersFalseWhenThereIsNoFile)
{
    LibsetGuard guard;
    DesignDatabase database(true);
    for (const char *path : {"", "/no/such/file.netlist"}) {
        EXPECT_FALSE(database.parseElaboratedNetlistFromFile(path)) << path;
        EXPECT_FALSE(database.parsePostMapNetlistFromFile(path)) << path;
    }
    EXPECT_FALSE(database.isSourceLoaded(ELABORATED));
    EXPECT_FALSE(database.isSourceLoaded(POST_MAP));
}

TEST(FileLoading, AnswersFalseOnAForeignFileAndLeavesALoadedSourceAsItIs)
{
    LibsetGuard guard;
    DesignDatabase database(true);
    ASSERT_TRUE(database.parseElaboratedNetlist(netlistFromText(LOADED_DESIGN)));
    IVDBNetlist *top = database.getTopModule(ELABORATED);
    IVDBInstance *root = database.getRoot(ELABORATED);
    const std::string path = (std::filesystem::path(testing::TempDir()) / "foreign.netlist").string();
    std::ofstream(path) << "module top; endmodule\n";
    EXPECT_FALSE(database.parseElaboratedNetlistFromFile(path));
    EXPECT_FALSE(database.parsePostMapNetlistFromFile(path));
    EXPECT_EQ(database.getTopModule(ELABORATED), top);
    EXPECT_EQ(database.getRoot(ELABORATED), root);
    EXPECT_FALSE(database.isSourceLoaded(POST_MAP));
    std::filesystem::remove(path);
}

TEST(FileLoading, CallsTheImportOfADerivedClassAndPassesItsAnswerOn)
{
    LibsetGuard guard;
    const SavedNetlist saved(LOADED_DESIGN);
    OverridingDatabase database;
    for (const bool answer : {true, false}) {
        database.answer = answer;
        EXPECT_EQ(database.parseElaboratedNetlistFromFile(saved.path()), answer);
        EXPECT_EQ(database.parsePostMapNetlistFromFile(saved.path()), answer);
    }
    EXPECT_EQ(database.calls,
              (std::vector<std::string>{"elaborated top", "post-map top", "elaborated top", "post-map top"}));
}

TEST(FileLoading, DeletesTheRestoredNetlistWhateverTheImportAnswers)
{
    LibsetGuard guard;
    const SavedNetlist saved(LOADED_DESIGN);
    OverridingDatabase database;
    for (const bool answer : {true, false}) {
        database.answer = answer;
        database.parseElaboratedNetlistFromFile(saved.path());
        EXPECT_EQ(testsupport::netlistOfCell("leaf")->Owner()->Owner()->GetCell("top")->NumOfNetlists(), 0u);
        database.parsePostMapNetlistFromFile(saved.path());
        EXPECT_EQ(testsupport::netlistOfCell("leaf")->Owner()->Owner()->GetCell("top")->NumOfNetlists(), 0u);
    }
}

TEST(FileLoading, LeavesTheRestoredNetlistWhenTheImportThrows)
{
    LibsetGuard guard;
    const SavedNetlist saved(LOADED_DESIGN);
    OverridingDatabase database;
    database.throws = true;
    EXPECT_THROW(database.parseElaboratedNetlistFromFile(saved.path()), std::runtime_error);
    EXPECT_THROW(database.parsePostMapNetlistFromFile(saved.path()), std::runtime_error);
    EXPECT_EQ(testsupport::netlistOfCell("top")->Owner()->NumOfNetlists(), 2u);
}

TEST(FileLoading, StaysLoadedWhenTheImportIsIncomplete)
{
    LibsetGuard guard;
    const SavedNetlist saved("module leaf() end module top() a: leaf() lost: ? b: leaf() end");
    DesignDatabase database(true);
    EXPECT_FALSE(database.parseElaboratedNetlistFromFile(saved.path()));
    EXPECT_TRUE(database.isSourceLoaded(ELABORATED));
    EXPECT_EQ(treeText(*database.getRoot(ELABORATED)), "a: leaf\n");
    EXPECT_FALSE(database.parsePostMapNetlistFromFile(saved.path()));
    EXPECT_TRUE(database.isSourceLoaded(POST_MAP));
    EXPECT_EQ(treeText(*database.getRoot(POST_MAP)), "a: leaf\n");
}

TEST(FileLoading, OfTheSameFileTwiceBuildsASecondTree)
{
    const auto before = liveItemCounts();
    {
        LibsetGuard guard;
        const SavedNetlist saved(LOADED_DESIGN);
        DesignDatabase database(true);
        ASSERT_TRUE(database.parseElaboratedNetlistFromFile(saved.path()));
        IVDBInstance *oldRoot = database.getRoot(ELABORATED);
        ASSERT_TRUE(database.parseElaboratedNetlistFromFile(saved.path()));
        EXPECT_NE(database.getRoot(ELABORATED), oldRoot);
        EXPECT_EQ(treeText(*oldRoot), treeText(*database.getRoot(ELABORATED)));
        EXPECT_EQ(liveItemCounts()[1] - before[1], 6u);
    }
    EXPECT_EQ(liveItemCounts(), before);
}

} // namespace
} // namespace kvr::netlistdb
