#pragma once

#include <string>
#include <string_view>

namespace kvr::netlistdb::tool {

/// Writes @p text to standard error. A standard error that fails is no reason to stop.
void say(std::string_view text);

/// Writes @p message to standard error as one line behind the name of the program.
void complain(const std::string &message);

/// complain() for a process that ends whatever happens: replaces a line of progress, and does not wait for a standard
/// error that nobody reads. No other text follows: whoever calls say() from here on waits for ever.
void sayLastWords(const std::string &message);

} // namespace kvr::netlistdb::tool
