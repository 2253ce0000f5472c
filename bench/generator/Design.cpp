#include "Design.h"

#include <algorithm>
#include <stdexcept>

namespace kvr::netlistdb::bench {

std::size_t CellType::pinCount() const
{
    std::size_t count = 0;
    for (const PortType &port : ports) {
        count += port.width;
    }
    return count;
}

std::size_t CellType::pinOf(const std::string &port) const
{
    std::size_t pin = 0;
    for (const PortType &candidate : ports) {
        if (candidate.name == port) {
            return pin;
        }
        pin += candidate.width;
    }
    throw std::logic_error(name + " has no port " + port);
}

bool nameLess(const std::string &left, const std::string &right)
{
    const bool leftGenerated = !left.empty() && left.front() == '$';
    const bool rightGenerated = !right.empty() && right.front() == '$';
    if (leftGenerated != rightGenerated) {
        return leftGenerated;
    }
    return left < right;
}

void sortByName(Design &design)
{
    const auto byName = [](const auto &left, const auto &right) { return nameLess(left.name, right.name); };
    for (Module &module : design.modules) {
        std::sort(module.signals.begin(), module.signals.end(), byName);
        std::sort(module.cells.begin(), module.cells.end(), byName);
    }
}

} // namespace kvr::netlistdb::bench
