#include "design/CrossingChoice.h"

namespace kvr::netlistdb::tool {

std::optional<analysis::Severity> severityCalled(std::string_view name)
{
    for (const analysis::Severity severity : SEVERITIES) {
        if (name == nameOf(severity)) {
            return severity;
        }
    }
    return std::nullopt;
}

} // namespace kvr::netlistdb::tool
