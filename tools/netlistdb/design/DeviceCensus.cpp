#include "design/DeviceCensus.h"

#include <DataBase.h>
#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <sstream>
#include <unordered_map>

namespace kvr::netlistdb::tool {

namespace {

using Counts = std::map<std::string, std::uint64_t>;

std::vector<std::pair<std::string, std::uint64_t>> mostFirst(const Counts &counts)
{
    std::vector<std::pair<std::string, std::uint64_t>> sorted(counts.begin(), counts.end());
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const auto &left, const auto &right) { return left.second > right.second; });
    return sorted;
}

std::string familyOf(const Counts &families)
{
    std::string names;
    std::uint64_t most = 0;
    for (const auto &[family, cells] : mostFirst(families)) {
        if (cells < most) {
            break;
        }
        names += (names.empty() ? "" : " or ") + family;
        most = cells;
    }
    return names;
}

} // namespace

std::string DeviceCensus::warning() const
{
    if (unknown.empty()) {
        return {};
    }
    std::uint64_t cells = 0;
    for (const auto &type : unknown) {
        cells += type.second;
    }
    const std::string types = unknown.size() == 1
                                  ? fmt::format("of the unknown type {}", unknown.front().first)
                                  : fmt::format("of {} unknown types, {} first", unknown.size(), unknown.front().first);
    return fmt::format("{} cell{} {}: no clock is followed through {}; --cells adds {}", cells, cells == 1 ? "" : "s",
                       types, cells == 1 ? "it" : "them", unknown.size() == 1 ? "it" : "them");
}

DeviceCensus takeDeviceCensus(const Verific::Netlist &netlist, Form form)
{
    std::unordered_map<const Verific::Netlist *, std::uint64_t> cells;
    const auto countIn = [&](const Verific::Netlist &owner) {
        Verific::MapIter mi;
        Verific::Instance *instance = nullptr;
        FOREACH_INSTANCE_OF_NETLIST (&owner, mi, instance) {
            if (instance->View() != nullptr && instance->View()->IsBlackBox() != 0) {
                ++cells[instance->View()];
            }
        }
    };
    if (form == Form::PostMap) {
        countIn(netlist);
    } else {
        Verific::Set modules(Verific::POINTER_HASH);
        netlist.Hierarchy(modules, 1);
        Verific::SetIter si;
        const Verific::Netlist *module = nullptr;
        FOREACH_SET_ITEM (&modules, si, &module) {
            if (module->IsBlackBox() == 0) {
                countIn(*module);
            }
        }
    }
    Counts families;
    Counts kinds;
    Counts unknown;
    for (const auto &[view, number] : cells) {
        const char *name = view->CellBaseName();
        const char *family = view->GetAttValue("NETLISTDB_CELL_FAMILY");
        const char *kind = view->GetAttValue("NETLISTDB_CELL_KIND");
        if (family == nullptr || kind == nullptr) {
            unknown[name != nullptr ? name : ""] += number;
            continue;
        }
        kinds[kind] += number;
        std::istringstream list(family);
        for (std::string each; list >> each;) {
            families[each] += number;
        }
    }
    return {familyOf(families), mostFirst(kinds), mostFirst(unknown)};
}

} // namespace kvr::netlistdb::tool
