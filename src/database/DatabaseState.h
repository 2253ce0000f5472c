#pragma once

#include "clock/ClockAnalysis.h"
#include "netlist/VDBObjectPool.h"

#include <DataBase.h>

#include <netlistdb/DesignDatabase.h>
#include <netlistdb/IVDBInstance.h>
#include <netlistdb/IVDBNetlist.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace kvr::netlistdb {

class VDBInstance;

/// The tree of one source, with the netlist that it was made from.
struct Source {
    explicit Source(bool record) : pool(record) {}

    std::unique_ptr<Verific::Netlist> workingCopy;
    IVDBNetlist *topModule = nullptr; ///< one of the netlists; not null marks the source as loaded
    std::unique_ptr<IVDBInstance> root;
    std::vector<std::unique_ptr<IVDBNetlist>> netlists;
    VDBObjectPool pool;
    std::uint64_t generation = 1; ///< raised by everything that makes or deletes items

    // What an import without reset replaced: alive until the database is destroyed.
    std::vector<std::unique_ptr<IVDBInstance>> replacedRoots;
    std::vector<std::unique_ptr<Verific::Netlist>> replacedCopies;

    /// Makes a working copy of @p netlist, in place of the one before.
    void makeWorkingCopy(const Verific::Netlist &netlist);
    /// Makes the root of a tree, in place of the one before.
    VDBInstance &makeRoot(IVDBNetlist *top);
    /// Deletes the tree and the netlist it was made from.
    void reset();
};

/// The data of a DesignDatabase.
struct __attribute__((visibility("hidden"))) DesignDatabase::State {
    explicit State(bool keep) : keepSourceNetlists(keep), elaborated(keep), postMap(keep) {}

    /// The source of that type, or null.
    Source *source(SOURCE_TYPE type);

    const bool keepSourceNetlists;
    Source elaborated;
    Source postMap;
    ClockAnalysis clocks{elaborated.pool, postMap.pool};
    int importDepth = 0; ///< how many steps of an import are under way, one within the other
};

} // namespace kvr::netlistdb
