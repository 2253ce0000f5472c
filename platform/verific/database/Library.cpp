#include "Library.h"

#include "Netlist.h"
#include "OwnerTable.h"

#include <memory>

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
    for (unsigned slot = 0; slot < m_libraries.slots(); ++slot) {
        if (auto *library = static_cast<Library *>(m_libraries.valueAt(slot))) {
            library->deleteInstances();
        }
    }
    for (unsigned slot = 0; slot < m_libraries.slots(); ++slot) {
        if (auto *library = static_cast<Library *>(m_libraries.valueAt(slot))) {
            library->m_owner = nullptr;
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

Library::Library(const char *name) : DesignObj(name) {}

Library::~Library()
{
    deleteInstances();
    for (unsigned slot = 0; slot < m_cells.slots(); ++slot) {
        if (auto *cell = static_cast<Cell *>(m_cells.valueAt(slot))) {
            cell->m_owner = nullptr;
            delete cell;
        }
    }
    if (m_owner != nullptr) {
        m_owner->m_libraries.removeSlot(m_slot);
    }
}

void Library::deleteInstances()
{
    for (unsigned slot = 0; slot < m_cells.slots(); ++slot) {
        if (auto *cell = static_cast<Cell *>(m_cells.valueAt(slot))) {
            cell->deleteInstances();
        }
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

Cell::Cell(const char *name) : DesignObj(name) {}

Cell::~Cell()
{
    deleteInstances();
    for (unsigned slot = 0; slot < m_netlists.slots(); ++slot) {
        if (auto *netlist = static_cast<Netlist *>(m_netlists.valueAt(slot))) {
            netlist->m_owner = nullptr;
            delete netlist;
        }
    }
    if (m_owner != nullptr) {
        m_owner->m_cells.removeSlot(m_slot);
    }
}

void Cell::deleteInstances()
{
    for (unsigned slot = 0; slot < m_netlists.slots(); ++slot) {
        if (auto *netlist = static_cast<Netlist *>(m_netlists.valueAt(slot))) {
            netlist->deleteInstances();
        }
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
