#pragma once

#include "output/Value.h"

namespace kvr::netlistdb::tool {

/// @p value as text: nothing for an absent value, `yes` and `no`, decimal numbers, lists joined with a blank.
std::string valueText(const Value &value);

} // namespace kvr::netlistdb::tool
