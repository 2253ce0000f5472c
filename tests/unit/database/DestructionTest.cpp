#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistText.h"
#include "tests/support/RecordingItems.h"
#include "tests/support/Sources.h"

#include <netlistdb/netlistdb.h>

#include <DataBase.h>
#include <LineFile.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace kvr::netlistdb {
namespace {

using testsupport::ELABORATED;
using testsupport::LibsetGuard;
using testsupport::Log;
using testsupport::netlistFromText;
using testsupport::POST_MAP;

/// A net that notes its deletion, and whether its source file was still known then.
class RecordingSourceNet : public Verific::Net {
  public:
    RecordingSourceNet(Log &log, const char *name) : Net(name), m_log(log) {}
    ~RecordingSourceNet() override
    {
        const char *file = Verific::LineFile::GetAbsFileName(Linefile());
        m_log.push_back(std::string(Name()) + (file != nullptr ? " with file" : " without file"));
    }

  private:
    Log &m_log;
};

/// Puts things that note their deletion into one source of a database.
void plant(DesignDatabase &database, IDesignDatabase::SOURCE_TYPE type, Log &log, const std::string &name)
{
    IVDBInstance *root = database.getRoot(type);
    root->addSubInstance(new testsupport::RecordingInstance(log, name + " tree", root));
    auto *top = static_cast<VDBNetlist *>(database.getTopModule(type));
    top->addPort(new testsupport::RecordingPort(log, name + " top"));
    auto *leaf = static_cast<VDBNetlist *>(root->getSubInstances()[0]->getModule());
    leaf->addPort(new testsupport::RecordingPort(log, name + " leaf"));
    if (Verific::Netlist *copy = database.workingCopy(type)) {
        auto *net = new RecordingSourceNet(log, (name + " copy").c_str());
        net->SetLinefile(Verific::LineFile::EncodeLineFile("/top.v", 1));
        copy->Add(net);
    }
}

Verific::Netlist *source()
{
    return netlistFromText("module leaf() end module top() u1: leaf() end");
}

TEST(DesignDatabase, IsDestroyedInOrder)
{
    LibsetGuard guard;
    Log log;
    Verific::Netlist *top = source();
    auto *database = new DesignDatabase(true);
    ASSERT_TRUE(database->parseElaboratedNetlist(top));
    ASSERT_TRUE(database->parsePostMapNetlist(top));
    plant(*database, ELABORATED, log, "elaborated");
    plant(*database, POST_MAP, log, "post-map");
    auto *net = new RecordingSourceNet(log, "libset");
    net->SetLinefile(Verific::LineFile::EncodeLineFile("/top.v", 1));
    top->Add(net);
    delete database;
    EXPECT_EQ(log, (Log{"elaborated tree of ", "post-map tree of ", "elaborated top", "elaborated leaf", "post-map top",
                        "post-map leaf", "elaborated copy with file", "post-map copy with file", "libset with file"}));
}

TEST(DesignDatabase, ClearsSourceFilesAlwaysAndTheLibsetOnlyWithKeptSources)
{
    for (const bool keep : {false, true}) {
        LibsetGuard guard;
        source();
        const auto position = Verific::LineFile::EncodeLineFile("/top.v", 1);
        ASSERT_NE(Verific::LineFile::GetAbsFileName(position), nullptr);
        delete new DesignDatabase(keep);
        EXPECT_EQ(Verific::LineFile::GetAbsFileName(position), nullptr);
        EXPECT_EQ(Verific::Libset::Global()->GetLibrary("work") != nullptr, !keep);
    }
}

TEST(DesignDatabase, FreesBothTreesAndLeavesTheCallersNetlistAlone)
{
    LibsetGuard guard;
    const auto before = liveItemCounts();
    Verific::Netlist *top = netlistFromText(R"(
        module leaf(in a) at leaf.v:1 bus [1:0] b net q[0] net q[1] end
        module mid(in a) u1: leaf(a=a) u2: leaf(a=a) end
        module loose(in a) loose at top.v:1 u1: mid(a=a) u2: mid(a=a) end)");
    for (const bool keep : {false, true}) {
        auto database = std::make_unique<DesignDatabase>(keep);
        ASSERT_TRUE(database->parseElaboratedNetlist(top));
        if (!keep) {
            ASSERT_TRUE(database->parsePostMapNetlist(top));
        }
        EXPECT_NE(liveItemCounts(), before);
        database.reset();
        EXPECT_EQ(liveItemCounts(), before);
        EXPECT_EQ(top->GetInsts()->Size(), 2u);
    }
    delete top;
}

TEST(DesignDatabase, IsDestroyedThroughItsInterface)
{
    LibsetGuard guard;
    const auto before = liveItemCounts();
    IDesignDatabase *database = new DesignDatabase(true);
    ASSERT_TRUE(database->parsePostMapNetlist(source()));
    delete database;
    EXPECT_EQ(liveItemCounts(), before);
}

TEST(Reset, FreesWorkingCopyTopModuleTreeAndTheOtherModulesInOrder)
{
    for (const auto type : {ELABORATED, POST_MAP}) {
        LibsetGuard guard;
        Log log;
        DesignDatabase database(true);
        ASSERT_TRUE(type == ELABORATED ? database.parseElaboratedNetlist(source())
                                       : database.parsePostMapNetlist(source()));
        plant(database, type, log, "it");
        EXPECT_TRUE(database.reset(type));
        EXPECT_EQ(log, (Log{"it copy with file", "it top", "it tree of ", "it leaf"}));
    }
}

} // namespace
} // namespace kvr::netlistdb
