#pragma once

#include "design/LevelWalk.h"
#include "design/MatchRows.h"
#include "design/PathResolver.h"
#include "design/ProbeList.h"

#include <deque>
#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

/// The nets, bit by bit, of which one asks what they are in the other form.
class MatchedNets {
  public:
    /// The nets of @p paths, each a net, a bus, or an instance with all that is in it and below; without paths those of
    /// the whole design. Of instances, declared nets, or with @p all every net. @p resolver is that of @p design,
    /// which must outlive the object.
    /// @throws Failure for a path that is none.
    MatchedNets(Design &design, PathResolver &resolver, const std::vector<std::string> &paths, bool all);

    /// Fills in the next net; false when there is none.
    bool next(MatchedNet &net);

  private:
    /// A net by itself, or an instance with all that is in it and below, level by level as a search goes.
    struct Start {
        IVDBInstance *instance;
        IVDBNet *net; ///< null: the instance
    };

    void enter(IVDBInstance &instance);

    Design &m_design;
    bool m_all;
    std::deque<Start> m_starts;
    LevelWalk m_walk; ///< from the start at hand
    IVDBInstance *m_instance = nullptr;
    std::vector<IVDBNet *> m_nets; ///< of m_instance
    std::size_t m_next = 0;
};

} // namespace kvr::netlistdb::tool
