#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

class Design;
class Interrupt;

/// How many there are of something, and how many of these the user declared.
struct Count {
    std::uint64_t total = 0;
    std::uint64_t userDeclared = 0;
    void add(bool isUserDeclared, std::uint64_t number = 1)
    {
        total += number;
        userDeclared += isUserDeclared ? number : 0;
    }
};

/// Nets, buses and ports of one definition, or of many.
struct Contents {
    Count nets; ///< bits of buses included
    Count buses;
    std::uint64_t ports = 0; ///< bits
    void add(const Contents &other, std::uint64_t times = 1);
};

/// The definitions of one name in one library: user modules have one, operators one for each set of parameters.
struct ModuleCensus {
    std::string name;
    std::string userName; ///< what the user calls it
    std::string library;
    bool userDeclared = false;
    bool constant = false; ///< drives a constant; no cell in the eyes of a designer
    std::uint64_t definitions = 0;
    std::uint64_t instances = 0;                ///< in the unfolded design
    Contents contents;                          ///< of the definitions
    std::map<std::string, std::uint64_t> cells; ///< instances in the definitions, by module name
};

/// What a design holds.
struct Census {
    std::vector<ModuleCensus> modules; ///< in the order in which the unfolded design meets them
    Count definitions;
    Count instances;
    std::vector<Count> levels; ///< instances by depth, the top alone at 0
    Contents defined;          ///< each definition once
    Contents unfolded;         ///< once for every instance
};

/// Counts everything in @p design.
/// @throws Interrupted
Census takeCensus(Design &design, const Interrupt &interrupt);

} // namespace kvr::netlistdb::tool
