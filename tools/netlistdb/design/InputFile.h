#pragma once

#include <string>

namespace kvr::netlistdb::tool {

/// A design as it comes: a regular file that is read by its name, or a text in memory where there is no such file (from
/// standard input, a pipe, a compressed file).
struct Input {
    std::string name; ///< in messages
    std::string file; ///< empty: the text is in memory
    std::string text; ///< with the padding that a JSON parser needs
    bool isJson = false;
};

/// What messages call @p file; "-" is standard input.
std::string inputName(const std::string &file);

/// @throws Failure unless @p file is there, readable, and not empty, or standard input or a pipe.
void checkReadable(const std::string &file);

/// Opens a netlist. JSON is known by its name or by its first character that is no white space. Reads standard input,
/// pipes and gzip files (known by their first bytes) to their end.
/// @throws Failure
Input openInput(const std::string &file);

/// The whole text of @p file, also when it is compressed.
/// @throws Failure
std::string readText(const std::string &file);

} // namespace kvr::netlistdb::tool
