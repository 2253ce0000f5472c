#include "NetlistReclaimer.h"

#include "Instance.h"
#include "Library.h"
#include "Netlist.h"

namespace Verific {

template <Netlist *ReclaimState::*NEXT> Netlist *NetlistQueue<NEXT>::next(const Netlist &netlist)
{
    return netlist.m_reclaim.*NEXT;
}

template <Netlist *ReclaimState::*NEXT> void NetlistQueue<NEXT>::append(Netlist &netlist)
{
    netlist.m_reclaim.*NEXT = nullptr;
    if (m_last != nullptr) {
        m_last->m_reclaim.*NEXT = &netlist;
    } else {
        m_first = &netlist;
    }
    m_last = &netlist;
}

template <Netlist *ReclaimState::*NEXT> Netlist *NetlistQueue<NEXT>::takeFirst()
{
    Netlist *const taken = m_first;
    if (taken != nullptr) {
        m_first = taken->m_reclaim.*NEXT;
        if (m_first == nullptr) {
            m_last = nullptr;
        }
    }
    return taken;
}

NetlistReclaimer &NetlistReclaimer::global()
{
    static NetlistReclaimer reclaimer;
    return reclaimer;
}

void NetlistReclaimer::endDeletion()
{
    if (m_deletions == 1) {
        while (!m_lostUser.empty()) {
            reclaim();
        }
    }
    --m_deletions;
}

void NetlistReclaimer::noteLostUser(Netlist &view, const Netlist *deleted)
{
    ReclaimState &state = view.m_reclaim;
    if (view.m_dying) {
        return;
    }
    if (state.doomed) {
        if (view.NumOfRefs() == 0) {
            global().m_unused.append(view);
        }
        return;
    }
    if (state.lifetime == Lifetime::RESTORED && deleted != nullptr && deleted->handsOnViews()) {
        state.lifetime = Lifetime::WHILE_USED;
    }
    if (state.lifetime == Lifetime::WHILE_USED && !state.waiting) {
        state.waiting = true;
        global().m_lostUser.append(view);
    }
}

/// Deletes the netlists in the queue that have no user left, and those that only keep each other alive.
void NetlistReclaimer::reclaim()
{
    Examined suspects;
    while (Netlist *netlist = m_lostUser.takeFirst()) {
        if (netlist->NumOfRefs() == 0) {
            netlist->deleteWithCell();
        } else if (hasHeldUser(*netlist)) {
            netlist->m_reclaim.waiting = false;
        } else {
            suspects.append(*netlist);
        }
    }
    if (!suspects.empty()) {
        examineBelow(suspects);
        deleteUnneeded(suspects);
    }
}

/// A quick check of the newest user only, which settles most cases. False means that there may still be one.
bool NetlistReclaimer::hasHeldUser(const Netlist &netlist)
{
    const Netlist *const user = static_cast<const Instance *>(netlist.m_references.GetLast())->Owner();
    return user == nullptr || user->m_reclaim.lifetime != Lifetime::WHILE_USED;
}

/// Adds every netlist below @p suspects that lives while it is used, and marks those that something else keeps alive.
void NetlistReclaimer::examineBelow(Examined &suspects)
{
    for (Netlist *suspect = suspects.first(); suspect != nullptr; suspect = Examined::next(*suspect)) {
        suspect->m_reclaim.waiting = false;
        suspect->m_reclaim.examined = true;
    }
    for (Netlist *user = suspects.first(); user != nullptr; user = Examined::next(*user)) {
        MapIter iter;
        Instance *inst = nullptr;
        FOREACH_MAP_ITEM (&user->m_insts, iter, nullptr, &inst) {
            Netlist *const view = inst->View();
            if (view == nullptr || view->m_reclaim.lifetime != Lifetime::WHILE_USED) {
                continue;
            }
            if (!view->m_reclaim.examined) {
                view->m_reclaim.examined = true;
                suspects.append(*view);
            }
            ++view->m_reclaim.innerReferences;
        }
    }
    Needed needed;
    for (Netlist *suspect = suspects.first(); suspect != nullptr; suspect = Examined::next(*suspect)) {
        if (suspect->NumOfRefs() > suspect->m_reclaim.innerReferences) {
            suspect->m_reclaim.needed = true;
            needed.append(*suspect);
        }
        suspect->m_reclaim.innerReferences = 0;
    }
    markBelow(needed);
}

/// Marks what is below the needed ones among the netlists that are examined.
void NetlistReclaimer::markBelow(Needed &needed)
{
    while (const Netlist *user = needed.takeFirst()) {
        MapIter iter;
        Instance *inst = nullptr;
        FOREACH_MAP_ITEM (&user->m_insts, iter, nullptr, &inst) {
            Netlist *const view = inst->View();
            if (view != nullptr && view->m_reclaim.examined && !view->m_reclaim.needed) {
                view->m_reclaim.needed = true;
                needed.append(*view);
            }
        }
    }
}

/// Ends an examination by deleting the netlists that have not been marked.
void NetlistReclaimer::deleteUnneeded(Examined &suspects)
{
    Examined garbage;
    while (Netlist *suspect = suspects.takeFirst()) {
        suspect->m_reclaim.examined = false;
        if (suspect->m_reclaim.needed) {
            suspect->m_reclaim.needed = false;
        } else {
            suspect->m_dying = true;
            garbage.append(*suspect);
        }
    }
    for (Netlist *netlist = garbage.first(); netlist != nullptr; netlist = Examined::next(*netlist)) {
        netlist->deleteInstances();
    }
    while (Netlist *netlist = garbage.takeFirst()) {
        netlist->deleteWithCell();
    }
}

void NetlistReclaimer::deleteNetlists(Libset &libset)
{
    Examined doomed;
    doom(libset, doomed);
    global().deleteDoomed(doomed);
}

void NetlistReclaimer::deleteNetlists(Library &library)
{
    Examined doomed;
    doom(library, doomed);
    global().deleteDoomed(doomed);
}

void NetlistReclaimer::deleteNetlists(Cell &cell)
{
    Examined doomed;
    doom(cell, doomed);
    global().deleteDoomed(doomed);
}

void NetlistReclaimer::doom(const Libset &libset, Examined &doomed)
{
    MapIter iter;
    const Library *library = nullptr;
    FOREACH_MAP_ITEM (&libset.m_libraries, iter, nullptr, &library) {
        doom(*library, doomed);
    }
}

void NetlistReclaimer::doom(const Library &library, Examined &doomed)
{
    MapIter iter;
    const Cell *cell = nullptr;
    FOREACH_MAP_ITEM (&library.m_cells, iter, nullptr, &cell) {
        doom(*cell, doomed);
    }
}

void NetlistReclaimer::doom(const Cell &cell, Examined &doomed)
{
    MapIter iter;
    Netlist *netlist = nullptr;
    FOREACH_MAP_ITEM (&cell.m_netlists, iter, nullptr, &netlist) {
        netlist->m_reclaim.doomed = true;
        doomed.append(*netlist);
    }
}

void NetlistReclaimer::deleteDoomed(Examined &doomed)
{
    emptyUnused(doomed);
    Examined garbage;
    Examined examined;
    while (Netlist *netlist = doomed.takeFirst()) {
        if (netlist->m_dying) {
            garbage.append(*netlist);
        } else {
            netlist->m_reclaim.examined = true;
            examined.append(*netlist);
        }
    }
    findNeeded(examined);
    while (Netlist *netlist = examined.takeFirst()) {
        ReclaimState &state = netlist->m_reclaim;
        const bool wasDoomed = state.doomed;
        const bool needed = state.needed;
        state.doomed = false;
        state.needed = false;
        state.examined = false;
        if (wasDoomed && needed) {
            state.lifetime = Lifetime::WHILE_USED;
        } else if (wasDoomed) {
            netlist->m_dying = true;
            garbage.append(*netlist);
        }
    }
    // All of it loses its instances before the first netlist is deleted: instances refer to views among it.
    for (Netlist *netlist = garbage.first(); netlist != nullptr; netlist = Examined::next(*netlist)) {
        netlist->deleteInstances();
    }
    while (Netlist *netlist = garbage.takeFirst()) {
        delete netlist;
    }
}

/// Empties the doomed netlists that nothing uses, from the top down: all of them, unless something outside uses one or
/// they instantiate each other.
void NetlistReclaimer::emptyUnused(const Examined &doomed)
{
    for (Netlist *netlist = doomed.first(); netlist != nullptr; netlist = Examined::next(*netlist)) {
        if (netlist->NumOfRefs() == 0) {
            m_unused.append(*netlist);
        }
    }
    while (Netlist *netlist = m_unused.takeFirst()) {
        netlist->deleteInstances();
    }
}

/// Marks the netlists in @p examined that something outside every set uses. Adds the users of each to the list, because
/// the use from outside may be of one of these.
void NetlistReclaimer::findNeeded(Examined &examined)
{
    Needed needed;
    for (Netlist *netlist = examined.first(); netlist != nullptr; netlist = Examined::next(*netlist)) {
        if (isUsedFromOutside(*netlist, examined)) {
            netlist->m_reclaim.needed = true;
            needed.append(*netlist);
        }
    }
    markBelow(needed);
}

bool NetlistReclaimer::isUsedFromOutside(const Netlist &netlist, Examined &examined)
{
    SetIter iter;
    const Instance *inst = nullptr;
    FOREACH_SET_ITEM (&netlist.m_references, iter, &inst) {
        Netlist *const user = inst->Owner();
        if (user == nullptr || (user->m_reclaim.lifetime != Lifetime::WHILE_USED && !user->inLibset())) {
            return true;
        }
        if (!user->m_reclaim.examined && !user->m_dying) {
            user->m_reclaim.examined = true;
            examined.append(*user);
        }
    }
    return false;
}

} // namespace Verific
