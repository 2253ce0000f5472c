#pragma once

#include <cstdint>
#include <string>

namespace kvr::netlistdb::bench {

/// What a bare pass over a JSON file met.
struct JsonPassCounts {
    std::uint64_t bytes = 0; ///< of the file
    std::uint64_t keys = 0;
    std::uint64_t strings = 0;
    std::uint64_t numbers = 0;
    std::uint64_t checksum = 0; ///< over lengths and values, so that none can be left out
};

/// Loads a JSON file and visits every key, text and number in it once with simdjson's on-demand parser, keeping
/// nothing: the lower bound for any reader.
/// @throws simdjson::simdjson_error
JsonPassCounts passOverJson(const std::string &path);

} // namespace kvr::netlistdb::bench
