#pragma once

#include <cstdint>
#include <string>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace kvr::netlistdb::tool {

/// Adds an option that takes a decimal number of @p least or more. CLI11's own conversion lets negative numbers wrap.
CLI::Option *addNumber(CLI::App &command, const std::string &flags, std::uint64_t &target, std::uint64_t least,
                       const std::string &help);

} // namespace kvr::netlistdb::tool
