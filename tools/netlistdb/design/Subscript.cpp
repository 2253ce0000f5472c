#include "design/Subscript.h"

#include <algorithm>
#include <charconv>
#include <fmt/format.h>
#include <functional>

namespace kvr::netlistdb::tool {

namespace {

bool readIndex(std::string_view text, int &index)
{
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), index);
    return error == std::errc() && stop == text.data() + text.size();
}

} // namespace

std::size_t subscriptOf(std::string_view name)
{
    std::string_view vector;
    int from = 0;
    int to = 0;
    return takeRange(name, vector, from, to) ? vector.size() : std::string_view::npos;
}

bool takeSubscript(std::string_view name, std::string_view &vector, int &index)
{
    const std::size_t open = name.rfind('[');
    if (open == std::string_view::npos || name.back() != ']') {
        return false;
    }
    vector = name.substr(0, open);
    return readIndex(name.substr(open + 1, name.size() - open - 2), index);
}

bool takeRange(std::string_view name, std::string_view &vector, int &from, int &to)
{
    if (takeSubscript(name, vector, from)) {
        to = from;
        return true;
    }
    const std::size_t open = name.rfind('[');
    if (open == std::string_view::npos || name.back() != ']') {
        return false;
    }
    vector = name.substr(0, open);
    const std::string_view range = name.substr(open + 1, name.size() - open - 2);
    const std::size_t colon = range.find(':');
    return colon != std::string_view::npos && readIndex(range.substr(0, colon), from) &&
           readIndex(range.substr(colon + 1), to);
}

std::string bitsText(const std::string &vector, std::vector<int> &bits)
{
    std::sort(bits.begin(), bits.end(), std::greater<>());
    bits.erase(std::unique(bits.begin(), bits.end()), bits.end());
    std::string ranges;
    for (std::size_t first = 0; first < bits.size();) {
        std::size_t last = first;
        while (last + 1 < bits.size() && bits[last + 1] == bits[last] - 1) {
            ++last;
        }
        ranges += ranges.empty() ? "" : ",";
        ranges += first == last ? fmt::to_string(bits[first]) : fmt::format("{}:{}", bits[first], bits[last]);
        first = last + 1;
    }
    return fmt::format("{}[{}]", vector, ranges);
}

} // namespace kvr::netlistdb::tool
