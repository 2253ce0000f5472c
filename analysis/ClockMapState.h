#pragma once

#include "analysis/ClockTable.h"
#include "analysis/DesignModel.h"

#include <netlistdb/analysis/ClockMap.h>

namespace kvr::netlistdb::analysis {

struct ClockMap::State {
    State(DesignDatabase &database, IDesignDatabase::SOURCE_TYPE source) : design(database, source), table(design) {}

    DesignModel design;
    ClockTable table;
};

/// @throws std::logic_error when the source is no more the one that the map was built from.
void requireCurrent(const ClockMap::State &map);
/// The place of a net; false for the inside of something that is not looked into. As ClockMap throws otherwise.
bool findPlace(const ClockMap::State &map, const IVDBInstance *inst, const IVDBNet *net, Place &place);

} // namespace kvr::netlistdb::analysis
