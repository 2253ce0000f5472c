#pragma once

#include <cstddef>

namespace kvr::netlistdb::yosys {

class ShortText;

/// A JSON text in memory.
struct JsonInput {
    char *data = nullptr; ///< written to while it is read, and afterwards as before
    std::size_t size = 0;
    std::size_t capacity = 0; ///< bytes that may be read, at least simdjson::SIMDJSON_PADDING more than `size`
    /// Long objects are read in pieces of about this size, so that no index of the whole text is needed.
    std::size_t window = std::size_t{256} * 1024;
    /// Where empty objects of the text stand for long ones; null when there are none.
    const ShortText *shortened = nullptr;
};

} // namespace kvr::netlistdb::yosys
