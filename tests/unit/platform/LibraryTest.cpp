#include "tests/support/LibsetGuard.h"

#include <memory>
#include <string>

#include <DataBase.h>
#include <gtest/gtest.h>

namespace {

using namespace Verific;

class LibraryTest : public testing::Test {
  protected:
    testsupport::LibsetGuard m_guard;
};

std::string librariesOf(const Libset *libset)
{
    std::string text;
    MapIter iter;
    Library *library = nullptr;
    FOREACH_LIBRARY_OF_LIBSET (libset, iter, library) {
        text += std::string(library->Name() != nullptr ? library->Name() : "null") + " ";
    }
    return text;
}

TEST_F(LibraryTest, GlobalLibsetIsOneAndTheSame)
{
    EXPECT_EQ(Libset::Global(), Libset::Global());
    EXPECT_EQ(librariesOf(Libset::Global()), "");
}

TEST_F(LibraryTest, LibrariesStandInOrderOfAddition)
{
    Libset *global = Libset::Global();
    for (const char *name : {"work", "ieee", "cells"}) {
        EXPECT_EQ(global->Add(new Library(name)), 1u);
    }
    EXPECT_EQ(librariesOf(global), "work ieee cells ");
    Library *ieee = global->GetLibrary("ieee");
    ASSERT_NE(ieee, nullptr);
    EXPECT_EQ(ieee->Owner(), global);
    delete ieee;
    EXPECT_EQ(librariesOf(global), "work cells ");
    EXPECT_EQ(global->GetLibrary("ieee"), nullptr);
}

TEST_F(LibraryTest, OperatorsAndPrimitivesAreMadeOnFirstUse)
{
    EXPECT_EQ(Libset::Global()->GetLibrary("Operators"), nullptr);
    Library *operators = Library::Operators();
    EXPECT_EQ(Libset::Global()->GetLibrary("Operators"), operators);
    EXPECT_EQ(Library::Operators(), operators);
    EXPECT_STREQ(Library::Primitives()->Name(), "Primitives");
    EXPECT_EQ(librariesOf(Libset::Global()), "Operators Primitives ");
    Libset::Reset();
    EXPECT_EQ(librariesOf(Libset::Global()), "");
    const Library *primitives = Library::Primitives();
    EXPECT_EQ(primitives, Libset::Global()->GetLibrary("Primitives"));
}

TEST_F(LibraryTest, OperatorsIsAnExistingLibraryOfThatName)
{
    Library *mine = new Library("Operators");
    Libset::Global()->Add(mine);
    EXPECT_EQ(Library::Operators(), mine);
}

TEST_F(LibraryTest, NothingIsAddedTwice)
{
    Library *library = new Library("l");
    Libset::Global()->Add(library);
    Libset other;
    EXPECT_EQ(Libset::Global()->Add(library), 0u);
    EXPECT_EQ(other.Add(library), 0u);
    EXPECT_EQ(other.Add(nullptr), 0u);
    EXPECT_EQ(library->Owner(), Libset::Global());
    Cell *cell = new Cell("c");
    EXPECT_EQ(library->Add(cell), 1u);
    EXPECT_EQ(library->Add(cell), 0u);
    EXPECT_EQ(library->Add(nullptr), 0u);
    Netlist *netlist = new Netlist("v");
    EXPECT_EQ(cell->Add(netlist), 1u);
    EXPECT_EQ(cell->Add(netlist), 0u);
    EXPECT_EQ(cell->Add(nullptr), 0u);
    EXPECT_EQ(cell->NumOfNetlists(), 1u);
}

TEST_F(LibraryTest, CellsAreFoundByName)
{
    Library library("l");
    library.Add(new Cell("a"));
    library.Add(new Cell(nullptr));
    Cell *b = new Cell("b");
    library.Add(b);
    EXPECT_EQ(library.GetCell("b"), b);
    EXPECT_EQ(library.GetCell("c"), nullptr);
    EXPECT_EQ(library.GetCell(nullptr), nullptr);
    EXPECT_EQ(b->Owner(), &library);
    std::string names;
    MapIter iter;
    Cell *cell = nullptr;
    FOREACH_CELL_OF_LIBRARY (&library, iter, cell) {
        names += std::string(cell->Name() != nullptr ? cell->Name() : "null") + " ";
    }
    EXPECT_EQ(names, "a null b ");
}

TEST_F(LibraryTest, CellKnowsItsNetlists)
{
    Cell cell("c");
    EXPECT_EQ(cell.GetFirstNetlist(), nullptr);
    Netlist *first = new Netlist("rtl");
    Netlist *second = new Netlist("gates");
    cell.Add(first);
    cell.Add(second);
    EXPECT_EQ(first->Owner(), &cell);
    EXPECT_STREQ(first->CellBaseName(), "c");
    EXPECT_EQ(cell.GetFirstNetlist(), first);
    EXPECT_EQ(cell.GetNetlist("gates"), second);
    EXPECT_EQ(cell.NumOfNetlists(), 2u);
    delete first;
    EXPECT_EQ(cell.GetFirstNetlist(), second);
    EXPECT_EQ(cell.GetNetlist("rtl"), nullptr);
    EXPECT_EQ(cell.NumOfNetlists(), 1u);
    MapIter iter;
    Netlist *netlist = nullptr;
    FOREACH_NETLIST_OF_CELL (&cell, iter, netlist) {
        EXPECT_EQ(netlist, second);
    }
}

TEST_F(LibraryTest, ALooseNetlistHasNoCell)
{
    const Netlist loose("v");
    EXPECT_EQ(loose.Owner(), nullptr);
    EXPECT_EQ(loose.CellBaseName(), nullptr);
}

TEST_F(LibraryTest, LoopsOverNothingWhenNull)
{
    MapIter iter;
    SetIter setIter;
    Library *library = nullptr;
    Cell *cell = nullptr;
    Netlist *netlist = nullptr;
    Instance *inst = nullptr;
    unsigned met = 0;
    FOREACH_LIBRARY_OF_LIBSET (static_cast<Libset *>(nullptr), iter, library) {
        ++met;
    }
    FOREACH_CELL_OF_LIBRARY (library, iter, cell) {
        ++met;
    }
    FOREACH_NETLIST_OF_CELL (cell, iter, netlist) {
        ++met;
    }
    FOREACH_INSTANCE_OF_NETLIST (netlist, iter, inst) {
        ++met;
    }
    FOREACH_REFERENCE_OF_NETLIST (netlist, setIter, inst) {
        ++met;
    }
    EXPECT_EQ(met, 0u);
}

} // namespace
