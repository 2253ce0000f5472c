#include "design/BestName.h"

#include "design/Design.h"
#include "design/FullNames.h"
#include "design/Subscript.h"

#include <algorithm>
#include <netlistdb/netlistdb.h>
#include <tuple>

namespace kvr::netlistdb::tool {

namespace {

/// True when something called @p name stands directly in the instance at @p path.
bool isBeside(const std::string &name, const std::string &path)
{
    const std::size_t begin = path.empty() ? 0 : path.size() + 1;
    return (path.empty() || name.compare(0, begin, path + '/') == 0) && name.find('/', begin) == std::string::npos;
}

bool isPort(const IVDBNetlist &module, const std::string &name)
{
    const std::string_view vector = std::string_view(name).substr(0, subscriptOf(name));
    const std::vector<IVDBPort *> &ports = module.getPorts();
    return std::any_of(ports.begin(), ports.end(),
                       [&](const IVDBPort *port) { return port->getName() == name || port->getName() == vector; });
}

} // namespace

BestName bestNameOf(Design &design, const analysis::NetFingerprints::Wire &wire, const std::string &formerName)
{
    using Rank = std::tuple<bool, bool, bool, std::ptrdiff_t>;
    BestName best{wire.front(), {}};
    Rank bestRank;
    for (const analysis::SeenNet &seen : wire) {
        IVDBNetlist &module = *seen.instance->getModule();
        ModuleNames &names = design.names(module);
        const std::string path = seen.instance->getPath();
        std::vector<std::string> own = names.aliasesOf(*seen.net);
        own.insert(own.begin(), seen.net->getName());
        for (std::size_t at = 0; at < own.size(); ++at) {
            // Other names are those of declarations, the best first.
            const bool isDeclared = at > 0 || names.isDeclared(*seen.net);
            const Rank rank(!isDeclared, !isBeside(formerName, path), isPort(module, own[at]),
                            std::count(path.begin(), path.end(), '/'));
            if (best.name.empty() || rank < bestRank) {
                best = {seen, joined(path, own[at])};
                bestRank = rank;
            }
        }
    }
    return best;
}

} // namespace kvr::netlistdb::tool
