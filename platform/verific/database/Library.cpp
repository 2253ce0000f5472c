#include "Library.h"

#include "Netlist.h"
#include "NetlistReclaimer.h"
#include "OwnerTable.h"

#include <memory>
#include <utility>

namespace Verific {

namespace {

Library *libraryOfGlobal(const char *name)
{
    Libset *global = Libset::Global();
    Library *library = global->GetLibrary(name);
    if (library == nullptr) {
        auto made = std::make_unique<Library>(name);
        global->Add(made.get());
        library = made.release();
    }
    return library;
}

} // namespace

Libset *Libset::Global()
{
    // Never destroyed: a design that is alive at exit costs nothing there.
    static Libset *const global = new Libset;
    return global;
}

void Libset::Reset()
{
    Global()->deleteLibraries();
}

Libset::Libset() = default;

Libset::~Libset()
{
    deleteLibraries();
}

void Libset::deleteLibraries()
{
    const NetlistReclaimer::Deletion deletion;
    NetlistReclaimer::deleteNetlists(*this);
    for (unsigned slot = 0; slot < m_libraries.slots(); ++slot) {
        auto *library = static_cast<Library *>(m_libraries.valueAt(slot));
        if (library == nullptr) {
            continue;
        }
        library->m_owner = nullptr;
        if (library->deleteEmptyCells()) {
            library->m_abandoned = true;
        } else {
            delete library;
        }
    }
    m_libraries.Reset();
}

unsigned Libset::Add(Library *library)
{
    if (library == nullptr || library->m_owner != nullptr) {
        return 0;
    }
    library->m_slot =
        addToTable(m_libraries, library->Name(), library, [](Library *moved, unsigned slot) { moved->m_slot = slot; });
    library->m_owner = this;
    return 1;
}

Library *Libset::GetLibrary(const char *name) const
{
    return static_cast<Library *>(m_libraries.GetValue(name));
}

Library::Library(const char *name) : DesignObj(name), m_successor(new Library(Successor())) {}

Library::Library(Successor) : DesignObj(nullptr) {}

Library::~Library()
{
    const NetlistReclaimer::Deletion deletion;
    m_abandoned = false;
    if (m_successor == nullptr) {
        deleteCells();
    }
    NetlistReclaimer::deleteNetlists(*this);
    if (deleteEmptyCells()) {
        handOver(*m_successor.release());
    }
    if (m_owner != nullptr) {
        m_owner->m_libraries.removeSlot(m_slot);
    }
}

void Library::deleteCells()
{
    const auto deleteWhole = [](Cell *cell) {
        cell->m_successor = nullptr;
        delete cell;
    };
    MapIter iter;
    Cell *cell = nullptr;
    FOREACH_MAP_ITEM (&m_cells, iter, nullptr, &cell) {
        deleteWhole(cell);
    }
    while (m_hiddenCells != nullptr) {
        deleteWhole(m_hiddenCells);
    }
}

bool Library::deleteEmptyCells()
{
    for (unsigned slot = 0; slot < m_cells.slots(); ++slot) {
        if (auto *cell = static_cast<Cell *>(m_cells.valueAt(slot))) {
            if (cell->NumOfNetlists() == 0) {
                delete cell;
            } else {
                cell->m_abandoned = true;
            }
        }
    }
    return !empty();
}

void Library::handOver(Library &successor)
{
    successor.m_name = m_name;
    successor.copyTraits(*this);
    successor.m_abandoned = true;
    successor.m_cells.swap(m_cells);
    successor.m_hiddenCells = std::exchange(m_hiddenCells, nullptr);
    MapIter iter;
    Cell *cell = nullptr;
    FOREACH_MAP_ITEM (&successor.m_cells, iter, nullptr, &cell) {
        cell->m_owner = &successor;
    }
    for (cell = successor.m_hiddenCells; cell != nullptr; cell = cell->m_nextHidden) {
        cell->m_owner = &successor;
    }
}

void Library::deleteIfAbandoned()
{
    if (m_abandoned && empty()) {
        delete this;
    }
}

unsigned Library::Add(Cell *cell)
{
    if (cell == nullptr || cell->m_owner != nullptr) {
        return 0;
    }
    cell->m_slot = addToTable(m_cells, cell->Name(), cell, [](Cell *moved, unsigned slot) { moved->m_slot = slot; });
    cell->m_owner = this;
    return 1;
}

Cell *Library::GetCell(const char *name) const
{
    return static_cast<Cell *>(m_cells.GetValue(name));
}

Library *Library::Operators()
{
    return libraryOfGlobal("Operators");
}

Library *Library::Primitives()
{
    return libraryOfGlobal("Primitives");
}

Cell::Cell(const char *name) : DesignObj(name), m_successor(new Cell(Successor())) {}

Cell::Cell(Successor) : DesignObj(nullptr) {}

Cell::~Cell()
{
    const NetlistReclaimer::Deletion deletion;
    m_abandoned = false;
    if (m_successor == nullptr) {
        MapIter iter;
        const Netlist *netlist = nullptr;
        FOREACH_MAP_ITEM (&m_netlists, iter, nullptr, &netlist) {
            delete netlist;
        }
    }
    NetlistReclaimer::deleteNetlists(*this);
    Library *const library = m_owner;
    leaveLibrary();
    if (m_netlists.Size() != 0) {
        handOver(*m_successor.release());
    }
    if (library != nullptr) {
        library->deleteIfAbandoned();
    }
}

void Cell::leaveLibrary()
{
    if (m_slot != Map::NO_SLOT) {
        m_owner->m_cells.removeSlot(m_slot);
    } else if (m_owner != nullptr) {
        (m_previousHidden != nullptr ? m_previousHidden->m_nextHidden : m_owner->m_hiddenCells) = m_nextHidden;
        if (m_nextHidden != nullptr) {
            m_nextHidden->m_previousHidden = m_previousHidden;
        }
    }
}

void Cell::handOver(Cell &successor)
{
    successor.m_name = m_name;
    successor.copyTraits(*this);
    successor.m_abandoned = true;
    successor.m_netlists.swap(m_netlists);
    MapIter iter;
    Netlist *netlist = nullptr;
    FOREACH_MAP_ITEM (&successor.m_netlists, iter, nullptr, &netlist) {
        netlist->m_owner = &successor;
    }
    successor.m_owner = m_owner;
    if (m_owner != nullptr) {
        successor.m_nextHidden = m_owner->m_hiddenCells;
        if (successor.m_nextHidden != nullptr) {
            successor.m_nextHidden->m_previousHidden = &successor;
        }
        m_owner->m_hiddenCells = &successor;
    }
}

void Cell::deleteIfAbandoned()
{
    if (m_abandoned && m_netlists.Size() == 0) {
        delete this;
    }
}

unsigned Cell::Add(Netlist *netlist)
{
    if (netlist == nullptr || netlist->m_owner != nullptr) {
        return 0;
    }
    netlist->m_slot =
        addToTable(m_netlists, netlist->Name(), netlist, [](Netlist *moved, unsigned slot) { moved->m_slot = slot; });
    netlist->m_owner = this;
    return 1;
}

Netlist *Cell::GetFirstNetlist() const
{
    MapIter iter;
    void *netlist = nullptr;
    iter.First(&m_netlists);
    iter.Next(nullptr, &netlist);
    return static_cast<Netlist *>(netlist);
}

Netlist *Cell::GetNetlist(const char *view_name) const
{
    return static_cast<Netlist *>(m_netlists.GetValue(view_name));
}

} // namespace Verific
