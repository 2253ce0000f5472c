#include "design/PathResolver.h"

#include "base/Failure.h"
#include "design/Design.h"
#include "design/FullNames.h"
#include "design/InstanceWalk.h"
#include "design/ModuleNames.h"
#include "design/NearestNames.h"
#include "design/NetClocks.h"
#include "design/PathSpellings.h"

#include <algorithm>
#include <fmt/ranges.h>
#include <netlistdb/netlistdb.h>
#include <optional>
#include <set>

namespace kvr::netlistdb::tool {

namespace {

constexpr std::size_t MOST_PROPOSALS = 3;

} // namespace

const PathResolver::Children &PathResolver::childrenOf(IVDBInstance &instance)
{
    const auto [place, isNew] = m_children.try_emplace(&instance);
    if (isNew) {
        for (IVDBInstance *child : instance.getSubInstances()) {
            place->second.byName[nameText(*child)].push_back(child);
            place->second.longestName = std::max(place->second.longestName, nameText(*child).size());
        }
    }
    return place->second;
}

std::vector<PathResolver::Beginning> PathResolver::beginnings(std::string_view path)
{
    std::vector<Beginning> found = {{&m_design.root(), 0}};
    for (std::size_t at = 0; at < found.size(); ++at) {
        const Beginning from = found[at];
        if (from.instance->getSubInstances().empty()) {
            continue;
        }
        const Children &children = childrenOf(*from.instance);
        // No further than a name can reach: a deep path has as many slashes as there are levels.
        for (std::size_t slash = path.find('/', from.rest);
             slash != std::string_view::npos && slash - from.rest <= children.longestName;
             slash = path.find('/', slash + 1)) {
            const auto child = children.byName.find(path.substr(from.rest, slash - from.rest));
            if (child != children.byName.end()) {
                for (IVDBInstance *instance : child->second) {
                    found.push_back({instance, slash + 1});
                }
            }
        }
    }
    return found;
}

std::vector<PathResolver::Bit> PathResolver::findNets(std::string_view path)
{
    std::vector<Bit> bits;
    for (const auto &[instance, rest] : beginnings(path)) {
        for (const ModuleNames::Found &found : m_design.names(*instance->getModule()).find(path.substr(rest))) {
            bits.push_back({instance, found.bit.net, joined(instance->getPath(), found.name)});
        }
        if (!bits.empty()) {
            break;
        }
    }
    return bits;
}

IVDBInstance *PathResolver::findInstance(std::string_view path)
{
    for (const auto &[instance, rest] : beginnings(path)) {
        const Children &children = childrenOf(*instance);
        const auto child = children.byName.find(path.substr(rest));
        if (child != children.byName.end()) {
            return child->second.front();
        }
    }
    return nullptr;
}

std::vector<PathResolver::Bit> PathResolver::nets(const std::string &path)
{
    std::vector<Bit> bits = findNets(path);
    if (!bits.empty()) {
        return bits;
    }
    if (findInstance(path) != nullptr) {
        const std::string advice = m_asker == Asker::Tool ? "search with from and an empty pattern"
                                                          : "netlistdb search DESIGN '' --from '" + path + "'";
        throw wrongUsage(m_design.name() + ": '" + path + "' is an instance, not a net (" + advice +
                         " lists its nets)");
    }
    throw wrongUsage(m_design.name() + ": no net or bus '" + path + "'" + hint(path, false));
}

IVDBInstance &PathResolver::instance(const std::string &path)
{
    if (path == "." || path == "/") {
        return m_design.root();
    }
    if (IVDBInstance *instance = findInstance(path)) {
        return *instance;
    }
    if (!findNets(path).empty()) {
        throw wrongUsage(m_design.name() + ": '" + path + "' is a net, not an instance");
    }
    throw wrongUsage(m_design.name() + ": no instance '" + path + "'" + hint(path, true));
}

IVDBInstance &PathResolver::startOf(const std::string &path)
{
    return path.empty() ? m_design.root() : instance(path);
}

bool PathResolver::isInstanceOnly(const std::string &path)
{
    return findNets(path).empty() && findInstance(path) != nullptr;
}

bool PathResolver::exists(const std::string &path, bool instancesOnly)
{
    return findInstance(path) != nullptr || (!instancesOnly && !findNets(path).empty());
}

std::string PathResolver::hint(const std::string &path, bool instancesOnly)
{
    for (const std::string &spelling : otherSpellings(path, m_design.top().getName())) {
        if (exists(spelling, instancesOnly)) {
            return didYouMean({spelling});
        }
    }
    if (hasWildcard(path)) {
        return m_asker == Asker::Tool
                   ? "; wildcards are for search with mode glob"
                   : "; wildcards are for netlistdb search DESIGN '" + path + "' --glob --paths, which lists paths";
    }
    // The top has no part in paths; people who put it there mean what follows.
    const std::string top = m_design.top().getName() + "/";
    if (path.compare(0, top.size(), top) == 0) {
        const std::string rest = path.substr(top.size());
        return exists(rest, instancesOnly) ? didYouMean({rest}) : hint(rest, instancesOnly);
    }
    // Where the most of the path was right, the rest is likely a slip.
    std::vector<Beginning> found = beginnings(path);
    std::stable_sort(found.begin(), found.end(),
                     [](const Beginning &a, const Beginning &b) { return a.rest > b.rest; });
    for (const Beginning &beginning : found) {
        const std::vector<std::string> names = near(beginning, path, instancesOnly);
        if (!names.empty()) {
            return resembling(names);
        }
    }
    return resembling(elsewhere(path.substr(path.rfind('/') + 1), instancesOnly));
}

/// What is said of @p paths, which were found by resemblance alone. Nobody is sent to a net of another clock than the
/// one that was meant: where the nets differ in their clocks, the clocks stand beside them.
std::string PathResolver::resembling(const std::vector<std::string> &paths)
{
    std::vector<std::string> clocks;
    std::set<std::string> different;
    for (const std::string &path : paths) {
        clocks.push_back(clocksOf(path));
        if (!clocks.back().empty()) {
            different.insert(clocks.back());
        }
    }
    if (different.size() < 2) {
        return didYouMean(paths);
    }
    std::string text = "; names like it have different clocks:";
    for (std::size_t at = 0; at < paths.size(); ++at) {
        text += (at == 0 ? " '" : ", '") + paths[at] + "'" + (clocks[at].empty() ? "" : " (" + clocks[at] + ")");
    }
    return text;
}

/// The clock that the nets of @p path are, or the clocks that reach them, joined by commas; empty for an instance, for
/// nets without a clock, and in a design that was loaded without clocks.
std::string PathResolver::clocksOf(const std::string &path)
{
    if (!m_design.hasClocks()) {
        return "";
    }
    const analysis::ClockMap &map = m_design.clocks();
    std::set<std::string> names;
    std::vector<std::string> reaching;
    for (const Bit &bit : findNets(path)) {
        if (bit.net == nullptr) {
            continue;
        }
        if (const std::optional<analysis::ClockId> clock = map.electrical(bit.instance, bit.net).clock) {
            names.insert(map.clocks()[*clock].name);
            continue;
        }
        findClocks(m_design, *bit.instance, {bit.net}, reaching);
        names.insert(reaching.begin(), reaching.end());
    }
    return fmt::format("{}", fmt::join(names, ", "));
}

/// Paths that begin like @p path and go on with names like those in the rest of it.
std::vector<std::string> PathResolver::near(const Beginning &beginning, const std::string &path, bool instancesOnly)
{
    const std::string prefix = beginning.instance->getPath();
    const std::string rest = path.substr(beginning.rest);
    const std::string level = rest.substr(0, rest.find('/'));
    NearestNames whole(rest);
    NearestNames nextLevel(level);
    for (const auto &child : childrenOf(*beginning.instance).byName) {
        whole.offer(child.first);
        nextLevel.offer(child.first);
    }
    if (!instancesOnly) {
        ModuleNames &names = m_design.names(*beginning.instance->getModule());
        for (const auto &bus : names.buses()) {
            whole.offer(bus.first);
        }
        for (const auto &net : names.nets()) {
            whole.offer(net.first);
        }
        for (const OtherSignal &other : names.others()) {
            if (other.kind == OtherSignal::Kind::Declared) {
                whole.offer(other.name);
            }
        }
    }
    std::vector<std::string> paths;
    const auto propose = [&paths](const std::string &proposal) {
        if (paths.size() < MOST_PROPOSALS && std::find(paths.begin(), paths.end(), proposal) == paths.end()) {
            paths.push_back(proposal);
        }
    };
    if (level.size() < rest.size()) {
        // A slip in this level; there may be others below it.
        for (const std::string &name : nextLevel.best()) {
            const std::string repaired = joined(prefix, name) + rest.substr(level.size());
            if (exists(repaired, instancesOnly)) {
                propose(repaired);
                continue;
            }
            IVDBInstance *child = childrenOf(*beginning.instance).byName.at(name).front();
            for (const std::string &proposal : near({child, beginning.rest + level.size() + 1}, path, instancesOnly)) {
                propose(proposal);
            }
        }
    }
    for (const std::string &name : whole.best()) {
        propose(joined(prefix, name));
    }
    for (const std::string &name : nextLevel.best()) {
        propose(joined(prefix, name));
    }
    return paths;
}

/// Full paths of the first few things called @p name, wherever they are.
std::vector<std::string> PathResolver::elsewhere(std::string_view name, bool instancesOnly)
{
    std::vector<std::string> paths;
    for (InstanceWalk walk(m_design.root()); walk.instance() != nullptr && paths.size() < MOST_PROPOSALS; walk.next()) {
        if (nameText(*walk.instance()) == name) {
            paths.push_back(walk.path());
        }
        if (!instancesOnly) {
            if (!m_design.names(*walk.instance()->getModule()).find(name).empty()) {
                paths.push_back(joined(walk.path(), name));
            }
        }
    }
    return paths;
}

} // namespace kvr::netlistdb::tool
