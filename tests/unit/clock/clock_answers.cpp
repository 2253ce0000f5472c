// Prints the clock of every net of random netlists, "path/net -> clock", and the clock domains. The argument decides
// how the heap is stirred meanwhile, and with it in which order the items lie in memory. The last line is a fingerprint
// of that order.

#include "tests/unit/clock/ClockTest.h"
#include "tests/unit/clock/RandomNetlists.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <random>

namespace {

using namespace clock_test;

/// Leaves the heap with holes of all sizes in no order.
class Stirrer {
  public:
    explicit Stirrer(unsigned seed) : m_random(seed) {}

    void stir()
    {
        m_blocks.resize(4000);
        for (std::unique_ptr<char[]> &block : m_blocks) {
            if (m_random() % 3 != 0) {
                block = std::make_unique<char[]>(16 + m_random() % 300);
            }
        }
        std::shuffle(m_blocks.begin(), m_blocks.end(), m_random);
        m_blocks.resize(2000);
    }

  private:
    std::mt19937 m_random;
    std::vector<std::unique_ptr<char[]>> m_blocks;
};

/// Which of two neighbouring items lies first in memory, over all of them.
std::size_t orderOf(const std::vector<IVDBInstance *> &instances)
{
    std::size_t order = 0;
    for (const IVDBInstance *instance : instances) {
        const IVDBNet *last = nullptr;
        for (const IVDBNet *net : netsOf(instance)) {
            order = order * 31 + (std::less<>()(last, net) ? 1 : 2);
            last = net;
        }
    }
    return order;
}

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
