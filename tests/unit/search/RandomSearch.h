#pragma once

#include "tests/support/MockItems.h"

#include <netlistdb/VDBSearchParam.h>

#include <random>
#include <string>
#include <vector>

namespace testsupport {

/// A number below @p limit.
unsigned below(std::mt19937 &random, unsigned limit);

/// Up to @p longest characters of @p alphabet.
std::string randomText(std::mt19937 &random, const std::string &alphabet, unsigned longest);

/// A small random tree: modules shared by instances, null entries, odd owners, names that look alike.
struct RandomTree {
    /// @p allowMissingModules also makes instances without module.
    RandomTree(std::mt19937 &random, bool allowMissingModules);

    MockTree tree;
    std::vector<MockNetlist *> modules;
    std::vector<MockInstance *> instances;
};

/// A random record that starts at an item of @p tree, without pattern.
kvr::netlistdb::VDBSearchParam randomRecord(std::mt19937 &random, const RandomTree &tree);

} // namespace testsupport
