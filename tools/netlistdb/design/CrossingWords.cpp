#include "design/CrossingWords.h"

#include <algorithm>
#include <fmt/format.h>
#include <sstream>

namespace kvr::netlistdb::tool {

std::string launchName(const analysis::Crossing &crossing, const analysis::ClockMap &clocks)
{
    return crossing.launch ? clocks.clocks()[*crossing.launch].name : std::string("(none)");
}

bool isClockCalled(const analysis::Clock &clock, const NamePattern &pattern)
{
    return pattern.matches(clock.name) || std::any_of(clock.names.begin(), clock.names.end(),
                                                      [&](const std::string &name) { return pattern.matches(name); });
}

std::vector<std::string> splitAtCommas(const std::string &text)
{
    std::vector<std::string> parts;
    std::istringstream stream(text + ",");
    for (std::string part; std::getline(stream, part, ',');) {
        parts.push_back(part);
    }
    return parts;
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
