#pragma once

#include "JsonInput.h"
#include "YosysReader.h"

#include <functional>

namespace kvr::netlistdb::yosys {

/// What the file of a text has in addition to it.
struct TextFile {
    std::uint64_t size; ///< bytes, for the progress
    /// The bytes that the text lacks at the start of a line, counted from 1; called for an error.
    std::function<std::size_t(std::size_t line)> missing;
};

/// readJson() for a text in memory; @p name stands for the file in messages. The text is not used after the call.
Verific::Netlist *readJsonText(const JsonInput &text, const std::string &name, const ReadOptions &options);
/// The same for the text of a file.
Verific::Netlist *readJsonText(const JsonInput &text, const TextFile &file, const std::string &name,
                               const ReadOptions &options);

} // namespace kvr::netlistdb::yosys
