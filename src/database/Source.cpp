#include "database/DatabaseState.h"

#include <netlistdb/VDBInstance.h>

#include <utility>

namespace kvr::netlistdb {

void Source::makeWorkingCopy(const Verific::Netlist &netlist)
{
    ++generation;
    replacedCopies.reserve(replacedCopies.size() + 1);
    std::unique_ptr<Verific::Netlist> copy(netlist.Copy(nullptr));
    if (workingCopy != nullptr) {
        replacedCopies.push_back(std::move(workingCopy));
    }
    workingCopy = std::move(copy);
}

VDBInstance &Source::makeRoot(IVDBNetlist *top)
{
    ++generation;
    replacedRoots.reserve(replacedRoots.size() + 1);
    auto made = std::make_unique<VDBInstance>(top, nullptr);
    if (root != nullptr) {
        replacedRoots.push_back(std::move(root));
    }
    VDBInstance &fresh = *made;
    root = std::move(made);
    return fresh;
}

void Source::reset()
{
    ++generation;
    workingCopy.reset();
    const IVDBNetlist *const top = topModule;
    topModule = nullptr;
    for (std::unique_ptr<IVDBNetlist> &netlist : netlists) {
        if (netlist.get() == top) {
            netlist.reset();
            break;
        }
    }
    root.reset();
    for (std::unique_ptr<IVDBNetlist> &netlist : netlists) {
        netlist.reset();
    }
    netlists.clear();
}

} // namespace kvr::netlistdb
