#pragma once

#include "YosysReader.h"

#include <simdjson.h>

namespace kvr::netlistdb::yosys {

/// readJson() for a text in memory; @p name stands for the file in messages. The text is not used after the call.
Verific::Netlist *readJsonText(simdjson::padded_string_view text, const std::string &name, const ReadOptions &options);

} // namespace kvr::netlistdb::yosys
