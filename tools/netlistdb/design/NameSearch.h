#pragma once

#include "design/OtherNameHits.h"

#include <cstdint>
#include <netlistdb/SearchResults.h>
#include <netlistdb/VDBSearchParam.h>
#include <string>
#include <vector>

namespace kvr::netlistdb {
class IVDBInstance;
class IVDBItem;
} // namespace kvr::netlistdb

namespace kvr::netlistdb::tool {

class Design;
class NamePattern;

/// Finds instances, nets and buses by their full names, also by other names than their own, step by step. They come
/// level by level; within an instance buses come before what is found by another name, and that before nets.
class NameSearch {
  public:
    /// What to search for, and where. @p pattern must outlive the search.
    struct Wish {
        const NamePattern &pattern;
        std::uint32_t kinds;  ///< mask of ItemType: instances, nets, buses
        VDBSearchParam param; ///< of what the walk leaves out and how it sorts; names and kinds are not consulted
    };

    /// @p design must outlive the search. The walk begins at the start item of the wish, or else at the root.
    NameSearch(Design &design, const Wish &wish);

    /// How far a step went.
    enum class Step {
        Passed, ///< by something that is no hit
        Hit,    ///< to a hit
        End,
    };
    /// Looks at one thing.
    Step step();
    /// Makes every later step end the search. Any thread.
    void cancel() { m_results.cancel(); }

    /// Of a hit: the instance that was found, or the one whose net or bus was.
    IVDBInstance &instance() const { return *m_instance; }
    /// True when it is the instance that was found; otherwise hit() says what.
    bool isInstance() const { return m_isInstance; }
    const OtherNameHit &hit() const { return m_hit; }
    /// The type code of what was found; of a vector without an item, that of a bus.
    std::uint32_t kind() const;
    /// Full path of instance().
    const std::string &path() const { return m_path; }
    /// What stands in front of the names of its nets.
    const std::string &prefix() const { return m_prefix; }

  private:
    Step meet(IVDBItem &item);
    Step takeWaiting();

    const NamePattern &m_pattern;
    std::uint32_t m_kinds;
    SearchResults m_results;
    OtherNameHits m_others;
    std::vector<OtherNameHit> m_waiting; ///< hits by other names that are still to be handed out
    std::size_t m_next = 0;              ///< of those
    IVDBItem *m_item = nullptr;          ///< what the walk met behind them
    bool m_isOver = false;
    IVDBInstance *m_instance = nullptr; ///< whose nets follow
    bool m_isInstance = false;
    OtherNameHit m_hit;
    std::string m_path;
    std::string m_prefix;
    std::string m_name; ///< full name of the net at hand, in one buffer for all
};

} // namespace kvr::netlistdb::tool
