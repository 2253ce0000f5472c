#pragma once

#include "output/ResultWriter.h"

#include <netlistdb/analysis/ProbeReport.h>
#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

std::vector<Column> probeReasonColumns();

/// Writes what there is to say about probing one net or bus, a row for each finding. @p names are those of its bits.
void writeProbeReasons(const analysis::SignalReport &report, const std::vector<std::string> &names,
                       ResultWriter &writer);

/// The same for people: the verdict about @p path, and what there is to say.
std::string probeReasonsText(const std::string &path, const analysis::SignalReport &report,
                             const std::vector<std::string> &names);

} // namespace kvr::netlistdb::tool
