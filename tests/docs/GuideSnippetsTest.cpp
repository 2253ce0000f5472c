// The code that the guide and the README show, compiled and run. What stands between `// [name]` and `// [end]` is what
// the documents hold under that name; check_snippets.py compares the two.

#include "frontend/yosys/YosysReader.h"

#include <netlistdb/analysis/ClockMap.h>
#include <netlistdb/analysis/Crossings.h>
#include <netlistdb/analysis/ProbeReport.h>

#include <DataBase.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

#include <unistd.h>

// [embed]
#include <netlistdb/netlistdb.h>

#include <iostream>
#include <memory>

using namespace kvr::netlistdb;

int printClocks(const std::string &savedNetlist)
{
    DesignDatabase database(/*keepSourceNetlists=*/true);
    if (!database.parsePostMapNetlistFromFile(savedNetlist)) {
        std::cerr << savedNetlist << ": cannot be restored\n";
        return 1;
    }
    IVDBInstance *root = database.getRoot(IDesignDatabase::SOURCE_POST_MAP);
    for (IVDBNet *net : root->getModule()->getNets(/*fromBuses=*/false)) {
        if (net->isUserDeclared() && net->isSelectableForDebugger()) {
            IClockDomain *clock = database.findDrivingClockDomains(root, net, IDesignDatabase::SOURCE_POST_MAP);
            std::cout << net->getName() << ": " << (clock != nullptr ? clock->getName() : "no clock") << '\n';
        }
    }
    return 0;
}
// [end]

namespace {

// [clock_map]
/// The clocks that the net can change with, the nearest first, each with the cells between.
std::string allClocksOf(DesignDatabase &database, IDesignDatabase::SOURCE_TYPE source, IVDBInstance *inst, IVDBNet *net)
{
    const analysis::ClockMap map(database, source); // build it once, and ask for as many nets as you like
    std::string text;
    for (const analysis::ReachingClock &each : map.launch(inst, net).clocks) {
        text += map.clocks()[each.clock].name + " over " + std::to_string(each.cells) + " cells\n";
    }
    for (const analysis::ClockChain &chain : map.why(inst, net).clocks) {
        for (const analysis::ChainStep &step : chain.data) {
            text += "    " + step.netName + " from " + step.cell + ' ' + step.output + '\n';
        }
    }
    return text;
}
// [end]

// [crossings]
/// The crossings that are wrong, or that nothing shows to be right: one line for each.
std::string unsafeCrossings(const analysis::ClockMap &map)
{
    std::string text;
    const analysis::Crossings crossings(map);
    for (const analysis::Crossing &crossing : crossings.all()) {
        if (crossing.severity() == analysis::Severity::Unsafe) {
            text += crossing.from.name + " to " + crossing.to.name + " on " + map.clocks()[crossing.capture].name +
                    ": " + nameOf(crossing.kind) + '\n';
        }
    }
    return text;
}
// [end]

// [probe_report]
/// What of an instance may not be probed, with the reasons: one line for each net or bus.
std::string notProbeable(const analysis::ClockMap &map, IVDBInstance *inst)
{
    std::string text;
    const analysis::ProbeReport report(map);
    const auto add = [&](const std::string &name, const analysis::SignalReport &found) {
        if (found.verdict == analysis::ProbeVerdict::No) {
            text += name + ':';
            for (const analysis::ProbeFinding &finding : found.findings) {
                text += std::string(" ") + nameOf(finding.reason);
            }
            text += '\n';
        }
    };
    for (const IVDBNetBus *bus : inst->getModule()->getAllNetBus()) {
        add(bus->getName(), report.of(inst, bus));
    }
    for (IVDBNet *net : inst->getModule()->getNets(false)) {
        add(net->getName(), report.of(inst, net));
    }
    return text;
}
// [end]

// [instance_at]
/// Finds the instance at @p path below @p start; null when there is none. Names may hold slashes themselves, so every
/// child is tried whose name the path begins with.
IVDBInstance *instanceAt(IVDBInstance *start, std::string_view path)
{
    for (IVDBInstance *child : start->getSubInstances()) {
        const std::string &name = child->getName();
        if (path == name) {
            return child;
        }
        if (path.size() > name.size() && path[name.size()] == '/' && path.compare(0, name.size(), name) == 0) {
            if (IVDBInstance *found = instanceAt(child, path.substr(name.size() + 1))) {
                return found;
            }
        }
    }
    return nullptr;
}
// [end]

class Guide : public testing::Test {
  protected:
    static std::string saved(const std::string &form)
    {
        const std::string path =
            (std::filesystem::temp_directory_path() / ("guide_" + form + std::to_string(getpid()) + ".netlist"))
                .string();
        if (!std::filesystem::exists(path)) {
            Verific::Netlist *top = yosys::readJson(std::string(DESIGNS_DIR) + "/soc_" + form + ".json");
            EXPECT_NE(top->SaveToFile(path.c_str()), 0u);
            Verific::Libset::Reset();
        }
        return path;
    }

    static void TearDownTestSuite()
    {
        for (const std::string form : {"elaborated", "postmap"}) {
            std::filesystem::remove(saved(form));
        }
    }
};

TEST_F(Guide, PrintsTheClockOfEveryNetThatMayBeProbed)
{
    testing::internal::CaptureStdout();
    EXPECT_EQ(printClocks(saved("postmap")), 0);
    EXPECT_NE(testing::internal::GetCapturedStdout().find("heartbeat_o: clk_sys_g\n"), std::string::npos);
    testing::internal::CaptureStderr();
    EXPECT_EQ(printClocks("/nonexistent"), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "/nonexistent: cannot be restored\n");
}

TEST_F(Guide, LoadsFromAFileAndFromMemory)
{
    const std::string path = saved("elaborated");
    const std::string json = std::string(DESIGNS_DIR) + "/soc_elaborated.json";
    // [load]
    DesignDatabase database(/*keepSourceNetlists=*/true);

    // From a saved netlist:
    bool complete = database.parseElaboratedNetlistFromFile(path);

    // From a netlist in memory, here one that yosys wrote. It stays yours; the import copies its top level.
    DesignDatabase other(true);
    Verific::Netlist *netlist = yosys::readJson(json);
    complete = other.parseElaboratedNetlist(netlist) && complete;
    // [end]
    EXPECT_TRUE(complete);
    EXPECT_EQ(database.getTopModule(IDesignDatabase::SOURCE_ELABORATED)->getName(), "soc_top");
    EXPECT_EQ(other.getTopModule(IDesignDatabase::SOURCE_ELABORATED)->getName(), "soc_top");
}

TEST_F(Guide, WalksTheTree)
{
    DesignDatabase database(false);
    ASSERT_TRUE(database.parseElaboratedNetlistFromFile(saved("elaborated")));
    // [walk]
    std::vector<IVDBInstance *> waiting{database.getRoot(IDesignDatabase::SOURCE_ELABORATED)};
    std::size_t userInstances = 0;
    while (!waiting.empty()) {
        IVDBInstance *instance = waiting.back();
        waiting.pop_back();
        if (instance->getModule()->isUserDeclared()) {
            ++userInstances; // instance->getPath() is "u_uart/u_tx"; the root's path is empty
        }
        for (IVDBInstance *child : instance->getSubInstances()) {
            waiting.push_back(child);
        }
    }
    // [end]
    EXPECT_GT(userInstances, 50u);
}

TEST_F(Guide, GoesFromPathsToItemsAndBack)
{
    DesignDatabase database(false);
    ASSERT_TRUE(database.parseElaboratedNetlistFromFile(saved("elaborated")));
    // [paths]
    IVDBInstance *instance = instanceAt(database.getRoot(IDesignDatabase::SOURCE_ELABORATED), "u_dsp/u_fir");
    std::string names = instance->getPath() + '\n'; // "u_dsp/u_fir"
    for (IVDBNetBus *bus : instance->getModule()->getAllNetBus()) {
        names += VDBHelper::getNetFullName(bus, instance) + '\n'; // "u_dsp/u_fir/y_o"
    }
    // [end]
    EXPECT_EQ(names.rfind("u_dsp/u_fir\nu_dsp/u_fir/", 0), 0u);
    EXPECT_NE(names.find("\nu_dsp/u_fir/y_o\n"), std::string::npos);
    EXPECT_EQ(instanceAt(database.getRoot(IDesignDatabase::SOURCE_ELABORATED), "u_dsp/u_fir/"), nullptr);
}

TEST_F(Guide, ReadsNetsBusesAndPositions)
{
    DesignDatabase database(false);
    ASSERT_TRUE(database.parseElaboratedNetlistFromFile(saved("elaborated")));
    std::string report;
    // [nets]
    IVDBNetlist *module = database.getTopModule(IDesignDatabase::SOURCE_ELABORATED);
    for (IVDBNetBus *bus : module->getAllNetBus()) {
        report += bus->getName() + " [" + std::to_string(bus->getLeftIndex()) + ":" +
                  std::to_string(bus->getRightIndex()) + "]";
        if (IVDBLineInfo *position = bus->getLineInfo()) { // none: no user wrote it
            report += " " + position->getFilePath() + ":" + std::to_string(position->getLineNumber());
        }
        report += '\n';
    }
    const std::size_t bitsInBuses = module->getNets(/*fromBuses=*/true).size();
    const std::size_t plainNets = module->getNets(/*fromBuses=*/false).size();
    // [end]
    EXPECT_NE(report.find("soc_top.v:"), std::string::npos);
    EXPECT_GT(bitsInBuses, 0u);
    EXPECT_GT(plainNets, 0u);
}

TEST_F(Guide, OffersNetsToADebugger)
{
    DesignDatabase database(false);
    ASSERT_TRUE(database.parseElaboratedNetlistFromFile(saved("elaborated")));
    // [flags]
    const auto mayProbe = [](const IVDBNetBase &net) { return net.isUserDeclared() && net.isSelectableForDebugger(); };
    IVDBNetlist *module = database.getTopModule(IDesignDatabase::SOURCE_ELABORATED);
    std::vector<IVDBNetBase *> offered;
    for (IVDBNetBus *bus : module->getAllNetBus()) {
        if (mayProbe(*bus)) {
            offered.push_back(bus);
        } else if (bus->isAutoGenerated()) { // has no source position, but its bits may have one
            for (IVDBNet *net : bus->getNets()) {
                if (mayProbe(*net)) {
                    offered.push_back(net);
                }
            }
        }
    }
    for (IVDBNet *net : module->getNets(/*fromBuses=*/false)) {
        if (mayProbe(*net) && !net->isPwr() && !net->isGnd()) {
            offered.push_back(net);
        }
    }
    // [end]
    std::vector<std::string> names;
    for (const IVDBNetBase *net : offered) {
        names.push_back(net->getName());
        EXPECT_FALSE(net->isProtected());
    }
    EXPECT_NE(std::find(names.begin(), names.end(), "clk_div"), names.end());
}

TEST_F(Guide, SearchesByNameAndCancels)
{
    DesignDatabase database(false);
    ASSERT_TRUE(database.parseElaboratedNetlistFromFile(saved("elaborated")));
    std::vector<std::string> found;
    std::atomic<bool> userGaveUp{false};
    // [search]
    VDBSearchParam param;
    param.startItem = database.getRoot(IDesignDatabase::SOURCE_ELABORATED);
    param.filterByName = true;
    param.pattern = "shift_q";
    param.userNetsOnly = true;

    SearchResults results(database.search(param)); // nothing is visited yet
    while (results.next()) {
        IVDBItem *item = results.getCurrent();
        if (item->getItemType() == ITEM_INSTANCE) {
            continue; // reported so that getContext() is known for the nets that follow
        }
        auto *net = dynamic_cast<IVDBNetBase *>(item);
        auto *context = dynamic_cast<IVDBInstance *>(results.getContext());
        found.push_back(VDBHelper::getNetFullName(net, context));
        if (userGaveUp) {
            results.cancel(); // may also come from another thread
        }
    }
    // [end]
    ASSERT_FALSE(found.empty());
    for (const std::string &name : found) {
        EXPECT_NE(name.find("shift_q"), std::string::npos);
    }
}

TEST_F(Guide, SearchesWithOneCompiledExpression)
{
    DesignDatabase database(false);
    ASSERT_TRUE(database.parseElaboratedNetlistFromFile(saved("elaborated")));
    std::size_t hits = 0;
    // [regex]
    VDBSearchParam param;
    param.startItem = database.getRoot(IDesignDatabase::SOURCE_ELABORATED);
    const std::regex expression("u_[rt]x/.*_q$");

    BFSItemIterator walk(&database, param);
    for (; VDBHelper::matchNetRegex(&walk, expression); walk.next()) {
        hits += walk.getCurrent()->getItemType() != ITEM_INSTANCE ? 1 : 0;
    }
    // [end]
    EXPECT_GT(hits, 0u);
}

TEST_F(Guide, AsksForClocks)
{
    DesignDatabase database(true);
    ASSERT_TRUE(database.parseElaboratedNetlistFromFile(saved("elaborated")));
    // [clocks]
    constexpr auto type = IDesignDatabase::SOURCE_ELABORATED;
    for (IClockDomain *domain : database.listAllClockDomains(type)) {
        std::cout << "clock " << domain->getName() << '\n'; // instance path, "/", net name
    }
    IVDBInstance *root = database.getRoot(type);
    IVDBNet *net = root->getModule()->getNets(false).front();
    IClockDomain *driving = database.findDrivingClockDomains(root, net, type); // null: no clock
    // [end]
    EXPECT_FALSE(database.listAllClockDomains(type).empty());
    static_cast<void>(driving);
}

TEST_F(Guide, AsksForEveryClock)
{
    DesignDatabase database(true);
    ASSERT_TRUE(database.parseElaboratedNetlistFromFile(saved("elaborated")));
    IVDBInstance *const root = database.getRoot(IDesignDatabase::SOURCE_ELABORATED);
    const std::vector<IVDBNet *> nets = root->getModule()->getNets(false);
    const auto divided =
        std::find_if(nets.begin(), nets.end(), [](const IVDBNet *net) { return net->getName() == "clk_div"; });
    ASSERT_NE(divided, nets.end());
    EXPECT_EQ(allClocksOf(database, IDesignDatabase::SOURCE_ELABORATED, root, *divided).substr(0, 27),
              "clk_sys_i over 0 cells\n    ");
}

TEST_F(Guide, ListsUnsafeCrossings)
{
    DesignDatabase database(true);
    ASSERT_TRUE(database.parseElaboratedNetlistFromFile(saved("elaborated")));
    const std::string text = unsafeCrossings(analysis::ClockMap(database, IDesignDatabase::SOURCE_ELABORATED));
    EXPECT_NE(text.find("host_cs_ni to u_mailbox/u_host/bit_q"), std::string::npos) << text;
    EXPECT_NE(text.find("on host_sclk_i: unsynchronized-reset"), std::string::npos) << text;
}

TEST_F(Guide, ListsWhatMayNotBeProbed)
{
    DesignDatabase database(true);
    ASSERT_TRUE(database.parseElaboratedNetlistFromFile(saved("elaborated")));
    const analysis::ClockMap map(database, IDesignDatabase::SOURCE_ELABORATED);
    const std::string text = notProbeable(map, database.getRoot(IDesignDatabase::SOURCE_ELABORATED));
    EXPECT_NE(text.find("clk_sys_i: clock-net\n"), std::string::npos) << text;
    EXPECT_EQ(text.find("uart_tx_o"), std::string::npos) << text;
}

TEST_F(Guide, ResetsAndReloads)
{
    const std::string path = saved("elaborated");
    DesignDatabase database(true);
    ASSERT_TRUE(database.parseElaboratedNetlistFromFile(path));
    // [reset]
    database.reset(IDesignDatabase::SOURCE_ELABORATED); // every pointer into that tree is dead from here on
    const bool loaded = database.parseElaboratedNetlistFromFile(path);
    // [end]
    EXPECT_TRUE(loaded);
    EXPECT_TRUE(database.isSourceLoaded(IDesignDatabase::SOURCE_ELABORATED));
}

} // namespace
