#pragma once

#include <cstdint>
#include <netlistdb/analysis/Clocks.h>
#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

/// `rise`, `fall` or `both`; empty without any.
const char *edgesText(std::uint8_t edges);

/// The bits of a Reaching mask in words: `input-port`, `constant`, and so on.
std::vector<std::string> reachingWords(std::uint32_t reached);

/// The bits of a Reached mask in words: `output-port`, `black-box`, and so on.
std::vector<std::string> reachedWords(std::uint32_t reached);

/// The bits of a CaptureRole mask in words: `data`, `enable`, `set-reset`.
std::vector<std::string> roleWords(std::uint8_t roles);

} // namespace kvr::netlistdb::tool
