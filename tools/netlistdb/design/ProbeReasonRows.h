#pragma once

#include "design/PathResolver.h"
#include "output/ResultWriter.h"

#include <netlistdb/analysis/ProbeReport.h>
#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

/// A net or bus of which one asks why it may not be probed.
struct AskedProbe {
    analysis::SignalReport report;
    std::vector<std::string> names; ///< of its bits
};
/// @p bits are those of one path, as PathResolver::nets() gives them.
AskedProbe askProbe(const analysis::ProbeReport &report, const std::vector<PathResolver::Bit> &bits);

std::vector<Column> probeReasonColumns();

/// Writes what there is to say about probing one net or bus, a row for each finding. @p names are those of its bits.
void writeProbeReasons(const analysis::SignalReport &report, const std::vector<std::string> &names,
                       ResultWriter &writer);

/// The same for people: the verdict about @p path, and what there is to say.
std::string probeReasonsText(const std::string &path, const analysis::SignalReport &report,
                             const std::vector<std::string> &names);

} // namespace kvr::netlistdb::tool
