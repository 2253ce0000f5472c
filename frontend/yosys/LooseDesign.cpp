#include "LooseDesign.h"

#include <array>
#include <utility>

namespace kvr::netlistdb::yosys {

namespace {

constexpr std::size_t HOMES = 4;

const char *libraryName(Home home)
{
    switch (home) {
    case Home::Operators:
        return "Operators";
    case Home::Primitives:
        return "Primitives";
    case Home::Constants:
        return "Constants";
    default:
        return "work";
    }
}

Verific::Cell *cellInLibset(Home home, const char *cellName)
{
    const Verific::Library *library = Verific::Libset::Global()->GetLibrary(libraryName(home));
    return library != nullptr ? library->GetCell(cellName) : nullptr;
}

std::string viewName(unsigned number)
{
    return number == 1 ? "netlist" : "netlist_" + std::to_string(number);
}

std::string keyOf(Home home, const std::string &cellName)
{
    return static_cast<char>('0' + static_cast<int>(home)) + cellName;
}

/// Remembers what has been given to owners in the global libset, and deletes it again unless it is kept.
class Attached {
  public:
    Attached() = default;
    Attached(const Attached &) = delete;
    Attached &operator=(const Attached &) = delete;
    ~Attached()
    {
        // The last attached first: a library takes its cells along, a cell its netlists.
        for (auto netlist = m_netlists.rbegin(); netlist != m_netlists.rend(); ++netlist) {
            delete *netlist;
        }
        for (auto cell = m_cells.rbegin(); cell != m_cells.rend(); ++cell) {
            delete *cell;
        }
        for (auto library = m_libraries.rbegin(); library != m_libraries.rend(); ++library) {
            delete *library;
        }
    }

    void give(Verific::Cell &owner, std::unique_ptr<Verific::Netlist> netlist) { hand(owner, netlist, m_netlists); }
    void give(Verific::Library &owner, std::unique_ptr<Verific::Cell> cell) { hand(owner, cell, m_cells); }
    void give(Verific::Libset &owner, std::unique_ptr<Verific::Library> library) { hand(owner, library, m_libraries); }
    void keep()
    {
        m_netlists.clear();
        m_cells.clear();
        m_libraries.clear();
    }

  private:
    template <typename Owner, typename Object>
    static void hand(Owner &owner, std::unique_ptr<Object> &object, std::vector<Object *> &given)
    {
        given.push_back(nullptr);
        owner.Add(object.get());
        given.back() = object.release();
    }

    std::vector<Verific::Netlist *> m_netlists;
    std::vector<Verific::Cell *> m_cells;
    std::vector<Verific::Library *> m_libraries;
};

} // namespace

LooseDesign::~LooseDesign()
{
    // Users first: a netlist that goes before its instances has to disconnect every one of them.
    for (Entry &entry : m_entries) {
        if (entry.home == Home::Work) {
            entry.netlist.reset();
        }
    }
}

Verific::Netlist *LooseDesign::add(Home home, std::string_view cellName)
{
    std::string name(cellName);
    unsigned &number = m_views[keyOf(home, name)];
    const Verific::Cell *cell = cellInLibset(home, name.c_str());
    do {
        ++number;
    } while (cell != nullptr && cell->GetNetlist(viewName(number).c_str()) != nullptr);
    m_entries.push_back({std::make_unique<Verific::Netlist>(viewName(number).c_str()), home, std::move(name)});
    return m_entries.back().netlist.get();
}

void LooseDesign::attach()
{
    // All that is new is put together first; only then is the global libset touched.
    std::array<std::unique_ptr<Verific::Library>, HOMES> newLibraries;
    std::vector<std::pair<Verific::Library *, std::unique_ptr<Verific::Cell>>> newCells;
    std::vector<std::pair<Verific::Cell *, std::unique_ptr<Verific::Netlist>>> newNetlists;
    std::unordered_map<std::string, Verific::Cell *> cells;
    Verific::Libset *const libset = Verific::Libset::Global();
    newCells.reserve(m_entries.size());
    newNetlists.reserve(m_entries.size());

    for (Entry &entry : m_entries) {
        Verific::Cell *&cell = cells[keyOf(entry.home, entry.cellName)];
        if (cell == nullptr) {
            cell = cellInLibset(entry.home, entry.cellName.c_str());
        }
        if (cell == nullptr) {
            auto made = std::make_unique<Verific::Cell>(entry.cellName.c_str());
            Verific::Library *library = libset->GetLibrary(libraryName(entry.home));
            std::unique_ptr<Verific::Library> &newLibrary = newLibraries[static_cast<std::size_t>(entry.home)];
            if (library == nullptr && newLibrary == nullptr) {
                newLibrary = std::make_unique<Verific::Library>(libraryName(entry.home));
            }
            cell = made.get();
            if (library != nullptr) {
                newCells.emplace_back(library, std::move(made));
            } else {
                newLibrary->Add(cell);
                static_cast<void>(made.release());
            }
        }
        if (cell->Owner() != nullptr && cell->Owner()->Owner() == libset) {
            newNetlists.emplace_back(cell, std::move(entry.netlist));
        } else {
            cell->Add(entry.netlist.get());
            static_cast<void>(entry.netlist.release());
        }
    }

    Attached attached;
    for (auto &[cell, netlist] : newNetlists) {
        attached.give(*cell, std::move(netlist));
    }
    for (auto &[library, cell] : newCells) {
        attached.give(*library, std::move(cell));
    }
    for (std::unique_ptr<Verific::Library> &library : newLibraries) {
        if (library != nullptr) {
            attached.give(*libset, std::move(library));
        }
    }
    attached.keep();
    m_entries.clear();
}

} // namespace kvr::netlistdb::yosys
