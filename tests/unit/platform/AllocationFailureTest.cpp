#include "Designs.h"
#include "SavedFileBytes.h"
#include "memory/Sanitizers.h"
#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistDump.h"
#include "tests/support/failing_allocator/FailingAllocator.h"

#include <filesystem>
#include <memory>
#include <new>
#include <string>

#include <DataBase.h>
#include <gtest/gtest.h>

namespace {

using namespace Verific;
using namespace platformtest;

/// Runs an action with room for 0, 1, 2… allocations until it succeeds, and looks each time at what it leaves.
class AllocationFailureTest : public testing::Test {
  protected:
    template <typename Action, typename Check> static void runWithEverLess(Action action, Check check)
    {
        long failures = 0;
        for (bool done = false; !done; ++failures) {
            testsupport::failAllocationAfter(failures, testsupport::Failures::ALL);
            try {
                action();
                done = true;
            } catch (const std::bad_alloc &) {
            }
            testsupport::failNoAllocation();
            ASSERT_NO_FATAL_FAILURE(check(done)) << failures << " allocations";
        }
        // Slabs, which sanitized builds do without, take few allocations to the heap.
        EXPECT_GT(failures, kvr::memory::IS_SANITIZED ? 10 : 4);
    }

    testsupport::LibsetGuard m_guard;
    ScratchDirectory m_scratch;
    std::string m_file = m_scratch.file("design.nl");
};

TEST_F(AllocationFailureTest, CopyLeavesNothingBehind)
{
    const Netlist *top = makeEverything();
    const std::string before = testsupport::dumpHierarchy(top);
    std::unique_ptr<Netlist> copy;
    runWithEverLess([&] { copy.reset(top->Copy(nullptr)); },
                    [&](bool done) {
                        ASSERT_EQ(copy != nullptr, done);
                        ASSERT_EQ(testsupport::dumpHierarchy(top), before);
                    });
    EXPECT_EQ(testsupport::dumpNetlist(copy.get()), testsupport::dumpNetlist(top));
}

TEST_F(AllocationFailureTest, RestoringLeavesTheLibsetAsItWas)
{
    const Netlist *top = makeEverything();
    ASSERT_EQ(top->SaveToFile(m_file.c_str()), 1u);
    const std::string before = testsupport::dumpHierarchy(top);
    const unsigned cells = Libset::Global()->GetLibrary("cells")->GetCells()->Size();
    Library *work = Libset::Global()->GetLibrary("work");
    delete Libset::Global()->GetLibrary("Operators");
    const Netlist *back = nullptr;
    runWithEverLess([&] { back = Netlist::RestoreFromFile(m_file.c_str()); },
                    [&](bool done) {
                        ASSERT_EQ(back != nullptr, done);
                        ASSERT_EQ(work->GetCell("top")->NumOfNetlists(), done ? 2u : 1u);
                        ASSERT_EQ(Libset::Global()->GetLibraries()->Size(), done ? 4u : 3u);
                        ASSERT_EQ(Libset::Global()->GetLibrary("cells")->GetCells()->Size(), cells);
                    });
    EXPECT_NE(back, nullptr);
}

TEST_F(AllocationFailureTest, SavingLeavesTheOldFile)
{
    const Netlist *top = makeEverything();
    writeBytes(m_file, "old");
    runWithEverLess([&] { ASSERT_EQ(top->SaveToFile(m_file.c_str()), 1u); },
                    [&](bool done) {
                        ASSERT_EQ(readBytes(m_file) == "old", !done);
                        ASSERT_EQ(std::distance(std::filesystem::directory_iterator(m_scratch.path()),
                                                std::filesystem::directory_iterator()),
                                  1);
                    });
}

TEST_F(AllocationFailureTest, DeletionAllocatesNothing)
{
    for (int kind = 0; kind < 4; ++kind) {
        Netlist *top = makeEverything();
        ASSERT_EQ(top->SaveToFile(m_file.c_str()), 1u);
        Libset::Reset();
        top = Netlist::RestoreFromFile(m_file.c_str());
        const Netlist *other = makeNetlist("work", "other");
        std::unique_ptr<Netlist> copy(top->Copy(nullptr));
        std::unique_ptr<Netlist> second(copy->Copy(nullptr));
        const Library *cells = Libset::Global()->GetLibrary("cells");
        const Cell *gate = cells->GetCell("gate");
        testsupport::failAllocationAfter(0, testsupport::Failures::ALL);
        switch (kind) {
        case 0:
            Libset::Reset();
            break;
        case 1:
            delete cells;
            break;
        case 2:
            delete gate;
            delete cells;
            break;
        default:
            delete top;
            delete other;
        }
        copy.reset();
        second.reset();
        Libset::Reset();
        EXPECT_FALSE(testsupport::allocationHasFailed());
        testsupport::failNoAllocation();
        EXPECT_EQ(Libset::Global()->GetLibraries()->Size(), 0u);
    }
}

TEST_F(AllocationFailureTest, ACopyThatFailsDoesNotCountAsAUserOfRestoredNetlists)
{
    ASSERT_EQ(makeEverything()->SaveToFile(m_file.c_str()), 1u);
    long passing = 0;
    for (std::unique_ptr<Netlist> copy; copy == nullptr; ++passing) {
        Libset::Reset();
        const Netlist *top = Netlist::RestoreFromFile(m_file.c_str());
        testsupport::failAllocationAfter(passing);
        try {
            copy.reset(top->Copy(nullptr));
        } catch (const std::bad_alloc &) {
        }
        testsupport::failNoAllocation();
        delete top;
        ASSERT_NE(Libset::Global()->GetLibrary("cells")->GetCell("gate"), nullptr) << passing;
    }
    EXPECT_GT(passing, 10);
}

TEST_F(AllocationFailureTest, EditsLeaveTheNetlistConsistent)
{
    Netlist *gate = makeGate();
    Netlist *top = makeNetlist("work", "top");
    const auto edit = [&] {
        auto net = std::make_unique<Net>("n");
        top->Add(net.get());
        Net *added = net.release();
        auto port = std::make_unique<Port>("p", DIR_IN);
        top->Add(port.get());
        Port *addedPort = port.release();
        auto inst = std::make_unique<Instance>("i", gate);
        top->Add(inst.get());
        Instance *addedInst = inst.release();
        addedPort->Connect(added);
        addedInst->Connect(gate->GetPort("y"), added);
        addedInst->AddParam("K", "V");
        addedInst->AddParam("K", "W");
        addedInst->AddAtt(new Att("k", "v"));
        auto bus = std::make_unique<NetBus>("b", 3, 0);
        top->Add(bus.get());
        bus.release()->SetElement(0, added);
    };
    runWithEverLess(edit, [&](bool) { ASSERT_NE(testsupport::dumpHierarchy(top), ""); });
}

} // namespace
