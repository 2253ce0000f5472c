#pragma once

#include "Design.h"

namespace kvr::netlistdb::bench {

/// Writes the design as yosys writes it with `write_json`: same order, numbers and indentation.
/// @throws std::runtime_error when the file cannot be written.
void writeJson(const Design &design, const std::string &path);

/// Writes the full name of every net and bus of a flat design, one a line, as a search lists them.
/// @throws std::runtime_error when the file cannot be written.
void writeNames(const Design &design, const std::string &path);

} // namespace kvr::netlistdb::bench
