#pragma once

#include <string>

namespace kvr::netlistdb::tool {

/// Values of --color and --progress.
enum class When { Auto, Always, Never };

/// True when the terminal knows nothing but text.
bool isDumbTerminal();

/// True when text on @p descriptor (1 or 2) has colours: as chosen, or else when it is a terminal that shows them
/// and NO_COLOR is not set.
bool useColor(When when, int descriptor);

/// @p text as a terminal may show it: control characters become escapes such as `\n` and `\x1b`.
std::string printable(const std::string &text);

} // namespace kvr::netlistdb::tool
