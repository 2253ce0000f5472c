#include "design/PathSpellings.h"

#include <algorithm>

namespace kvr::netlistdb::tool {

namespace {

/// Ways to choose among more dots than these are too many to try.
constexpr std::size_t MOST_DOTS = 8;

/// @p path without the backslash in front of escaped names and the blank behind them. What is between is a name as
/// a whole, in which @p dots leaves the dots out.
std::string unescaped(const std::string &path, std::vector<std::size_t> &dots)
{
    std::string plain;
    bool escaped = false;
    for (const char c : path) {
        const bool begins = plain.empty() || plain.back() == '/' || plain.back() == '.';
        if (!escaped && c == '\\' && begins) {
            escaped = true;
        } else if (escaped && c == ' ') {
            escaped = false;
        } else {
            if (c == '.' && !escaped) {
                dots.push_back(plain.size());
            }
            plain += c;
        }
    }
    return plain;
}

} // namespace

std::vector<std::string> otherSpellings(const std::string &path, const std::string &top)
{
    std::vector<std::size_t> dots;
    const std::string plain = unescaped(path, dots);
    std::vector<std::string> spellings;
    const auto add = [&](const std::string &spelling) {
        if (spelling != path) {
            spellings.push_back(spelling);
        }
        if (spelling.compare(0, top.size() + 1, top + "/") == 0) {
            spellings.push_back(spelling.substr(top.size() + 1));
        }
    };
    const std::size_t all = dots.size() <= MOST_DOTS ? (std::size_t{1} << dots.size()) - 1 : 1;
    for (std::size_t choice = all + 1; choice-- > 0;) {
        std::string spelling = plain;
        for (std::size_t at = 0; at < dots.size(); ++at) {
            const bool separates = dots.size() <= MOST_DOTS ? (choice >> at & 1) != 0 : choice == 1;
            spelling[dots[at]] = separates ? '/' : '.';
        }
        add(spelling);
    }
    if (std::count(plain.begin(), plain.end(), '.') > static_cast<std::ptrdiff_t>(dots.size())) {
        // An escaped name of a flattened netlist, asked for where the levels are instances.
        std::string spelling = plain;
        std::replace(spelling.begin(), spelling.end(), '.', '/');
        add(spelling);
    }
    return spellings;
}

bool hasWildcard(const std::string &path)
{
    return path.find_first_of("*?") != std::string::npos;
}

} // namespace kvr::netlistdb::tool
