#include "analysis/probe/BitGraph.h"

#include "analysis/probe/Flattener.h"

#include <DataBase.h>

#include <netlistdb/DesignDatabase.h>

#include <stdexcept>

namespace kvr::netlistdb::analysis::probe {

namespace {

const Verific::Netlist &workingCopyOf(const DesignDatabase &database, IDesignDatabase::SOURCE_TYPE source)
{
    const Verific::Netlist *const top = database.workingCopy(source);
    if (!database.isSourceLoaded(source)) {
        throw std::invalid_argument(source == IDesignDatabase::SOURCE_ELABORATED
                                        ? "CrossProbe: no elaborated netlist is loaded"
                                        : "CrossProbe: no post-map netlist is loaded");
    }
    if (top == nullptr) {
        throw std::invalid_argument("CrossProbe: the database keeps no source netlists");
    }
    return *top;
}

} // namespace

BitGraph::BitGraph(const DesignDatabase &from, IDesignDatabase::SOURCE_TYPE type)
    : database(from), source(type), hierarchy(from, type, workingCopyOf(from, type))
{
    Flattener(*this).run();
}

const Verific::Instance &BitGraph::instanceOf(std::uint32_t occurrence) const
{
    const Occurrence &own = occurrences[occurrence];
    return *moduleOf(own.parent).subs[own.sub].instance;
}

std::string BitGraph::pathOf(std::uint32_t occurrence) const
{
    std::vector<const char *> names;
    for (; occurrences[occurrence].parent != NONE; occurrence = occurrences[occurrence].parent) {
        names.push_back(instanceOf(occurrence).Name());
    }
    std::string path;
    for (auto name = names.rbegin(); name != names.rend(); ++name) {
        if (*name != nullptr && **name != '\0') {
            path.append(path.empty() ? "" : "/").append(*name);
        }
    }
    return path;
}

std::string BitGraph::pathOf(std::uint32_t occurrence, std::uint32_t cell) const
{
    std::string path = pathOf(occurrence);
    const char *const name = instanceOf(occurrence, cell).Name();
    return path.append(path.empty() ? "" : "/").append(name != nullptr ? name : "");
}

} // namespace kvr::netlistdb::analysis::probe
