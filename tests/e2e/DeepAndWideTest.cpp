// Designs far deeper and wider than any that people write: built, imported, walked, asked for paths and clocks,
// searched, saved and restored, reset and destroyed.

#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistText.h"
#include "tests/support/ScratchFile.h"
#include "tests/support/Sources.h"

#include <netlistdb/netlistdb.h>

#include <DataBase.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <pthread.h>

namespace kvr::netlistdb {
namespace {

using testsupport::ELABORATED;
using testsupport::LibsetGuard;
using testsupport::netlistFromText;
using testsupport::netlistOfCell;
using testsupport::netOf;
using testsupport::portOf;
using testsupport::POST_MAP;
using testsupport::ScratchFile;

constexpr unsigned LEVELS = 20000;
constexpr unsigned SEARCHED_LEVELS = 2000; ///< the lowest, where each full name holds those of all levels above
constexpr unsigned INSTANCES = WIDE_INSTANCES;

/// Too small for anything that takes a frame, however short, for each level.
constexpr std::size_t SMALL_STACK = 512 * 1024;

/// Runs @p body in a thread with a small stack.
void onSmallStack(std::function<void()> body)
{
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, SMALL_STACK), 0);
    pthread_t thread{};
    const auto run = [](void *argument) -> void * {
        (*static_cast<std::function<void()> *>(argument))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, run, &body), 0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
    pthread_attr_destroy(&attributes);
}

/// A register below LEVELS modules, each of which holds the next one alone; clock, data and result go through all.
Verific::Netlist *deepDesign()
{
    netlistFromText(
        "register DFF(in C, D, out Q) clock=C end module m0(in C, D, out Q) u: DFF(C=C, D=D, Q=Q) net bottom end");
    Verific::Netlist *below = netlistOfCell("m0");
    Verific::Library *library = below->Owner()->Owner();
    for (unsigned level = 1; level < LEVELS; ++level) {
        auto *cell = new Verific::Cell(("m" + std::to_string(level)).c_str());
        library->Add(cell);
        auto *netlist = new Verific::Netlist("netlist");
        cell->Add(netlist);
        auto *instance = new Verific::Instance("u", below);
        netlist->Add(instance);
        for (const char *name : {"C", "D", "Q"}) {
            auto *port = new Verific::Port(name, *name == 'Q' ? Verific::DIR_OUT : Verific::DIR_IN);
            netlist->Add(port);
            auto *net = new Verific::Net(name);
            netlist->Add(net);
            port->Connect(net);
            instance->Connect(below->GetPort(name), net);
        }
        below = netlist;
    }
    return below;
}

/// Registers f0, f1, …, side by side in one module, all on the nets C and D, with results q0, q1, …
Verific::Netlist *wideDesign(const char *text)
{
    Verific::Netlist *top = netlistFromText(text);
    Verific::Instance *first = testsupport::instanceOf(top, "f0");
    const Verific::Netlist *view = first->View();
    Verific::Net *clock = netOf(top, "C");
    Verific::Net *data = netOf(top, "D");
    const char *kind = first->GetAttValue("KVR_ATTRIBUTE_CELL_NAME");
    for (unsigned number = 1; number < INSTANCES; ++number) {
        auto *instance = new Verific::Instance(("f" + std::to_string(number)).c_str(), first->View());
        top->Add(instance);
        auto *result = new Verific::Net(("q" + std::to_string(number)).c_str());
        top->Add(result);
        instance->Connect(portOf(view, "C"), clock);
        instance->Connect(portOf(view, "D"), data);
        instance->Connect(portOf(view, "Q"), result);
        if (kind != nullptr) {
            instance->AddAtt(new Verific::Att("KVR_ATTRIBUTE_CELL_NAME", kind));
        }
    }
    return top;
}

IVDBNet *itemOf(const IVDBInstance *instance, const std::string &name)
{
    for (const bool fromBuses : {false, true}) {
        for (IVDBNet *net : instance->getModule()->getNets(fromBuses)) {
            if (net->getName() == name) {
                return net;
            }
        }
    }
    return nullptr;
}

std::string clockOf(DesignDatabase &database, IVDBInstance *instance, const std::string &net,
                    IDesignDatabase::SOURCE_TYPE type)
{
    const IClockDomain *domain = database.findDrivingClockDomains(instance, itemOf(instance, net), type);
    if (domain == nullptr) {
        return "none";
    }
    return domain->getInstance()->getPath() + ':' + domain->getNet()->getName();
}

struct Found {
    std::size_t instances = 0;
    std::vector<std::string> nets; ///< full names
};

Found search(DesignDatabase &database, IVDBInstance *start, const std::string &text)
{
    VDBSearchParam param;
    param.startItem = start;
    param.filterByName = true;
    param.pattern = text;
    const std::unique_ptr<IVDBResultSet> results(database.search(param));
    Found found;
    for (results->next(); results->status() == RESULT_MATCH; results->next()) {
        IVDBItem *item = results->getCurrent();
        if (item->getItemType() == ITEM_INSTANCE) {
            ++found.instances;
        } else {
            found.nets.push_back(VDBHelper::getNetFullName(dynamic_cast<IVDBNetBase *>(item),
                                                           dynamic_cast<IVDBInstance *>(results->getContext())));
        }
    }
    return found;
}

IVDBInstance *deepest(IVDBInstance *root)
{
    while (!root->getSubInstances().empty()) {
        root = root->getSubInstances().front();
    }
    return root;
}

std::string pathOfLevel(unsigned depth)
{
    std::string path;
    for (unsigned level = 0; level < depth; ++level) {
        path += level == 0 ? "u" : "/u";
    }
    return path;
}

void checkDeepTree(DesignDatabase &database)
{
    IVDBInstance *root = database.getRoot(ELABORATED);
    ASSERT_NE(root, nullptr);
    IVDBInstance *bottom = deepest(root);
    EXPECT_EQ(bottom->getDepth(), LEVELS);
    EXPECT_EQ(bottom->getPath(), pathOfLevel(LEVELS));
    EXPECT_EQ(clockOf(database, bottom->getOwnerInstance(), "Q", ELABORATED), ":C");
    EXPECT_EQ(clockOf(database, root, "Q", ELABORATED), ":C");
    EXPECT_EQ(clockOf(database, bottom->getOwnerInstance(), "D", ELABORATED), "none");
    EXPECT_EQ(database.listAllClockDomains(ELABORATED).size(), 1u);
}

TEST(DeepHierarchy, IsImportedWalkedSearchedAndReset)
{
    const auto before = liveItemCounts();
    onSmallStack([] {
        LibsetGuard guard;
        Verific::Netlist *top = deepDesign();
        DesignDatabase database(true);
        ASSERT_TRUE(database.parseElaboratedNetlist(top));
        ASSERT_NO_FATAL_FAILURE(checkDeepTree(database));
        IVDBInstance *start = database.getRoot(ELABORATED);
        for (unsigned level = 0; level < LEVELS - SEARCHED_LEVELS; ++level) {
            start = start->getSubInstances().front();
        }
        const Found found = search(database, start, "bottom");
        EXPECT_EQ(found.instances, SEARCHED_LEVELS + 1);
        EXPECT_EQ(found.nets, std::vector<std::string>{pathOfLevel(LEVELS - 1) + "/bottom"});

        ASSERT_TRUE(database.parsePostMapNetlist(top));
        EXPECT_EQ(deepest(database.getRoot(POST_MAP))->getPath(), "u");
        EXPECT_EQ(clockOf(database, database.getRoot(POST_MAP), "Q", POST_MAP), "none");
        ASSERT_TRUE(database.reset(POST_MAP));
        ASSERT_TRUE(database.reset(ELABORATED));
        ASSERT_TRUE(database.parseElaboratedNetlist(top)); // goes with the database, without a reset
    });
    EXPECT_EQ(liveItemCounts(), before);
}

TEST(DeepHierarchy, IsSavedAndRestored)
{
    onSmallStack([] {
        LibsetGuard guard;
        const ScratchFile file("deep");
        ASSERT_NE(deepDesign()->SaveToFile(file.path().c_str()), 0u);
        LibsetGuard::clear();
        DesignDatabase database(true);
        ASSERT_TRUE(database.parseElaboratedNetlistFromFile(file.path()));
        ASSERT_NO_FATAL_FAILURE(checkDeepTree(database));
        ASSERT_TRUE(database.parsePostMapNetlistFromFile(file.path()));
    });
}

struct Form {
    IDesignDatabase::SOURCE_TYPE type;
    const char *text;
};

class WideModule : public testing::TestWithParam<Form> {
  protected:
    static void check(DesignDatabase &database)
    {
        IVDBInstance *root = database.getRoot(GetParam().type);
        ASSERT_NE(root, nullptr);
        ASSERT_EQ(root->getSubInstances().size(), INSTANCES);
        EXPECT_EQ(root->getSubInstances().back()->getPath(), "f" + std::to_string(INSTANCES - 1));
        EXPECT_EQ(root->getModule()->getNets(false).size(), INSTANCES + 2);
        for (const unsigned number : {0u, 1u, INSTANCES - 1}) {
            EXPECT_EQ(clockOf(database, root, "q" + std::to_string(number), GetParam().type), ":C");
        }
        EXPECT_EQ(clockOf(database, root, "D", GetParam().type), "none");
        EXPECT_EQ(database.listAllClockDomains(GetParam().type).size(), 1u);
        const std::string last = "q" + std::to_string(INSTANCES - 1);
        const Found plain = search(database, root, last);
        EXPECT_EQ(plain.instances, INSTANCES + 1);
        EXPECT_EQ(plain.nets, std::vector<std::string>{last});
    }
};

TEST_P(WideModule, OfRegistersOnOneNetIsImportedSavedRestoredAndReset)
{
    const auto before = liveItemCounts();
    {
        LibsetGuard guard;
        const ScratchFile file("deep");
        const auto type = GetParam().type;
        DesignDatabase database(true);
        Verific::Netlist *top = wideDesign(GetParam().text);
        ASSERT_NE(top->SaveToFile(file.path().c_str()), 0u);
        ASSERT_TRUE(type == ELABORATED ? database.parseElaboratedNetlist(top) : database.parsePostMapNetlist(top));
        ASSERT_NO_FATAL_FAILURE(check(database));
        ASSERT_TRUE(database.reset(type));
        ASSERT_EQ(liveItemCounts(), before);
        LibsetGuard::clear();

        ASSERT_TRUE(type == ELABORATED ? database.parseElaboratedNetlistFromFile(file.path())
                                       : database.parsePostMapNetlistFromFile(file.path()));
        ASSERT_NO_FATAL_FAILURE(check(database));
    }
    EXPECT_EQ(liveItemCounts(), before);
}

INSTANTIATE_TEST_SUITE_P(WideDesign, WideModule,
                         testing::Values(Form{ELABORATED, "register DFF(in C, D, out Q) clock=C end "
                                                          "module top(in C, D, out q0) f0: DFF(C=C, D=D, Q=q0) end"},
                                         Form{POST_MAP, "module top(in C, D, out q0) f0: KVR_FF(C=C, D=D, Q=q0) end"}));

} // namespace
} // namespace kvr::netlistdb
