#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kvr::netlistdb::analysis::plan {

/// A word of a line of a plan.
struct Word {
    std::string text;
    bool isQuoted;
    /// A "-" that stands for nothing.
    bool isNothing() const { return !isQuoted && text == "-"; }
};

/// A line of a plan taken apart.
struct Line {
    std::vector<Word> words;
    std::string comment; ///< with its "#"; empty when there is none
};

/// @throws std::invalid_argument that tells the fault.
Line takeApart(std::string_view line);

/// @p text as one word that takeApart() reads back.
std::string quoted(std::string_view text);

} // namespace kvr::netlistdb::analysis::plan
