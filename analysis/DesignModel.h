#pragma once

#include "analysis/ModuleSets.h"
#include "analysis/PointerIndex.h"

#include <netlistdb/IDesignDatabase.h>
#include <netlistdb/InstanceNetSet.h>

#include <cstdint>
#include <string>
#include <vector>

namespace Verific {
class Instance;
}

namespace kvr::netlistdb {
class DesignDatabase;
}

namespace kvr::netlistdb::analysis {

/// One level of the way from the top down to an occurrence of a module.
struct Level {
    std::uint32_t module;
    std::uint32_t sub;        ///< place among the instances of the level above; NONE for the top
    std::uint32_t firstClock; ///< number, among all clocks, of the first one that begins in this occurrence
};

/// An occurrence of a module in the unfolded design: the levels from the top down.
using Context = std::vector<Level>;

/// A net of an occurrence.
struct Place {
    Context context;
    std::uint32_t net;
};

/// The modules of a design with their clocks and sets, and the ways between its occurrences and the items of the
/// database.
struct DesignModel {
    DesignModel(DesignDatabase &database, IDesignDatabase::SOURCE_TYPE source);

    DesignDatabase &database;
    IDesignDatabase::SOURCE_TYPE source;
    std::uint64_t generation; ///< of the source, when it was read
    IVDBInstance *root;
    Hierarchy hierarchy;
    std::vector<ModuleClocks> clocks; ///< by module
    std::vector<ModuleSets> sets;     ///< by module

    /// A net of a module.
    struct ModuleNet {
        std::uint32_t module; ///< NONE: none that the analysis looks into
        std::uint32_t net;
    };
    ModuleNet find(const IVDBNet *net) const;
    /// The occurrence that @p inst is; false for the inside of something that the analysis does not look into.
    /// @throws std::invalid_argument when @p inst is no instance of the source.
    bool find(const IVDBInstance *inst, Context &context) const;

    Level topLevel() const { return {hierarchy.top(), NONE, 0}; }
    /// The level of instance @p sub below @p level.
    Level below(const Level &level, std::uint32_t sub) const;
    /// Net of the level above that is on the pin of port @p port, or NONE.
    std::uint32_t netAbove(const Level &above, const Level &level, std::uint32_t port) const;
    /// The item of an occurrence, or null when the tree does not reach down to it.
    IVDBInstance *itemOf(const Context &context) const;
    /// The instance that cell @p cell of an occurrence is.
    const Verific::Instance *instanceOf(const Context &context, std::uint32_t cell) const;
    /// Names from the top down, joined with "/".
    std::string pathOf(const Context &context) const;
    /// The path, "/" and the name of the net.
    std::string nameOf(const Place &place) const;
    IVDBNet *itemOf(const Place &place) const { return hierarchy.items[module(place).firstNet + place.net]; }
    const ModuleGraph &module(const Place &place) const { return hierarchy.modules[place.context.back().module]; }
    /// Where clock @p clock of the whole design begins.
    Place rootOf(std::uint32_t clock) const;
    std::size_t memory() const;

  private:
    void indexItems();

    std::vector<std::uint32_t> m_firstNet;         ///< by module: place in Hierarchy::items
    PointerIndex m_netIndex;                       ///< of Hierarchy::items
    std::vector<const Verific::Instance *> m_subs; ///< of all modules, module by module
    std::vector<std::uint32_t> m_firstSub;
    PointerIndex m_subIndex;
};

/// What a net of an occurrence is electrically: where that begins.
struct ElectricalRoot {
    Place place;
    bool inverted;
    std::uint32_t clock; ///< among all clocks of the design; NONE when nothing is clocked
};
ElectricalRoot electricalRoot(const DesignModel &design, const Place &place);

/// What drives net @p net of module @p module, as the beginning of a clock.
ClockRoot kindOfRoot(const DesignModel &design, std::uint32_t module, std::uint32_t net);

} // namespace kvr::netlistdb::analysis
