#pragma once

#include "design/Form.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace kvr::netlistdb::tool {

/// What a netlist holds of device cells.
struct DeviceCensus {
    std::string family; ///< that most of the cells belong to; empty without device cells, "A or B" when both have them
    std::vector<std::pair<std::string, std::uint64_t>> kinds; ///< cells by what they are, the most first
    std::vector<std::pair<std::string, std::uint64_t>>
        unknown; ///< black boxes of unknown type, the most frequent first

    /// One line about the unknown cells; empty when there are none.
    std::string warning() const;
};

/// Counts the device cells at the top of @p netlist, and with the elaborated form in every module below it, too.
DeviceCensus takeDeviceCensus(const Verific::Netlist &netlist, Form form);

} // namespace kvr::netlistdb::tool
