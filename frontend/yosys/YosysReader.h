#pragma once

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>

namespace Verific {
class Netlist;
}

namespace kvr::netlistdb::yosys {

/// A Yosys JSON file that cannot become a netlist. what() is one line: file, fault, and the module and item it lies in.
class ReadError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The reader was told to stop by its progress callback.
class ReadCancelled : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

struct ReadOptions {
    /// Name of the top module; empty: the module marked as top, or else the only one that no other instantiates.
    std::string top;
    /// Told from time to time how many of how many bytes are read; answering false stops the reading. May be empty.
    std::function<bool(std::uint64_t done, std::uint64_t total)> progress;
};

/// Reads a netlist that yosys wrote with `write_json` (0.23 or later) into the global libset.
///
/// Modules go to library "work", word-level cells to "Operators", one-bit cells and constants to "Primitives". Answers
/// the top netlist, which belongs to its cell. Reads in time proportional to the file.
/// @throws ReadError when the file is not such a netlist, ReadCancelled when stopped, std::bad_alloc; the global libset
///         is then as it was before.
Verific::Netlist *readJson(const std::string &path, const ReadOptions &options = {});

} // namespace kvr::netlistdb::yosys
