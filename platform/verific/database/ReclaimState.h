#pragma once

#include <cstdint>

namespace Verific {

class Netlist;

/// How long a netlist lives when nobody deletes it by itself.
enum class Lifetime : std::uint8_t {
    OWNED,      ///< as long as its cell; a loose one as its maker likes
    RESTORED,   ///< likewise, until a loose netlist that uses it is deleted: WHILE_USED from then on
    WHILE_USED, ///< until no instance has it as its view, or until it is deleted by itself
};

/// What NetlistReclaimer keeps in each netlist, so that it never allocates.
struct ReclaimState {
    Netlist *nextExamined = nullptr;
    Netlist *nextNeeded = nullptr;
    Netlist *nextWaiting = nullptr;
    unsigned innerReferences = 0; ///< references from netlists that are examined together with this one
    Lifetime lifetime = Lifetime::OWNED;
    bool doomed = false;   ///< its library or cell is being deleted
    bool waiting = false;  ///< has lost a user and is in the queue
    bool examined = false; ///< in the list that is being examined
    bool needed = false;   ///< among the examined ones: stays alive
    bool partial = false;  ///< a copy in the making
};

} // namespace Verific
