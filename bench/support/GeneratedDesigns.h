#pragma once

#include "generator/Design.h"

#include <string>
#include <utility>
#include <vector>

namespace Verific {
class Netlist;
}

namespace kvr::netlistdb::bench {

enum class Shape { Flat, Hierarchical };

/// What is known about a generated design without keeping it in memory.
struct DesignFacts {
    DesignCounts counts;
    std::vector<std::string> clockNets;
    /// Nets of the top by name, each with the index of its clock in clockNets.
    std::vector<std::pair<std::string, std::uint32_t>> knownClocks;
};

/// Generated anew for each shape and size in a process; lives as long as the process.
const DesignFacts &designFacts(Shape shape, std::size_t leafInstances);

/// Path of the design as Yosys JSON; written on first use, and when the file is older than this program. Files lie in
/// the directory that the environment variable NETLISTDB_BENCH_DIR names, or below the build directory.
std::string jsonFile(Shape shape, std::size_t leafInstances);
/// The same as a saved netlist, made without a detour over JSON. Empties the global libset when it has to write one.
std::string savedFile(Shape shape, std::size_t leafInstances);

/// Empties the global libset and restores the design into it.
Verific::Netlist *restoreDesign(Shape shape, std::size_t leafInstances);

} // namespace kvr::netlistdb::bench
