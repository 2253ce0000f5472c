#pragma once

#include "analysis/ClockTable.h"
#include "analysis/DesignModel.h"

#include <netlistdb/analysis/ClockMap.h>

namespace kvr::netlistdb::analysis {

struct ClockMap::State {
    State(DesignDatabase &database, IDesignDatabase::SOURCE_TYPE source) : design(database, source), table(design) {}

    /// @throws std::logic_error when the source is not the one any more that the map was built from.
    void check() const;
    /// The place of a net; false for the inside of something that is not looked into.
    bool find(const IVDBInstance *inst, const IVDBNet *net, Context &context, std::uint32_t &number) const;

    DesignModel design;
    ClockTable table;
};

} // namespace kvr::netlistdb::analysis
