#pragma once

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace Verific {
class Netlist;
}

namespace kvr::netlistdb::yosys {

/// A Yosys JSON file that cannot become a netlist. what() is one line: the file, the fault, and the module and the
/// cell, port, net or memory that it lies in, as far as there is one.
class ReadError : public std::runtime_error {
  public:
    /// An error with the given message.
    using std::runtime_error::runtime_error;
};

/// The progress callback told the reader to stop.
class ReadCancelled : public std::runtime_error {
  public:
    /// An error with the given message.
    using std::runtime_error::runtime_error;
};

/// Options of readJson.
struct ReadOptions {
    /// Name of the top module, also as the user wrote it when only one was derived from it; empty: the module that is
    /// marked with the attribute `top`, or else the only one with a body that no other instantiates.
    std::string top;
    /// Called at the start, at the end, and after about every hundredth of the file with the bytes read and their
    /// total; `done` never falls. Returning false stops the reading. May be empty; what it throws passes.
    std::function<bool(std::uint64_t done, std::uint64_t total)> progress;
    /// Files with tables of device cells, which count before the built-in ones; their form is that of `families/`.
    std::vector<std::string> cellTables = {};
};

/// Reads a netlist that yosys wrote with `write_json` (0.23 or later) into the global libset and returns the top
/// netlist, which belongs to its cell.
///
/// - Every module becomes a cell with one netlist in library "work". Modules marked `blackbox` or `whitebox` become
///   black boxes, and so do cell types that the file does not define but whose cells have port directions. The
///   netlists of a second file become further views of cells of the same names; nothing is merged.
/// - Word-level cells (`$add`, `$dff`, …) become operators in library "Operators"; gates (`$_AND_`, …) and one-bit
///   buffers primitives in library "Primitives": one netlist for every type and set of parameters. Flip-flops and
///   clocked memory ports are registers. An instance keeps its parameters. Constants are driven by cells of library
///   "Constants". Scopes, timing checks, assertions and prints are no cells and are left out.
/// - Black boxes that a table of device cells describes (`families/`) get the attributes that clock analysis reads, and
///   are registers, too. They are in library "Primitives", PLLs and hard blocks in "work". A cell or a memory with
///   outputs on several clocks becomes an instance for each: the first has its name and inputs, the others are called
///   `name:pin` after their clock pin. Netlists of device cells carry their families and kind in the attributes
///   NETLISTDB_CELL_FAMILY and NETLISTDB_CELL_KIND.
/// - A module that yosys derived from one with parameters has what the user would call it in attribute USER_MODULE
///   (UserModuleName.h).
/// - A port of several bits becomes one port per bit, called `name[index]`, and a port bus. Ports have the
///   attributes of the net of their name.
/// - Every bit becomes one net and takes the best of its names: the name of a port, then one that the user declared
///   (fewest of '.' and '/', then shortest, then first in byte order), then one that synthesis derived from such a
///   name, then a hidden one. `hide_name` says what is hidden; where it is missing, a leading '$' does. A vector whose
///   bits all took its name becomes a net bus; otherwise its bits are nets called `name[index]`. All names that did not
///   become a net or a net bus as written are kept in attribute OTHER_NAMES of the netlist
///   (platform/names/OtherNames.h). Bits without a name are called `$bit$<number>`, constants `$const$0`, `$const$1`,
///   `$const$x` and `$const$z`.
/// - A memory becomes a RamNet of all its bits.
/// - `src` attributes become source positions and make their objects user-declared, unless these are hidden or derived
///   (modules called `$paramod…` count as the user's). Of several ranges a net takes its declaration, an instance its
///   instantiation, and `src` stays an attribute as well. A name that `hide_name` shows is user-declared even without a
///   position. `protected` protects its object. All other attributes and all parameters keep key and value: numbers as
///   they are written, texts without the blank that yosys puts behind those that look like bits. The attributes of a
///   net bus are on the bus alone. A net that has other names gets the attribute of theirs that keeps flip-flops where
///   the designer put them (`async_reg`, `keep`, …).
///
/// Reads in time proportional to the file, at most 4 GiB. Of a file that is indented as yosys does it, long lists of
/// cells, memories and names of nets are read twice and never held in memory; the whole of any other is, with an index
/// half as large until its modules are found. The same happens when the file is damaged or written to meanwhile.
/// @throws ReadError when the file cannot be read or is not such a netlist, ReadCancelled when stopped,
///         std::bad_alloc; the global libset is then as it was before.
Verific::Netlist *readJson(const std::string &path, const ReadOptions &options = {});

} // namespace kvr::netlistdb::yosys
