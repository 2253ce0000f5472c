#include "Designs.h"
#include "SavedFileBytes.h"
#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistDump.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include <DataBase.h>
#include <LineFile.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace {

using namespace Verific;
using namespace platformtest;
using testsupport::dumpHierarchy;
using testsupport::dumpNetlist;

class SavedNetlistTest : public testing::Test {
  protected:
    /// Saves @p top, clears everything and restores it.
    Netlist *roundTrip(const Netlist *top)
    {
        EXPECT_EQ(top->SaveToFile(m_file.c_str()), 1u);
        testsupport::LibsetGuard::clear();
        return Netlist::RestoreFromFile(m_file.c_str());
    }

    static std::string libraries()
    {
        std::string text;
        MapIter iter;
        MapIter cellIter;
        MapIter netlistIter;
        Library *library = nullptr;
        Cell *cell = nullptr;
        Netlist *netlist = nullptr;
        FOREACH_LIBRARY_OF_LIBSET (Libset::Global(), iter, library) {
            text += std::string(library->Name()) + ":";
            FOREACH_CELL_OF_LIBRARY (library, cellIter, cell) {
                text += " " + std::string(cell->Name());
                FOREACH_NETLIST_OF_CELL (cell, netlistIter, netlist) {
                    text += "/" + std::string(netlist->Name() != nullptr ? netlist->Name() : "null");
                }
            }
            text += "; ";
        }
        return text;
    }

    testsupport::LibsetGuard m_guard;
    ScratchDirectory m_scratch;
    std::string m_file = m_scratch.file("design.nl");
};

TEST_F(SavedNetlistTest, ComesBackWithEverythingInOrder)
{
    const Netlist *top = makeEverything();
    const std::string before = dumpHierarchy(top);
    const std::string librariesBefore = libraries();
    const Netlist *back = roundTrip(top);
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(dumpHierarchy(back), before);
    EXPECT_EQ(libraries(), librariesBefore);
    EXPECT_EQ(back->Owner(), Libset::Global()->GetLibrary("work")->GetCell("top"));
    const Cell *cell = Libset::Global()->GetLibrary("cells")->GetCell("ff");
    ASSERT_NE(cell->GetAtt("keep"), nullptr);
    EXPECT_EQ(cell->GetAttValue("keep"), nullptr);
    EXPECT_STREQ(cell->Owner()->GetAttValue("vendor"), "none");
}

TEST_F(SavedNetlistTest, IsTheSameFileWhenSavedAgain)
{
    const Netlist *back = roundTrip(makeEverything());
    ASSERT_NE(back, nullptr);
    const std::string again = m_scratch.file("again.nl");
    ASSERT_EQ(back->SaveToFile(again.c_str()), 1u);
    EXPECT_EQ(readBytes(again), readBytes(m_file));
}

TEST_F(SavedNetlistTest, ComesBackAfterDeletionsLeftGaps)
{
    Netlist *top = makeEverything();
    Netlist *middle = Libset::Global()->GetLibrary("work")->GetCell("middle")->GetFirstNetlist();
    delete middle->GetPort("in[1]");
    delete top->GetPort("nowhere");
    delete top->GetNet("n1");
    delete top->GetNet("zero");
    delete top->GetInst("u1");
    delete top->GetInst("vcc");
    delete top->GetNetBus("bus");
    delete top->GetPortBus("holes");
    const std::string before = dumpHierarchy(top);
    EXPECT_EQ(dumpHierarchy(roundTrip(top)), before);
}

TEST_F(SavedNetlistTest, KeepsAnEmptyNetlist)
{
    const Netlist *top = makeNetlist("work", "empty", nullptr);
    const std::string before = dumpHierarchy(top);
    EXPECT_EQ(dumpHierarchy(roundTrip(top)), before);
}

TEST_F(SavedNetlistTest, KeepsNamesOfEveryKind)
{
    Netlist *top = makeNetlist("", "");
    const std::string longName(70000, 'x');
    for (const char *name : {"", "a b", "\\esc[3] ", "\xC3\xA4\xFF\x01", longName.c_str()}) {
        addNet(top, name);
        addInstance(top, name, nullptr);
    }
    addNet(top, nullptr);
    addInstance(top, nullptr, nullptr);
    const std::string before = dumpHierarchy(top);
    EXPECT_EQ(dumpHierarchy(roundTrip(top)), before);
}

TEST_F(SavedNetlistTest, SharesAttributesAndParametersThatAreEqual)
{
    const Netlist *back = roundTrip(makeEverything());
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->GetInst("u1")->GetParameters(), back->GetInst("u2")->GetParameters());
    EXPECT_EQ(back->GetNet("n1")->GetAtt("k"), back->GetNet("n2")->GetAtt("k"));
    back->GetInst("u1")->AddParam("INIT", "other");
    EXPECT_STREQ(static_cast<const char *>(back->GetInst("u2")->GetParameters()->GetValue("INIT")), "4'b0110");
}

TEST_F(SavedNetlistTest, KeepsPositionsWhoseAbsolutePathIsUnknown)
{
    Netlist *top = makeNetlist("work", "top");
    top->SetLinefile(LineFile::EncodeLineFile("gone.v", nullptr, 3));
    addNet(top, "n")->SetLinefile(LineFile::EncodeLineFile("gone.v", "/was/here/gone.v", 4));
    addNet(top, "m")->SetLinefile(LineFile::EncodeLineFile("gone.v", 0));
    const std::string before = dumpHierarchy(top);
    EXPECT_EQ(dumpHierarchy(roundTrip(top)), before);
}

TEST_F(SavedNetlistTest, HoldsNothingOfTheFolderItWasSavedIn)
{
    std::vector<std::string> saved;
    const std::filesystem::path home = std::filesystem::current_path();
    for (const char *folder : {"/", "/tmp"}) {
        Libset::Reset();
        LineFile::DeleteAllLineFiles();
        std::filesystem::current_path(folder);
        Netlist *top = makeNetlist("work", "top");
        top->SetLinefile(LineFile::EncodeLineFile("../rtl/top.v", 3));
        addNet(top, "n")->SetLinefile(LineFile::EncodeLineFile("/abs/n.v", 4));
        const Netlist *back = roundTrip(top);
        ASSERT_NE(back, nullptr);
        std::ifstream stream(m_file, std::ios::binary);
        saved.emplace_back(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
        std::filesystem::current_path(home);
        EXPECT_STREQ(LineFile::GetFileName(back->Linefile()), "../rtl/top.v");
        EXPECT_EQ(LineFile::GetAbsFileName(back->Linefile()), std::string("/rtl/top.v"));
        EXPECT_STREQ(LineFile::GetAbsFileName(back->GetNet("n")->Linefile()), "/abs/n.v");
    }
    EXPECT_EQ(saved.at(0), saved.at(1));
}

TEST_F(SavedNetlistTest, DropsPositionsWhoseFileIsForgotten)
{
    Netlist *top = makeNetlist("work", "top");
    top->SetLinefile(LineFile::EncodeLineFile("gone.v", 3));
    LineFile::DeleteAllLineFiles();
    const Netlist *back = roundTrip(top);
    ASSERT_NE(back, nullptr);
    EXPECT_FALSE(back->Linefile());
}

TEST_F(SavedNetlistTest, HoldsOnlyWhatIsBelowTheTop)
{
    makeEverything();
    const Netlist *middle = Libset::Global()->GetLibrary("work")->GetCell("middle")->GetFirstNetlist();
    const std::string before = dumpHierarchy(middle);
    const Netlist *back = roundTrip(middle);
    EXPECT_EQ(dumpHierarchy(back), before);
    EXPECT_EQ(libraries(), "cells: gate/netlist; work: middle/rtl; ");
}

TEST_F(SavedNetlistTest, KeepsTheOrderOfReferences)
{
    Netlist *gate = makeGate();
    Netlist *top = makeNetlist("work", "top");
    Instance *late = new Instance("late", gate);
    addInstance(top, "a", gate);
    addInstance(top, "b", gate);
    top->Add(late);
    ASSERT_EQ(referencesOf(gate), "late a b");
    const Netlist *back = roundTrip(top);
    ASSERT_NE(back, nullptr);
    gate = back->GetInst("a")->View();
    EXPECT_EQ(referencesOf(gate), "late a b");
    delete back->GetInst("a");
    EXPECT_EQ(referencesOf(gate), "late b");
}

TEST_F(SavedNetlistTest, ReusesLibrariesAndCellsAndFindsAFreeViewName)
{
    const Netlist *top = makeEverything();
    ASSERT_EQ(top->SaveToFile(m_file.c_str()), 1u);
    const Netlist *second = Netlist::RestoreFromFile(m_file.c_str());
    const Netlist *third = Netlist::RestoreFromFile(m_file.c_str());
    ASSERT_NE(second, nullptr);
    ASSERT_NE(third, nullptr);
    EXPECT_EQ(second->Owner(), top->Owner());
    EXPECT_STREQ(second->Name(), "netlist_1");
    EXPECT_STREQ(third->Name(), "netlist_2");
    EXPECT_EQ(top->Owner()->NumOfNetlists(), 3u);
    EXPECT_EQ(libraries(), "cells: gate/netlist/netlist_1/netlist_2 ff/netlist/netlist_1/netlist_2; "
                           "Primitives: VCC/netlist/netlist_1/netlist_2 GND/netlist/netlist_1/netlist_2 "
                           "BUF/netlist/netlist_1/netlist_2; "
                           "Operators: add/netlist/netlist_1/netlist_2; "
                           "work: middle/rtl/rtl_1/rtl_2 top/netlist/netlist_1/netlist_2; ");
    EXPECT_NE(second->GetInst("u1")->View(), top->GetInst("u1")->View());
    // An existing library keeps its own traits.
    EXPECT_EQ(Libset::Global()->GetLibrary("cells")->attributeCount(), 1u);
}

TEST_F(SavedNetlistTest, PutsALooseTopIntoLibraryWork)
{
    Netlist *top = makeEverything();
    const std::unique_ptr<Netlist> copy(top->Copy(nullptr));
    const std::string before = dumpNetlist(copy.get());
    ASSERT_EQ(copy->SaveToFile(m_file.c_str()), 1u);
    testsupport::LibsetGuard::clear();
    const Netlist *back = Netlist::RestoreFromFile(m_file.c_str());
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(dumpNetlist(back), before);
    ASSERT_NE(back->Owner(), nullptr);
    EXPECT_STREQ(back->Owner()->Name(), "netlist");
    EXPECT_EQ(back->Owner()->Owner(), Libset::Global()->GetLibrary("work"));
}

TEST_F(SavedNetlistTest, PutsNamelessLooseNetlistsIntoACellOfTheirOwn)
{
    Netlist loose(nullptr);
    Netlist below("");
    Cell stray("stray");
    Netlist *strayView = new Netlist("v");
    stray.Add(strayView);
    addInstance(&loose, "b", &below);
    addInstance(&loose, "s", strayView);
    ASSERT_EQ(loose.SaveToFile(m_file.c_str()), 1u);
    const Netlist *back = Netlist::RestoreFromFile(m_file.c_str());
    ASSERT_NE(back, nullptr);
    EXPECT_STREQ(back->CellBaseName(), "top");
    EXPECT_STREQ(back->GetInst("b")->View()->CellBaseName(), "top");
    EXPECT_STREQ(back->GetInst("s")->View()->CellBaseName(), "stray");
    EXPECT_EQ(libraries(), "work: stray/v top/null/; ");
}

TEST_F(SavedNetlistTest, DeletingTheTopLeavesTheNetlistsBelow)
{
    Netlist *back = roundTrip(makeEverything());
    ASSERT_NE(back, nullptr);
    Netlist *gate = back->GetInst("u1")->View();
    delete back;
    EXPECT_EQ(referencesOf(gate), "inner");
    EXPECT_NE(gate->GetPort("a"), nullptr);
    EXPECT_EQ(Libset::Global()->GetLibrary("work")->GetCell("top")->NumOfNetlists(), 0u);
}

TEST_F(SavedNetlistTest, AnswersNullForNoFile)
{
    EXPECT_EQ(Netlist::RestoreFromFile(nullptr), nullptr);
    EXPECT_EQ(Netlist::RestoreFromFile(""), nullptr);
    EXPECT_EQ(Netlist::RestoreFromFile(m_scratch.file("missing").c_str()), nullptr);
    EXPECT_EQ(Netlist::RestoreFromFile(m_scratch.path().c_str()), nullptr);
    EXPECT_EQ(Netlist::RestoreFromFile("/dev/null"), nullptr);
    EXPECT_EQ(Netlist::RestoreFromFile("/dev/zero"), nullptr);
    EXPECT_EQ(Libset::Global()->GetLibraries()->Size(), 0u);
}

TEST_F(SavedNetlistTest, ReplacesAnEarlierFile)
{
    const Netlist *top = makeEverything();
    writeBytes(m_file, "something else");
    EXPECT_EQ(top->SaveToFile(m_file.c_str()), 1u);
    EXPECT_NE(Netlist::RestoreFromFile(m_file.c_str()), nullptr);
    EXPECT_EQ(
        std::distance(std::filesystem::directory_iterator(m_scratch.path()), std::filesystem::directory_iterator()), 1);
}

TEST_F(SavedNetlistTest, SavingFailsWithoutLeavingAnything)
{
    const Netlist *top = makeEverything();
    EXPECT_EQ(top->SaveToFile(nullptr), 0u);
    EXPECT_EQ(top->SaveToFile(""), 0u);
    EXPECT_EQ(top->SaveToFile(m_scratch.file("no/such/directory").c_str()), 0u);
    // A directory that is not empty cannot be replaced by a file.
    std::filesystem::create_directories(m_scratch.file("taken/inside"));
    EXPECT_EQ(top->SaveToFile(m_scratch.file("taken").c_str()), 0u);
    EXPECT_TRUE(std::filesystem::is_directory(m_scratch.file("taken/inside")));
    EXPECT_EQ(
        std::distance(std::filesystem::directory_iterator(m_scratch.path()), std::filesystem::directory_iterator()), 1);
}

TEST_F(SavedNetlistTest, SavingFailsWhenTheFileCannotBeWrittenWhole)
{
    const Netlist *top = makeEverything();
    writeBytes(m_file, "what was there before");
    rlimit before = {};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    rlimit tight = before;
    tight.rlim_cur = 1000;
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &tight), 0);
    const unsigned saved = top->SaveToFile(m_file.c_str());
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(saved, 0u);
    EXPECT_EQ(readBytes(m_file), "what was there before");
    EXPECT_EQ(
        std::distance(std::filesystem::directory_iterator(m_scratch.path()), std::filesystem::directory_iterator()), 1);
}

TEST_F(SavedNetlistTest, NumbersManyViewsOfOneNameInOneCell)
{
    Netlist *top = makeNetlist("work", "top");
    for (int i = 0; i < 20000; ++i) {
        addInstance(top, nullptr, makeNetlist("work", "cell", "v"));
    }
    const Netlist *back = roundTrip(top);
    ASSERT_NE(back, nullptr);
    const Cell *cell = Libset::Global()->GetLibrary("work")->GetCell("cell");
    EXPECT_EQ(cell->NumOfNetlists(), 20000u);
    EXPECT_NE(cell->GetNetlist("v_19999"), nullptr);
    EXPECT_STREQ(cell->GetFirstNetlist()->Name(), "v");
}

TEST_F(SavedNetlistTest, RefusesToSaveANetlistThatContainsItself)
{
    Netlist *top = makeNetlist("work", "top");
    Netlist *below = makeNetlist("work", "below");
    addInstance(top, "b", below);
    Instance *loop = addInstance(below, "t", top);
    EXPECT_EQ(top->SaveToFile(m_file.c_str()), 0u);
    EXPECT_FALSE(std::filesystem::exists(m_file));
    delete loop;
    EXPECT_EQ(top->SaveToFile(m_file.c_str()), 1u);
    addInstance(top, "self", top);
    EXPECT_EQ(top->SaveToFile(m_file.c_str()), 0u);
}

TEST_F(SavedNetlistTest, RefusesToSaveADirectionThatIsNone)
{
    Netlist *top = makeNetlist("work", "top");
    Port *port = addPort(top, "p", DIR_INOUT + 1);
    EXPECT_EQ(top->SaveToFile(m_file.c_str()), 0u);
    delete port;
    auto *bus = new PortBus("b", 1, 0, DIR_INOUT + 1);
    top->Add(bus);
    EXPECT_EQ(top->SaveToFile(m_file.c_str()), 0u);
    delete bus;
    EXPECT_EQ(top->SaveToFile(m_file.c_str()), 1u);
}

TEST_F(SavedNetlistTest, LeavesOutAnInstanceThatIsInNoNetlist)
{
    Netlist *top = makeNetlist("work", "top");
    Netlist *gate = makeGate();
    const std::unique_ptr<Instance> loose(new Instance("loose", gate));
    addInstance(top, "g", gate);
    ASSERT_EQ(top->SaveToFile(m_file.c_str()), 1u);
    const Netlist *back = Netlist::RestoreFromFile(m_file.c_str());
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(referencesOf(back->GetInst("g")->View()), "g");
}

TEST_F(SavedNetlistTest, KeepsALargeFlatNetlist)
{
    Netlist *gate = makeGate();
    const std::vector<Port *> ports = {gate->GetPort("a"), gate->GetPort("b"), gate->GetPort("y")};
    Netlist *top = makeNetlist("work", "top");
    std::vector<Net *> nets;
    for (int i = 0; i < 20000; ++i) {
        nets.push_back(addNet(top, ("n" + std::to_string(i)).c_str()));
    }
    std::size_t net = 1;
    for (int i = 0; i < 20000; ++i) {
        Instance *inst = addInstance(top, ("u" + std::to_string(i)).c_str(), gate);
        for (Port *port : ports) {
            net = net * 48271 % 2147483647;
            inst->Connect(port, nets[net % nets.size()]);
        }
    }
    const std::string before = dumpHierarchy(top);
    EXPECT_TRUE(dumpHierarchy(roundTrip(top)) == before);
}

} // namespace
