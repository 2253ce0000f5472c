#pragma once

#include <string>

namespace kvr::netlistdb {

/// A text that stands in everything in which std::regex_search finds the ECMAScript expression @p pattern: the longest
/// run of characters that must be matched one after the other, as they stand. Empty when there is none, or when the
/// pattern holds anything but characters, escaped punctuation, `.`, `^`, `$`, plain character classes and quantifiers.
std::string requiredText(const std::string &pattern);

} // namespace kvr::netlistdb
