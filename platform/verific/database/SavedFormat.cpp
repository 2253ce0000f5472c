#include "SavedFormat.h"

namespace Verific::saved {

bool isAcyclic(const Children &children)
{
    std::vector<std::uint32_t> parents(children.size());
    for (const std::vector<std::uint32_t> &below : children) {
        for (const std::uint32_t child : below) {
            ++parents[child];
        }
    }
    std::vector<std::uint32_t> free;
    for (std::uint32_t netlist = 0; netlist < parents.size(); ++netlist) {
        if (parents[netlist] == 0) {
            free.push_back(netlist);
        }
    }
    std::size_t done = 0;
    for (; !free.empty(); ++done) {
        const std::uint32_t netlist = free.back();
        free.pop_back();
        for (const std::uint32_t child : children[netlist]) {
            if (--parents[child] == 0) {
                free.push_back(child);
            }
        }
    }
    return done == children.size();
}

} // namespace Verific::saved
