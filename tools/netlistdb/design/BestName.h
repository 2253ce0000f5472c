#pragma once

#include <netlistdb/analysis/NetFingerprints.h>
#include <string>

namespace kvr::netlistdb::tool {

class Design;

/// A net of a wire with the name that people are likely to know the wire by.
struct BestName {
    analysis::SeenNet seen;
    std::string name; ///< full
};

/// The name of @p wire that stands for what was called @p formerName in another build: one that a user declared, in the
/// same instance if there is one, of no port if there is one, and else the nearest to the top.
BestName bestNameOf(Design &design, const analysis::NetFingerprints::Wire &wire, const std::string &formerName);

} // namespace kvr::netlistdb::tool
