#include "Designs.h"
#include "SavedFileBytes.h"
#include "TrackedNetlists.h"
#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistDump.h"

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <DataBase.h>
#include <gtest/gtest.h>

namespace {

using namespace Verific;
using namespace platformtest;

using Alive = std::set<int>;

/// Which netlists outlive their library, cell or users; the sanitizers watch what is left.
class NetlistReclaimerTest : public testing::Test {
  protected:
    /// A watched netlist of that cell in library "work".
    Netlist *make(const char *cell, int number) { return m_tracked.watch(makeNetlist("work", cell), number); }
    const Alive &alive() const { return m_tracked.alive(); }

    TrackedNetlists m_tracked;
    testsupport::LibsetGuard m_guard;
    ScratchDirectory m_scratch;
    std::string m_file = m_scratch.file("design.nl");
};

Library *libraryOf(const Netlist *netlist)
{
    return netlist->Owner()->Owner();
}

std::unique_ptr<Netlist> copyOf(const Netlist *netlist)
{
    return std::unique_ptr<Netlist>(netlist->Copy(nullptr));
}

TEST_F(NetlistReclaimerTest, ALooseNetlistStaysWholeWhenTheLibsetIsReset)
{
    const std::unique_ptr<Netlist> loose = copyOf(makeEverything());
    const std::string before = testsupport::dumpHierarchy(loose.get());
    Libset::Reset();
    EXPECT_EQ(Libset::Global()->GetLibraries()->Size(), 0u);
    // Of the references, those from netlists outside the hierarchy are not in the dump.
    EXPECT_EQ(testsupport::dumpHierarchy(loose.get()), before);
    const Netlist *adder = loose->GetInst("sum")->View();
    EXPECT_STREQ(adder->CellBaseName(), "add");
    EXPECT_STREQ(libraryOf(adder)->Name(), "Operators");
    EXPECT_EQ(libraryOf(adder)->Owner(), nullptr);
    EXPECT_EQ(libraryOf(adder)->GetCell("add"), adder->Owner());
    EXPECT_EQ(adder->Owner()->GetFirstNetlist(), adder);
}

TEST_F(NetlistReclaimerTest, TheLibsetMakesOperatorsAndPrimitivesAnewAfterAReset)
{
    const Library *oldOperators = Library::Operators();
    const Library *oldPrimitives = Library::Primitives();
    const std::unique_ptr<Netlist> loose = copyOf(makeEverything());
    Libset::Reset();
    EXPECT_NE(Library::Operators(), oldOperators);
    EXPECT_NE(Library::Primitives(), oldPrimitives);
    EXPECT_EQ(Libset::Global()->GetLibrary("Operators"), Library::Operators());
    EXPECT_EQ(Library::Operators()->GetCells()->Size(), 0u);
    EXPECT_EQ(libraryOf(loose->GetInst("sum")->View()), oldOperators);
}

TEST_F(NetlistReclaimerTest, NetlistsThatOnlyTheSetUsesGoWithIt)
{
    Netlist *leaf = make("leaf", 1);
    Netlist *top = make("top", 2);
    addInstance(top, "u", leaf);
    addInstance(make("other", 3), "u", leaf);
    const std::unique_ptr<Netlist> loose = copyOf(top);
    Libset::Reset();
    EXPECT_EQ(alive(), Alive{1});
    EXPECT_EQ(referencesOf(loose->GetInst("u")->View()), "u");
}

TEST_F(NetlistReclaimerTest, TheLastOfSeveralUsersTakesTheKeptNetlistsAlong)
{
    Netlist *leaf = make("leaf", 1);
    Netlist *middle = make("middle", 2);
    Netlist *top = make("top", 3);
    addInstance(middle, "l", leaf);
    addInstance(top, "m", middle);
    std::unique_ptr<Netlist> first = copyOf(top);
    std::unique_ptr<Netlist> second = copyOf(top);
    Libset::Reset();
    EXPECT_EQ(alive(), (Alive{1, 2}));
    first.reset();
    EXPECT_EQ(alive(), (Alive{1, 2}));
    EXPECT_STREQ(second->GetInst("m")->View()->GetInst("l")->View()->CellBaseName(), "leaf");
    second.reset();
    EXPECT_EQ(alive(), Alive{});
}

TEST_F(NetlistReclaimerTest, TheLastInstanceTakesItsViewAlong)
{
    Netlist *leaf = make("leaf", 1);
    Netlist loose("loose");
    Instance *first = addInstance(&loose, "a", leaf);
    Instance *second = addInstance(&loose, "b", leaf);
    Libset::Reset();
    delete first;
    EXPECT_EQ(alive(), Alive{1});
    delete second;
    EXPECT_EQ(alive(), Alive{});
}

TEST_F(NetlistReclaimerTest, AnInstanceWithoutOwnerKeepsItsView)
{
    Netlist *leaf = make("leaf", 1);
    Netlist *middle = make("middle", 2);
    addInstance(middle, "l", leaf);
    auto inst = std::make_unique<Instance>("u", middle);
    Libset::Reset();
    EXPECT_EQ(alive(), (Alive{1, 2}));
    EXPECT_EQ(inst->View(), middle);
    inst.reset();
    EXPECT_EQ(alive(), Alive{});
}

TEST_F(NetlistReclaimerTest, ALibraryOutsideTheSetKeepsWhatItsNetlistsUse)
{
    Netlist *leaf = make("leaf", 1);
    auto library = std::make_unique<Library>("mine");
    Cell *cell = new Cell("user");
    library->Add(cell);
    Netlist *user = m_tracked.watch(new Netlist("netlist"), 2);
    cell->Add(user);
    addInstance(user, "u", leaf);
    Libset::Reset();
    EXPECT_EQ(alive(), (Alive{1, 2}));
    library.reset();
    EXPECT_EQ(alive(), Alive{});
}

TEST_F(NetlistReclaimerTest, DeletingANetlistIsNeverPutOff)
{
    Netlist *leaf = make("leaf", 1);
    Netlist *kept = make("kept", 2);
    Netlist loose("loose");
    Instance *a = addInstance(&loose, "a", leaf);
    Instance *b = addInstance(&loose, "b", kept);
    delete leaf;
    EXPECT_EQ(a->View(), nullptr);
    Libset::Reset();
    EXPECT_EQ(alive(), Alive{2});
    delete kept;
    EXPECT_EQ(alive(), Alive{});
    EXPECT_EQ(b->View(), nullptr);
}

TEST_F(NetlistReclaimerTest, DeletingALibraryKeepsWhatALooseNetlistUsesThroughTheRestOfTheSet)
{
    Netlist *gate = m_tracked.watch(makeGate(), 1);
    m_tracked.watch(makeNetlist("cells", "idle"), 2);
    Netlist *middle = make("middle", 3);
    addInstance(middle, "g", gate);
    Netlist *top = make("top", 4);
    addInstance(top, "m", middle);
    std::unique_ptr<Netlist> loose = copyOf(top);
    Library *cells = libraryOf(gate);
    cells->AddAtt(new Att("vendor", "none"));
    delete cells;
    EXPECT_EQ(alive(), (Alive{1, 3, 4}));
    EXPECT_EQ(Libset::Global()->GetLibrary("cells"), nullptr);
    ASSERT_EQ(middle->GetInst("g")->View(), gate);
    EXPECT_STREQ(gate->CellBaseName(), "gate");
    EXPECT_STREQ(libraryOf(gate)->Name(), "cells");
    EXPECT_STREQ(libraryOf(gate)->GetAttValue("vendor"), "none");
    EXPECT_EQ(libraryOf(gate)->GetCell("gate"), gate->Owner());
    EXPECT_EQ(libraryOf(gate)->GetCell("idle"), nullptr);
    // The netlist in the set still uses it.
    loose.reset();
    EXPECT_EQ(alive(), (Alive{1, 3, 4}));
    Libset::Reset();
    EXPECT_EQ(alive(), Alive{});
}

TEST_F(NetlistReclaimerTest, DeletingALibraryTakesWhatOnlyTheRestOfTheSetUses)
{
    Netlist *gate = m_tracked.watch(makeGate(), 1);
    Netlist *middle = make("middle", 2);
    addInstance(middle, "g", gate);
    Netlist *bystander = make("bystander", 3);
    const std::unique_ptr<Netlist> loose = copyOf(bystander);
    delete libraryOf(gate);
    EXPECT_EQ(alive(), (Alive{2, 3}));
    EXPECT_EQ(middle->GetInst("g")->View(), nullptr);
}

TEST_F(NetlistReclaimerTest, ADeletedCellIsHiddenUntilItsNetlistsGo)
{
    Netlist *leaf = make("leaf", 1);
    Netlist *other = m_tracked.watch(makeNetlist("work", "leaf", "other"), 2);
    Netlist loose("loose");
    Instance *inst = addInstance(&loose, "u", leaf);
    addInstance(&loose, "v", make("leaf2", 3));
    leaf->Owner()->AddAtt(new Att("keep", "1"));
    Library *work = libraryOf(leaf);
    delete leaf->Owner();
    delete work->GetCell("leaf2");
    EXPECT_EQ(alive(), (Alive{1, 3})) << "only views that are used stay: " << other;
    EXPECT_EQ(work->GetCell("leaf"), nullptr);
    EXPECT_EQ(work->GetCells()->Size(), 0u);
    EXPECT_STREQ(leaf->CellBaseName(), "leaf");
    EXPECT_STREQ(leaf->Owner()->GetAttValue("keep"), "1");
    EXPECT_EQ(leaf->Owner()->GetFirstNetlist(), leaf);
    EXPECT_EQ(libraryOf(leaf), work);
    // A new cell of that name has nothing to do with the hidden one.
    EXPECT_NE(make("leaf", 4)->Owner(), leaf->Owner());
    Libset::Reset();
    EXPECT_EQ(alive(), (Alive{1, 3}));
    EXPECT_STREQ(libraryOf(leaf)->Name(), "work");
    delete inst;
    EXPECT_EQ(alive(), Alive{3});
    EXPECT_STREQ(libraryOf(loose.GetInst("v")->View())->Name(), "work");
}

TEST_F(NetlistReclaimerTest, HiddenCellsFollowTheirLibraryWhenItIsDeleted)
{
    Netlist *leaf = make("leaf", 1);
    Netlist loose("loose");
    addInstance(&loose, "u", leaf);
    delete leaf->Owner();
    delete libraryOf(leaf);
    EXPECT_EQ(Libset::Global()->GetLibrary("work"), nullptr);
    EXPECT_STREQ(leaf->CellBaseName(), "leaf");
    EXPECT_STREQ(libraryOf(leaf)->Name(), "work");
    EXPECT_EQ(libraryOf(leaf)->Owner(), nullptr);
}

TEST_F(NetlistReclaimerTest, KeptCellsAndLibrariesCanBeDeletedByHand)
{
    for (const bool library : {false, true}) {
        Netlist *leaf = make("leaf", 1);
        Netlist *hidden = make("hidden", 2);
        Netlist loose("loose");
        Instance *inst = addInstance(&loose, "u", leaf);
        addInstance(&loose, "h", hidden);
        delete hidden->Owner();
        Libset::Reset();
        // The first deletion hands the netlists on once more, a further one finds no successor and deletes them.
        for (int deletion = 0; deletion < 2; ++deletion) {
            EXPECT_EQ(alive(), (Alive{1, 2}));
            DesignObj *owner = leaf->Owner();
            delete (library ? libraryOf(leaf) : owner);
        }
        EXPECT_EQ(alive(), library ? Alive{} : Alive{2});
        EXPECT_EQ(inst->View(), nullptr);
    }
}

TEST_F(NetlistReclaimerTest, NetlistsThatInstantiateEachOtherGoWithTheirLastUser)
{
    Netlist *first = make("first", 1);
    Netlist *second = make("second", 2);
    addInstance(first, "s", second);
    addInstance(second, "f", first);
    addInstance(second, "self", second);
    addInstance(second, "l", make("leaf", 3));
    std::vector<std::unique_ptr<Netlist>> users;
    for (int at = 0; at < 2; ++at) {
        users.push_back(std::make_unique<Netlist>("loose"));
        addInstance(users.back().get(), "f", first);
    }
    Libset::Reset();
    EXPECT_EQ(alive(), (Alive{1, 2, 3}));
    users.pop_back();
    EXPECT_EQ(alive(), (Alive{1, 2, 3}));
    users.pop_back();
    EXPECT_EQ(alive(), Alive{});
}

TEST_F(NetlistReclaimerTest, NetlistsThatInstantiateEachOtherGoWithTheSetWhenNothingElseUsesThem)
{
    Netlist *first = make("first", 1);
    Netlist *second = make("second", 2);
    addInstance(first, "s", second);
    addInstance(second, "f", first);
    Netlist loose("loose");
    addInstance(first, "l", &loose);
    Libset::Reset();
    EXPECT_EQ(alive(), Alive{});
    EXPECT_EQ(loose.NumOfRefs(), 0u);
}

TEST_F(NetlistReclaimerTest, ADeepHierarchyIsKeptAndDeletedWithoutRecursion)
{
    constexpr int LEVELS = 20000;
    for (const bool byLibrary : {false, true}) {
        Netlist *top = make("top", 0);
        Netlist *user = top;
        for (int level = 1; level <= LEVELS; ++level) {
            Netlist *below = make(std::to_string(level).c_str(), level);
            addInstance(user, "a", below);
            addInstance(user, "b", below);
            user = below;
        }
        std::unique_ptr<Netlist> loose = copyOf(top);
        if (byLibrary) {
            delete libraryOf(top);
        } else {
            Libset::Reset();
        }
        EXPECT_EQ(alive().size(), static_cast<std::size_t>(LEVELS));
        loose.reset();
        EXPECT_EQ(alive(), Alive{});
    }
}

/// What a restore makes below its top.
class RestoredNetlistsTest : public NetlistReclaimerTest {
  protected:
    void SetUp() override
    {
        Netlist *leaf = makeNetlist("cells", "leaf");
        Netlist *middle = makeNetlist("work", "middle");
        Netlist *top = makeNetlist("work", "top");
        addInstance(middle, "l", leaf);
        addInstance(top, "m", middle);
        ASSERT_EQ(top->SaveToFile(m_file.c_str()), 1u);
        Libset::Reset();
    }

    /// The top; @p first is the number of the leaf, those of middle and top follow.
    Netlist *restore(int first)
    {
        Netlist *top = Netlist::RestoreFromFile(m_file.c_str());
        Netlist *middle = top->GetInst("m")->View();
        m_tracked.watch(middle->GetInst("l")->View(), first);
        m_tracked.watch(middle, first + 1);
        return m_tracked.watch(top, first + 2);
    }

    static Cell *leafCell() { return Libset::Global()->GetLibrary("cells")->GetCell("leaf"); }
};

TEST_F(RestoredNetlistsTest, StayWhenTheTopIsDeleted)
{
    delete restore(1);
    EXPECT_EQ(alive(), (Alive{1, 2}));
    Libset::Reset();
    EXPECT_EQ(alive(), Alive{});
}

TEST_F(RestoredNetlistsTest, GoWithTheLastCopyOfTheTop)
{
    Netlist *top = restore(1);
    std::unique_ptr<Netlist> first = copyOf(top);
    std::unique_ptr<Netlist> second = copyOf(top);
    delete top;
    first.reset();
    EXPECT_EQ(alive(), (Alive{1, 2}));
    second.reset();
    EXPECT_EQ(alive(), Alive{});
    EXPECT_EQ(leafCell(), nullptr) << "empty cells that the restore made go too";
    EXPECT_NE(Libset::Global()->GetLibrary("cells"), nullptr);
}

TEST_F(RestoredNetlistsTest, GoWithTheTopOnceACopyHasBeenDeleted)
{
    Netlist *top = restore(1);
    copyOf(top).reset();
    EXPECT_EQ(alive(), (Alive{1, 2, 3}));
    delete top;
    EXPECT_EQ(alive(), Alive{});
}

TEST_F(RestoredNetlistsTest, StayWhileAnyOtherNetlistUsesThem)
{
    Netlist *top = restore(1);
    Netlist *other = make("other", 4);
    addInstance(other, "l", top->GetInst("m")->View()->GetInst("l")->View());
    std::unique_ptr<Netlist> copy = copyOf(top);
    delete top;
    copy.reset();
    EXPECT_EQ(alive(), (Alive{1, 4}));
    EXPECT_EQ(leafCell()->NumOfNetlists(), 1u);
    delete other;
    EXPECT_EQ(alive(), Alive{});
}

TEST_F(RestoredNetlistsTest, OfTwoRestoresGoOneByOne)
{
    Netlist *first = restore(1);
    Netlist *second = restore(11);
    std::unique_ptr<Netlist> firstCopy = copyOf(first);
    std::unique_ptr<Netlist> secondCopy = copyOf(second);
    delete first;
    delete second;
    firstCopy.reset();
    EXPECT_EQ(alive(), (Alive{11, 12}));
    EXPECT_EQ(leafCell()->NumOfNetlists(), 1u);
    secondCopy.reset();
    EXPECT_EQ(alive(), Alive{});
    EXPECT_EQ(leafCell(), nullptr);
}

TEST_F(RestoredNetlistsTest, LeaveACellThatWasThereBefore)
{
    Cell *cell = m_tracked.watch(makeNetlist("cells", "leaf", "mine"), 9)->Owner();
    Netlist *top = restore(1);
    copyOf(top).reset();
    delete cell->GetNetlist("mine");
    delete top;
    EXPECT_EQ(alive(), Alive{});
    EXPECT_EQ(leafCell(), cell);
    EXPECT_EQ(cell->NumOfNetlists(), 0u);
}

TEST_F(RestoredNetlistsTest, SurviveAResetInTheCopy)
{
    Netlist *top = restore(1);
    std::unique_ptr<Netlist> copy = copyOf(top);
    Libset::Reset();
    EXPECT_EQ(alive(), (Alive{1, 2}));
    restore(11);
    copy.reset();
    EXPECT_EQ(alive(), (Alive{11, 12, 13}));
}

TEST_F(RestoredNetlistsTest, ThatAreDeletedByHandTakeWhatIsBelowAlongOnceACopyHasBeenDeleted)
{
    Netlist *top = restore(1);
    copyOf(top).reset();
    delete top->GetInst("m")->View();
    EXPECT_EQ(alive(), Alive{3});
    EXPECT_EQ(top->GetInst("m")->View(), nullptr);
}

TEST_F(RestoredNetlistsTest, AreAsManyAfterAHundredRestores)
{
    std::string first;
    for (int round = 0; round < 100; ++round) {
        Netlist *top = restore(1);
        std::unique_ptr<Netlist> copy = copyOf(top);
        if (round % 2 == 0) {
            copy.reset();
        }
        const std::string text = testsupport::dumpHierarchy(top);
        EXPECT_EQ(text, first.empty() ? text : first) << "round " << round;
        first = text;
        delete top;
        copy.reset();
        ASSERT_EQ(alive(), Alive{});
    }
    EXPECT_EQ(Libset::Global()->GetLibrary("work")->GetCells()->Size(), 1u) << "that of the top";
}

} // namespace
