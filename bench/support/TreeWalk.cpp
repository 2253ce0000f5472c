#include "support/TreeWalk.h"

#include "generator/OutputFile.h"

#include <fmt/format.h>

#include <deque>
#include <unordered_map>

namespace kvr::netlistdb::bench {
namespace {

/// Calls @p visit for every instance, level by level, the root first.
template <typename Visit> void forEachInstance(IVDBInstance *root, Visit visit)
{
    std::deque<IVDBInstance *> queue;
    if (root != nullptr) {
        queue.push_back(root);
    }
    while (!queue.empty()) {
        IVDBInstance *const instance = queue.front();
        queue.pop_front();
        visit(instance);
        for (IVDBInstance *const child : instance->getSubInstances()) {
            queue.push_back(child);
        }
    }
}

} // namespace

bool import(DesignDatabase &database, Shape shape, Verific::Netlist *netlist)
{
    return shape == Shape::Flat ? database.parsePostMapNetlist(netlist) : database.parseElaboratedNetlist(netlist);
}

TreeCounts countTree(IDesignDatabase &database, IDesignDatabase::SOURCE_TYPE source)
{
    TreeCounts counts;
    std::unordered_map<const IVDBNetlist *, std::size_t> itemsOf;
    forEachInstance(database.getRoot(source), [&](IVDBInstance *instance) {
        const IVDBNetlist *const module = instance->getModule();
        const auto [found, isNew] = itemsOf.try_emplace(module);
        if (isNew) {
            found->second = module->getAllNetBus().size() + module->getNets(false).size();
        }
        counts.items += found->second;
        counts.depth = std::max<std::size_t>(counts.depth, instance->getDepth());
        if (instance->getOwnerInstance() != nullptr) {
            ++counts.instances;
            counts.leaves += instance->getSubInstances().empty() ? 1 : 0;
        }
    });
    return counts;
}

std::string checkTree(IDesignDatabase &database, Shape shape, std::size_t leafInstances)
{
    const DesignCounts &expected = designFacts(shape, leafInstances).counts;
    const IDesignDatabase::SOURCE_TYPE source = sourceOf(shape);
    IVDBNetlist *const top = database.getTopModule(source);
    if (top == nullptr) {
        return "no top module";
    }
    const TreeCounts counts = countTree(database, source);
    std::string differences;
    const auto compare = [&](const char *what, std::size_t found, std::size_t wanted) {
        if (found != wanted) {
            differences += fmt::format("{}: {} instead of {}; ", what, found, wanted);
        }
    };
    compare("leaf instances", counts.leaves, expected.leafInstances);
    compare("instances", counts.instances, expected.leafInstances + expected.moduleInstances);
    compare("depth", counts.depth, expected.depth);
    const std::vector<IVDBNet *> plain = top->getNets(false);
    std::size_t userItems = 0;
    for (IVDBNet *const net : plain) {
        userItems += net->isUserDeclared() ? 1 : 0;
    }
    for (IVDBNetBus *const bus : top->getAllNetBus()) {
        userItems += bus->isUserDeclared() ? 1 : 0;
    }
    compare("nets of the top", plain.size() + top->getNets(true).size(), expected.topNets);
    compare("nets and buses of the top", plain.size() + top->getAllNetBus().size(), expected.topItems);
    compare("user-declared nets and buses", userItems, expected.topUserItems);
    return differences;
}

std::vector<std::string> fullNames(IDesignDatabase &database, IDesignDatabase::SOURCE_TYPE source)
{
    std::vector<std::string> names;
    forEachInstance(database.getRoot(source), [&](IVDBInstance *instance) {
        std::string prefix = instance->getPath();
        if (!prefix.empty()) {
            prefix += '/';
        }
        for (IVDBNetBus *const bus : instance->getModule()->getAllNetBus()) {
            names.push_back(prefix + bus->getName());
        }
        for (IVDBNet *const net : instance->getModule()->getNets(false)) {
            names.push_back(prefix + net->getName());
        }
    });
    return names;
}

void writeLines(const std::vector<std::string> &lines, const std::string &path)
{
    OutputFile out(path);
    for (const std::string &line : lines) {
        out.print("{}\n", line);
    }
    out.close();
}

std::vector<InstanceNet> allNets(IDesignDatabase &database, IDesignDatabase::SOURCE_TYPE source)
{
    std::vector<InstanceNet> places;
    std::unordered_map<const IVDBNetlist *, std::vector<IVDBNet *>> netsOf;
    forEachInstance(database.getRoot(source), [&](IVDBInstance *instance) {
        const IVDBNetlist *const module = instance->getModule();
        const auto [found, isNew] = netsOf.try_emplace(module);
        if (isNew) {
            found->second = module->getNets(true);
            const std::vector<IVDBNet *> plain = module->getNets(false);
            found->second.insert(found->second.end(), plain.begin(), plain.end());
        }
        for (IVDBNet *const net : found->second) {
            places.emplace_back(instance, net);
        }
    });
    return places;
}

std::string checkClocks(IDesignDatabase &database, Shape shape, std::size_t leafInstances)
{
    const DesignFacts &facts = designFacts(shape, leafInstances);
    const IDesignDatabase::SOURCE_TYPE source = sourceOf(shape);
    const std::size_t domains = database.listAllClockDomains(source).size();
    if (domains != facts.counts.clockDomains) {
        return fmt::format("{} clock domains instead of {}", domains, facts.counts.clockDomains);
    }
    std::unordered_map<std::string, IVDBNet *> byName;
    IVDBNetlist *const top = database.getTopModule(source);
    for (const bool fromBuses : {false, true}) {
        for (IVDBNet *const net : top->getNets(fromBuses)) {
            byName.emplace(net->getName(), net);
        }
    }
    for (const auto &[name, clock] : facts.knownClocks) {
        const auto net = byName.find(name);
        if (net == byName.end()) {
            return "no net " + name;
        }
        const IClockDomain *const domain =
            database.findDrivingClockDomains(database.getRoot(source), net->second, source);
        const std::string found = domain == nullptr ? "none" : domain->getName();
        if (found != facts.clockNets[clock]) {
            return fmt::format("clock of {}: {} instead of {}", name, found, facts.clockNets[clock]);
        }
    }
    return {};
}

} // namespace kvr::netlistdb::bench
