#pragma once

// What an import must make of a netlist, worked out plainly from the rules and written as text, one line an item; and
// the same text from the items that it made.

#include <netlistdb/IVDBInstance.h>
#include <netlistdb/IVDBNetlist.h>

#include <string>

namespace Verific {
class Netlist;
}

namespace kvr::netlistdb {
class VDBObjectPool;
}

namespace property_test {

/// What stands for a whole tree. With `names`, objects are shown by the address of the netlist object they are made
/// from; without, no address is shown.
struct TreeDescription {
    std::string text;
    bool complete = true; ///< what the import answers
    bool throws = false;  ///< the import ends with std::out_of_range; text says nothing then
};

/// The tree that an import of @p source makes. @p top is the netlist that the top module is built from: the working
/// copy, or @p source itself when that was not kept.
TreeDescription expectedTree(const Verific::Netlist *source, const Verific::Netlist *top, bool unfold,
                             bool showObjects);

/// The tree as it is. @p pool leads to the objects to show; null shows none.
std::string actualTree(const kvr::netlistdb::IVDBInstance &root, const kvr::netlistdb::VDBObjectPool *pool);

} // namespace property_test
