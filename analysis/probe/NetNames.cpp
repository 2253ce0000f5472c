#include "analysis/probe/NetNames.h"

#include "analysis/Texts.h"
#include "platform/names/OtherNames.h"

#include <DataBase.h>

#include <string>
#include <unordered_map>

namespace kvr::netlistdb::analysis::probe {

namespace {

/// One name of a net of a module, in the text of the module.
struct ModuleName {
    std::uint32_t net;
    std::uint32_t first;
    std::uint32_t length;
};

struct ModuleNames {
    std::string text;
    std::vector<ModuleName> names;

    void add(std::uint32_t net, std::string_view name)
    {
        if (!name.empty() && name.front() != '$') {
            names.push_back({net, static_cast<std::uint32_t>(text.size()), static_cast<std::uint32_t>(name.size())});
            text += name;
        }
    }
};

/// Hash of what stands in front, and of @p name as one or several levels more.
std::uint64_t hashOfLevels(std::string_view name, std::uint64_t before)
{
    char last = '.';
    for (const char c : name) {
        const char own = c == '/' || c == ' ' ? '.' : c;
        if (c != '\\' || last != '.') {
            before = hashOf(std::string_view(&own, 1), before);
            last = own;
        }
    }
    return before;
}

/// The names that the reader of the netlist kept beside those of the nets.
void addOtherNames(const Verific::Netlist &netlist, const std::vector<const Verific::Net *> &nets, ModuleNames &names)
{
    const char *const text = netlist.GetAttValue(names::OTHER_NAMES);
    if (text == nullptr) {
        return;
    }
    std::unordered_map<std::string_view, std::uint32_t> numbers;
    for (std::uint32_t net = 0; net < nets.size(); ++net) {
        numbers.emplace(textOf(nets[net]->Name()), net);
    }
    names::readOtherNames(text, [&](const names::OtherName &other) {
        if (other.kind == names::NameKind::Hidden && other.hdlName.empty()) {
            return;
        }
        const int step = other.left >= other.right ? 1 : -1;
        std::int64_t index = other.right;
        const auto add = [&](const std::string &net) {
            const auto found = numbers.find(net);
            if (found != numbers.end()) {
                const std::string bit = other.isVector ? '[' + std::to_string(index) + ']' : std::string();
                names.add(found->second, other.name + bit);
                names.add(found->second, other.hdlName.empty() ? std::string() : other.hdlName + bit);
            }
            index += step;
        };
        for (const names::NetRun &run : other.bits) {
            if (run.kind == names::NetRun::Kind::Constant) {
                index += step * static_cast<std::int64_t>(run.count);
            } else if (run.kind == names::NetRun::Kind::Net) {
                add(run.net);
            } else {
                const int onward = run.first <= run.last ? 1 : -1;
                for (unsigned bit = 0; bit < run.count; ++bit) {
                    add(run.net + '[' + std::to_string(run.first + static_cast<int>(bit) * onward) + ']');
                }
            }
        }
    });
}

ModuleNames namesOf(const ModuleGraph &module)
{
    ModuleNames names;
    std::vector<const Verific::Net *> nets;
    nets.reserve(module.netCount());
    Verific::MapIter iterator;
    const Verific::Net *net = nullptr;
    FOREACH_NET_OF_NETLIST (module.netlist, iterator, net) {
        const auto number = static_cast<std::uint32_t>(nets.size());
        nets.push_back(net);
        names.add(number, textOf(net->Name()));
        if (const char *const hdlName = net->GetAttValue("hdlname")) {
            names.add(number, hdlName);
        }
    }
    addOtherNames(*module.netlist, nets, names);
    return names;
}

} // namespace

std::uint64_t hashOfPath(std::string_view path, std::uint64_t prefix)
{
    return hashOfLevels(path, prefix);
}

std::vector<std::uint64_t> prefixesOf(const BitGraph &graph)
{
    std::vector<std::uint64_t> prefixes(graph.occurrences.size(), EMPTY_TEXT);
    for (std::uint32_t at = 0; at < graph.occurrences.size(); ++at) {
        const Occurrence &occurrence = graph.occurrences[at];
        if (occurrence.parent != NONE) {
            const std::uint64_t own = hashOfLevels(textOf(graph.instanceOf(at).Name()), prefixes[occurrence.parent]);
            prefixes[at] = hashOf(".", own);
        }
    }
    return prefixes;
}

void forEachName(const BitGraph &graph,
                 const std::function<void(std::uint32_t occurrence, std::uint32_t net, std::uint64_t name)> &visit)
{
    const std::vector<std::uint64_t> prefixes = prefixesOf(graph);
    std::vector<std::vector<std::uint32_t>> occurrencesOf(graph.hierarchy.modules.size());
    for (std::uint32_t at = 0; at < graph.occurrences.size(); ++at) {
        occurrencesOf[graph.occurrences[at].module].push_back(at);
    }
    for (std::size_t module = 0; module < occurrencesOf.size(); ++module) {
        if (occurrencesOf[module].empty()) {
            continue;
        }
        const ModuleNames names = namesOf(graph.hierarchy.modules[module]);
        for (const std::uint32_t at : occurrencesOf[module]) {
            for (const ModuleName &name : names.names) {
                visit(at, name.net,
                      hashOfLevels(std::string_view(names.text).substr(name.first, name.length), prefixes[at]));
            }
        }
    }
}

} // namespace kvr::netlistdb::analysis::probe
