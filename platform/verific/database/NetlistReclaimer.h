#pragma once

#include "ReclaimState.h"

namespace Verific {

class Cell;
class Instance;
class Library;
class Libset;
class Netlist;

/// A first-in, first-out list of netlists, linked through one of the links in their ReclaimState.
template <Netlist *ReclaimState::*NEXT> class NetlistQueue {
  public:
    bool empty() const { return m_first == nullptr; }
    Netlist *first() const { return m_first; }
    static Netlist *next(const Netlist &netlist);
    void append(Netlist &netlist);
    /// Removes the first netlist and returns it; null when there is none.
    Netlist *takeFirst();

  private:
    Netlist *m_first = nullptr;
    Netlist *m_last = nullptr;
};

/// Decides which netlists outlive their owner, and deletes netlists that have lost their last user.
///
/// Reference counting, with trial deletion for netlists that instantiate each other. Neither recursive nor allocating:
/// it runs in destructors. The state between two deletions is empty; there is one reclaimer in the process.
class NetlistReclaimer {
  public:
    /// Spans the deletion of an object. When the outermost one ends, netlists that lost their last user are deleted.
    class Deletion {
      public:
        Deletion() { ++global().m_deletions; }
        ~Deletion() { global().endDeletion(); }
        Deletion(const Deletion &) = delete;
        Deletion &operator=(const Deletion &) = delete;
    };

    /// Notes that @p view has lost an instance. @p deleted is the netlist that is deleted together with the instance,
    /// or null when the instance is deleted by itself. Must be called within a Deletion.
    static void noteLostUser(Netlist &view, const Netlist *deleted);

    // Delete the netlists of an owner that is being deleted. A netlist that something outside every library set uses,
    // directly or further down, stays in its cell and lives until its last user is deleted.

    static void deleteNetlists(Libset &libset);
    static void deleteNetlists(Library &library);
    static void deleteNetlists(Cell &cell);

  private:
    using Examined = NetlistQueue<&ReclaimState::nextExamined>;
    using Needed = NetlistQueue<&ReclaimState::nextNeeded>;
    using Waiting = NetlistQueue<&ReclaimState::nextWaiting>;

    static NetlistReclaimer &global();

    void endDeletion();
    void reclaim();
    static bool hasHeldUser(const Netlist &netlist);
    static void examineBelow(Examined &suspects);
    static void deleteUnneeded(Examined &suspects);

    static void doom(const Libset &libset, Examined &doomed);
    static void doom(const Library &library, Examined &doomed);
    static void doom(const Cell &cell, Examined &doomed);
    void deleteDoomed(Examined &doomed);
    void emptyUnused(const Examined &doomed);
    static void findNeeded(Examined &examined);
    static bool isUsedFromOutside(const Netlist &netlist, Examined &examined);
    static void markBelow(Needed &needed);

    unsigned m_deletions = 0; ///< under way, one within the other
    Waiting m_lostUser;       ///< Lifetime::WHILE_USED
    Waiting m_unused;         ///< doomed netlists without references, to be emptied
};

} // namespace Verific
