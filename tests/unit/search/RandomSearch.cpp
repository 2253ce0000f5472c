#include "RandomSearch.h"

#include <algorithm>

namespace testsupport {

using namespace kvr::netlistdb;

namespace {

constexpr const char *nameAlphabet = "aabbAB01_/ ";

SortOrder randomOrder(std::mt19937 &random)
{
    constexpr unsigned orders[] = {0, 1, 2, 7};
    return static_cast<SortOrder>(orders[below(random, 4)]);
}

} // namespace

unsigned below(std::mt19937 &random, unsigned limit)
{
    return static_cast<unsigned>(random() % limit);
}

std::string randomText(std::mt19937 &random, const std::string &alphabet, unsigned longest)
{
    std::string text(below(random, longest + 1), ' ');
    for (char &c : text) {
        c = alphabet[below(random, static_cast<unsigned>(alphabet.size()))];
    }
    return text;
}

RandomTree::RandomTree(std::mt19937 &random, bool allowMissingModules)
{
    const auto name = [&random] { return randomText(random, nameAlphabet, 6); };
    const unsigned moduleCount = 1 + below(random, 4);
    for (unsigned i = 0; i < moduleCount; ++i) {
        MockNetlist &module = tree.module("m" + std::to_string(i), below(random, 2) == 0);
        modules.push_back(&module);
        for (unsigned n = below(random, 6); n > 0; --n) {
            tree.net(module, name(), below(random, 2) == 0, below(random, 3));
        }
        for (unsigned n = below(random, 4); n > 0; --n) {
            tree.bus(module, name(), below(random, 2) == 0, below(random, 4));
        }
        for (unsigned n = below(random, 3); n > 0; --n) {
            tree.port(module, name());
        }
        if (below(random, 4) == 0) {
            module.nets.insert(module.nets.begin() + below(random, static_cast<unsigned>(module.nets.size()) + 1),
                               nullptr);
            module.buses.push_back(nullptr);
            module.ports.insert(module.ports.begin(), nullptr);
        }
    }
    const unsigned instanceCount = 1 + below(random, 15);
    for (unsigned i = 0; i < instanceCount; ++i) {
        MockNetlist *module = modules[below(random, moduleCount)];
        MockInstance *parent = i == 0 ? nullptr : instances[below(random, i)];
        const bool lacksModule = allowMissingModules && below(random, 20) == 0;
        instances.push_back(&tree.instance(i == 0 ? "" : name(), lacksModule ? nullptr : module, parent));
        if (below(random, 10) == 0) {
            // Owners go up only, so that paths end.
            instances.back()->owner = i == 0 || below(random, 2) == 0 ? nullptr : instances[below(random, i)];
        }
        if (below(random, 10) == 0) {
            instances[below(random, i + 1)]->children.push_back(nullptr);
        }
    }
}

VDBSearchParam randomRecord(std::mt19937 &random, const RandomTree &tree)
{
    const auto flag = [&random] { return below(random, 3) == 0; };
    VDBSearchParam param;
    param.itemTypes = below(random, 3) == 0 ? below(random, 64) : 0xFFFF;
    param.userModulesOnly = flag();
    param.collapseNonUserModules = flag();
    param.userNetsOnly = flag();
    param.userPortsOnly = flag();
    param.spareFlag = flag();
    param.sortItems = below(random, 2) == 0;
    param.nameOrder = randomOrder(random);
    param.widthOrder = randomOrder(random);
    param.startItem =
        tree.instances[below(random, 3) == 0 ? below(random, static_cast<unsigned>(tree.instances.size())) : 0];
    return param;
}

} // namespace testsupport
