#include "Store.h"

#include <DataBase.h>
#include <string>
#include <utility>

namespace kvr::netlistdb::python {

namespace {

/// Emptied databases, and the number of those in use.
struct Databases {
    std::vector<std::shared_ptr<DesignDatabase>> emptied;
    std::size_t inUse = 0;
};

/// Never destroyed: what a thread that outlives the interpreter still uses.
Databases &databases()
{
    static Databases &all = *std::make_unique<Databases>().release();
    return all;
}

/// Where a netlist stands in the library set. Deleting another netlist may delete it, too.
struct Place {
    std::string library;
    std::string cell;
    std::string view;
};

std::string textOf(const char *name)
{
    return name != nullptr ? name : "";
}

bool placeOf(const Verific::Netlist &netlist, Place &place)
{
    const Verific::Cell *cell = netlist.Owner();
    if (cell == nullptr || cell->Owner() == nullptr || cell->Owner()->Owner() != Verific::Libset::Global()) {
        return false;
    }
    place = {textOf(cell->Owner()->Name()), textOf(cell->Name()), textOf(netlist.Name())};
    return true;
}

Verific::Netlist *netlistAt(const Place &place)
{
    const Verific::Library *library = Verific::Libset::Global()->GetLibrary(place.library.c_str());
    const Verific::Cell *cell = library != nullptr ? library->GetCell(place.cell.c_str()) : nullptr;
    return cell != nullptr ? cell->GetNetlist(place.view.c_str()) : nullptr;
}

/// Adds to @p places where the views of the instances in @p netlist stand.
void addViews(const Verific::Netlist &netlist, std::vector<Place> &places)
{
    Verific::Set views(Verific::POINTER_HASH);
    Verific::MapIter mi;
    const Verific::Instance *instance = nullptr;
    FOREACH_INSTANCE_OF_NETLIST (&netlist, mi, instance) {
        if (instance->View() != nullptr) {
            views.Insert(instance->View());
        }
    }
    Verific::SetIter si;
    const Verific::Netlist *view = nullptr;
    FOREACH_SET_ITEM (&views, si, &view) {
        if (Place place; placeOf(*view, place)) {
            places.push_back(std::move(place));
        }
    }
}

/// Deletes the netlists at @p places that nobody uses, and what nobody uses any more below them.
void deleteUnused(std::vector<Place> places)
{
    while (!places.empty()) {
        Verific::Netlist *netlist = netlistAt(places.back());
        places.pop_back();
        if (netlist != nullptr && netlist->NumOfRefs() == 0) {
            addViews(*netlist, places);
            delete netlist;
        }
    }
}

} // namespace

Store::Store() : m_database(std::make_shared<DesignDatabase>(true))
{
    ++databases().inUse;
}

Store::~Store()
{
    Databases &all = databases();
    std::vector<Place> below;
    for (const Verific::Netlist *netlist : m_netlists) {
        addViews(*netlist, below);
    }
    for (const auto type : {IDesignDatabase::SOURCE_ELABORATED, IDesignDatabase::SOURCE_POST_MAP}) {
        m_database->reset(type);
    }
    all.emptied.push_back(std::move(m_database));
    if (--all.inUse == 0) {
        all.emptied.clear();
        Verific::Libset::Reset();
        return;
    }
    deleteUnused(std::move(below));
}

} // namespace kvr::netlistdb::python
