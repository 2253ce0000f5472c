// Prints the clock of every net of random netlists, "path/net -> clock", and the clock domains. The argument decides
// how the heap is stirred meanwhile, and with it in which order the items lie in memory. The last line is a fingerprint
// of that order.

#include "tests/unit/clock/ClockTest.h"
#include "tests/unit/clock/RandomNetlists.h"
#include "tests/unit/clock/Stirrer.h"

#include <cstdlib>
#include <iostream>

namespace {

using namespace clock_test;

std::size_t print(DesignDatabase &database, IDesignDatabase::SOURCE_TYPE type)
{
    Names names;
    for (const IClockDomain *domain : database.listAllClockDomains(type)) {
        names.insert(domain->getName());
    }
    std::cout << "clocks:";
    for (const std::string &name : names) {
        std::cout << ' ' << name;
    }
    std::cout << '\n';
    const std::vector<IVDBInstance *> instances = treeOf(database.getRoot(type));
    for (IVDBInstance *instance : instances) {
        for (IVDBNet *net : netsOf(instance)) {
            std::cout << nameOf(DesignDatabase::InstanceNet(instance, net)) << " -> "
                      << nameOf(database.findDrivingClockDomains(instance, net, type)) << '\n';
        }
    }
    return orderOf(instances);
}

} // namespace

int main(int argc, char **argv)
{
    Stirrer stirrer(argc > 1 ? static_cast<unsigned>(std::strtoul(argv[1], nullptr, 10)) : 0);
    std::size_t fingerprint = 0;
    for (unsigned seed = 1; seed <= 60; ++seed) {
        const testsupport::LibsetGuard guard;
        RandomNetlists random(seed);
        DesignDatabase database(true);
        Verific::Netlist *const postMap = random.postMap();
        stirrer.stir();
        database.parsePostMapNetlist(postMap);
        Verific::Netlist *const elaborated = random.elaborated();
        stirrer.stir();
        database.parseElaboratedNetlist(elaborated);
        for (const auto type : {POST_MAP, ELABORATED}) {
            std::cout << "netlist " << seed << (type == POST_MAP ? " post-map\n" : " elaborated\n");
            fingerprint = fingerprint * 1000003 + print(database, type);
        }
    }
    std::cout << fingerprint << '\n';
    return 0;
}
