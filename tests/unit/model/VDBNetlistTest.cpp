#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistText.h"
#include "tests/support/RecordingItems.h"
#include "tests/support/Throws.h"

#include <netlistdb/IVDBLineInfo.h>
#include <netlistdb/VDBLiveItems.h>
#include <netlistdb/VDBNetBus.h>
#include <netlistdb/VDBNetlist.h>

#include <DataBase.h>

#include <gtest/gtest.h>

#include <stdexcept>

namespace kvr::netlistdb {
namespace {

using testsupport::LibsetGuard;
using testsupport::messageOf;
using testsupport::RecordingNet;
using testsupport::RecordingNetBus;
using testsupport::RecordingPort;

/// Name and library of a module made from a netlist of the given cell and library, which may be null or absent.
struct Names {
    std::string name;
    std::string library;
};

Names namesIn(const char *cellName, bool hasLibrary, const char *libraryName)
{
    LibsetGuard guard;
    auto *netlist = new Verific::Netlist("netlist");
    auto *cell = new Verific::Cell(cellName);
    cell->Add(netlist);
    Verific::Library *library = nullptr;
    if (hasLibrary) {
        library = new Verific::Library(libraryName);
        library->Add(cell);
    }
    const VDBNetlist module(netlist, "given", "given library");
    const Names names{module.getName(), module.GetLibName()};
    if (library != nullptr) {
        delete library;
    } else {
        delete cell;
    }
    return names;
}

TEST(VDBNetlist, RefusesANullNetlist)
{
    EXPECT_EQ(messageOf<std::invalid_argument>([] { VDBNetlist module(nullptr, "name", "library"); }),
              "netlist is nullptr");
}

TEST(VDBNetlist, PrefersTheNamesOfItsCellAndLibrary)
{
    const Names names = namesIn("counter", true, "work");
    EXPECT_EQ(names.name, "counter");
    EXPECT_EQ(names.library, "work");
}

TEST(VDBNetlist, KeepsTheGivenNamesWithoutACell)
{
    const Verific::Netlist loose("netlist");
    const VDBNetlist module(&loose, "given", "given library");
    EXPECT_EQ(module.getName(), "given");
    EXPECT_EQ(module.GetLibName(), "given library");
}

TEST(VDBNetlist, KeepsTheGivenNameWhenTheCellHasNoneAndStillTakesTheLibrary)
{
    const Names names = namesIn(nullptr, true, "work");
    EXPECT_EQ(names.name, "given");
    EXPECT_EQ(names.library, "work");
}

TEST(VDBNetlist, KeepsTheGivenLibraryWhenThereIsNoneOrItHasNoName)
{
    EXPECT_EQ(namesIn("counter", false, nullptr).library, "given library");
    EXPECT_EQ(namesIn("counter", false, nullptr).name, "counter");
    EXPECT_EQ(namesIn("counter", true, nullptr).library, "given library");
    EXPECT_EQ(namesIn("counter", true, nullptr).name, "counter");
}

TEST(VDBNetlist, TakesEmptyNamesOfCellAndLibrary)
{
    EXPECT_EQ(namesIn("", true, "").name, "");
    EXPECT_EQ(namesIn("", true, "").library, "");
}

TEST(VDBNetlist, IsUserDeclaredExactlyWithASourcePosition)
{
    LibsetGuard guard;
    const Verific::Netlist *top = testsupport::netlistFromText("module top() at top.v:3 end");
    VDBNetlist declared(top, "", "");
    EXPECT_TRUE(declared.isUserDeclared());
    ASSERT_NE(declared.getLineInfo(), nullptr);
    EXPECT_EQ(declared.getLineInfo()->getLineNumber(), 3u);
    const Verific::Netlist loose("netlist");
    VDBNetlist made(&loose, "", "");
    EXPECT_FALSE(made.isUserDeclared());
    EXPECT_EQ(made.getLineInfo(), nullptr);
}

class FilledNetlist : public testing::Test {
  protected:
    RecordingNet *net(const char *name) { return new RecordingNet(m_log, name); }
    RecordingNetBus *bus(const char *name) { return new RecordingNetBus(m_log, name); }
    RecordingPort *port(const char *name) { return new RecordingPort(m_log, name); }

    testsupport::Log m_log;
    const Verific::Netlist m_source{"netlist"};
};

TEST_F(FilledNetlist, ListsWhatItWasGivenInOrder)
{
    VDBNetlist module(&m_source, "", "");
    EXPECT_TRUE(module.getNets(false).empty());
    EXPECT_TRUE(module.getNets(true).empty());
    auto *a = net("a");
    auto *b = net("b");
    auto *p = port("p");
    auto *q = port("q");
    auto *x = bus("x");
    auto *y = bus("y");
    module.addNet(b);
    module.addNet(a);
    module.addPort(q);
    module.addPort(p);
    module.addNetBus(y);
    module.addNetBus(x);
    EXPECT_EQ(module.getNets(false), (std::vector<IVDBNet *>{b, a}));
    EXPECT_EQ(module.getPorts(), (std::vector<IVDBPort *>{q, p}));
    EXPECT_EQ(module.getAllNetBus(), (std::vector<IVDBNetBus *>{y, x}));
    EXPECT_EQ(module.plainNets(), module.getNets(false));
}

TEST_F(FilledNetlist, GivesTheMembersOfItsBusesBusByBusWithoutThePlainNets)
{
    VDBNetlist module(&m_source, "", "");
    module.addNet(net("plain"));
    std::vector<IVDBNet *> members;
    for (const auto &[name, bits] : {std::pair("x", 4), std::pair("a", 2)}) {
        VDBNetBus *made = new VDBNetBus(name, bits);
        for (int bit = 0; bit < bits; ++bit) {
            members.push_back(net(name));
            made->addNet(members.back());
        }
        module.addNetBus(made);
    }
    EXPECT_EQ(module.getNets(true), members);
    EXPECT_EQ(module.getNets(false).size(), 1u);
}

TEST_F(FilledNetlist, KeepsTwoItemsOfOneName)
{
    VDBNetlist module(&m_source, "", "");
    module.addNet(net("n"));
    module.addNet(net("n"));
    module.addPort(port("n"));
    module.addPort(port("n"));
    module.addNetBus(bus("n"));
    module.addNetBus(bus("n"));
    EXPECT_EQ(module.getNets(false).size(), 2u);
    EXPECT_EQ(module.getPorts().size(), 2u);
    EXPECT_EQ(module.getAllNetBus().size(), 2u);
}

TEST_F(FilledNetlist, DeletesBusesThenNetsThenPortsAndSkipsNulls)
{
    {
        VDBNetlist module(&m_source, "", "");
        module.addPort(port("p1"));
        module.addPort(nullptr);
        module.addNet(net("n1"));
        module.addNetBus(bus("b1"));
        module.addNet(nullptr);
        module.addNetBus(nullptr);
        module.addNetBus(bus("b2"));
        module.addNet(net("n2"));
        module.addPort(port("p2"));
    }
    EXPECT_EQ(m_log, (testsupport::Log{"b1", "b2", "n1", "n2", "p1", "p2"}));
}

TEST_F(FilledNetlist, ShrinkingKeepsTheLists)
{
    VDBNetlist module(&m_source, "", "");
    for (const char *name : {"a", "b", "c"}) {
        module.addNet(net(name));
    }
    const auto before = module.getNets(false);
    module.shrinkToFit();
    EXPECT_EQ(module.getNets(false), before);
    EXPECT_EQ(module.plainNets().capacity(), 3u);
}

} // namespace
} // namespace kvr::netlistdb
