#pragma once

#include "JsonInput.h"
#include "ShortText.h"
#include "YosysReader.h"

#include <string>

namespace kvr::netlistdb::yosys {

/// readJson() for a text in memory; @p name stands for the file in messages. The text is not used after the call.
Verific::Netlist *readJsonText(const JsonInput &text, const std::string &name, const ReadOptions &options);
/// readJson() with sections that are long from other sizes on.
Verific::Netlist *readJsonFile(const std::string &path, const ShortText::Sizes &sizes, const ReadOptions &options);

} // namespace kvr::netlistdb::yosys
