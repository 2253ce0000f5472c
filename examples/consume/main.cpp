// A first program: load a design, walk it, ask for its clocks, search it.
//
//   consume NETLIST [PATTERN]
//
// NETLIST is a saved netlist in the elaborated form; PATTERN is looked for in the full names of nets and buses.

#include <netlistdb/netlistdb.h>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

using namespace kvr::netlistdb;

namespace {

struct Census {
    std::size_t instances = 0;
    std::size_t nets = 0;
    std::size_t buses = 0;
    std::size_t probeable = 0;
};

/// Walks the instance tree. Every node points to its module, which all instances of that module share: nets belong to
/// the module, and (instance, net) names one wire of the design. The tree can be deep, hence no recursion.
Census takeCensus(IVDBInstance *root)
{
    Census census;
    std::vector<IVDBInstance *> pending{root};
    while (!pending.empty()) {
        const IVDBInstance *instance = pending.back();
        pending.pop_back();
        ++census.instances;

        const IVDBNetlist *module = instance->getModule();
        census.buses += module->getAllNetBus().size();
        // The nets of a module are those inside its buses and those outside.
        for (const bool fromBuses : {true, false}) {
            for (const IVDBNet *net : module->getNets(fromBuses)) {
                ++census.nets;
                census.probeable += net->isSelectableForDebugger() ? 1 : 0;
            }
        }
        const std::vector<IVDBInstance *> &below = instance->getSubInstances();
        pending.insert(pending.end(), below.begin(), below.end());
    }
    return census;
}

void printTopLevel(IVDBInstance *root)
{
    std::cout << "Modules at the top level\n";
    for (IVDBInstance *instance : root->getSubInstances()) {
        // Operators and primitives are instances too; what has a source position, somebody wrote.
        IVDBNetlist *module = instance->getModule();
        if (const IVDBLineInfo *place = module->isUserDeclared() ? module->getLineInfo() : nullptr) {
            const std::string &file = place->getFilePath();
            std::cout << "  " << instance->getName() << ": " << module->getName() << ", "
                      << file.substr(file.rfind('/') + 1) << ':' << place->getLineNumber() << '\n';
        }
    }
}

void printClocks(const DesignDatabase &database)
{
    // The list comes in no particular order.
    std::vector<std::string> names;
    for (const IClockDomain *domain : database.listAllClockDomains(IDesignDatabase::SOURCE_ELABORATED)) {
        names.push_back(domain->getName());
    }
    std::sort(names.begin(), names.end());
    std::cout << "Clock domains\n";
    for (const std::string &name : names) {
        std::cout << "  " << name << '\n';
    }
}

void printMatches(DesignDatabase &database, const std::string &pattern)
{
    VDBSearchParam param;
    param.startItem = database.getRoot(IDesignDatabase::SOURCE_ELABORATED);
    param.itemTypes = ITEM_INSTANCE | ITEM_NET | ITEM_NET_BUS; // without instances the walk stays at the top level
    param.filterByName = true;
    param.pattern = pattern;
    param.ignoreCase = true;
    param.userNetsOnly = true;

    std::cout << "Nets and buses with \"" << pattern << "\" in their names\n";
    // The result set is the caller's and has to go before the items it walks. Nothing is visited before next().
    SearchResults results(database.search(param));
    while (results.next()) {
        IVDBItem *item = results.getCurrent();
        if (item->getItemType() == ITEM_INSTANCE) {
            continue; // told in passing: the nets that follow lie in this instance
        }
        auto *net = dynamic_cast<IVDBNetBase *>(item);
        auto *instance = dynamic_cast<IVDBInstance *>(results.getContext());
        std::cout << "  " << VDBHelper::getNetFullName(net, instance) << ", " << net->getWidth()
                  << (net->getWidth() == 1 ? " bit" : " bits");

        // A clock is asked for one net at a time; for a bus the first bit speaks.
        auto *bit = dynamic_cast<IVDBNet *>(item);
        if (auto *bus = dynamic_cast<IVDBNetBus *>(item); bus != nullptr && !bus->getNets().empty()) {
            bit = bus->getNets().front();
        }
        if (bit != nullptr) {
            const IClockDomain *clock =
                database.findDrivingClockDomains(instance, bit, IDesignDatabase::SOURCE_ELABORATED);
            std::cout << ", clock: " << (clock != nullptr ? clock->getName() : "none");
        }
        std::cout << '\n';
    }
}

} // namespace

int main(int argc, char **argv)
{
    if (argc < 2 || argc > 3) {
        std::cerr << "usage: consume NETLIST [PATTERN]\n";
        return 2;
    }
    try {
        // true: keep the netlist, which clock queries need. The database owns all that it hands out.
        DesignDatabase database(true);
        // False can also mean that something was left out; isSourceLoaded tells whether there is a design at all.
        if (!database.parseElaboratedNetlistFromFile(argv[1])) {
            const bool partly = database.isSourceLoaded(IDesignDatabase::SOURCE_ELABORATED);
            std::cerr << "consume: " << argv[1] << (partly ? ": is incomplete\n" : ": cannot be restored\n");
            return 1;
        }

        IVDBInstance *root = database.getRoot(IDesignDatabase::SOURCE_ELABORATED);
        const Census census = takeCensus(root);
        std::cout << "Design " << root->getModule()->getName() << '\n'
                  << "  instances: " << census.instances << '\n'
                  << "  nets: " << census.nets << ", for a debugger: " << census.probeable << '\n'
                  << "  buses: " << census.buses << '\n';
        printTopLevel(root);
        printClocks(database);
        printMatches(database, argc > 2 ? argv[2] : "irq");
    } catch (const std::exception &error) {
        std::cerr << "consume: " << argv[1] << ": " << error.what() << '\n';
        return 1;
    }
    return 0;
}
