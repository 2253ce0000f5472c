#include "Design.h"
#include "JsonWriter.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <exception>

namespace bench = kvr::netlistdb::bench;

int main(int argc, char **argv)
{
    CLI::App app("Writes a generated design as Yosys JSON.");
    std::string shape;
    std::size_t size = 0;
    std::string json;
    std::string names;
    app.add_option("shape", shape, "flat or hierarchical")->required()->check(CLI::IsMember({"flat", "hierarchical"}));
    app.add_option("leaves", size, "number of leaf instances")->required()->check(CLI::Range(1000U, 100000000U));
    app.add_option("-o,--output", json, "JSON file")->required();
    app.add_option("--names", names, "file for the names of all nets of the top, one a line");
    CLI11_PARSE(app, argc, argv);
    try {
        const bench::Design design =
            shape == "flat" ? bench::makeFlatDesign(size) : bench::makeHierarchicalDesign(size);
        bench::writeJson(design, json);
        if (!names.empty()) {
            bench::writeNames(design, names);
        }
        const bench::DesignCounts &counts = design.counts;
        fmt::print("leaf instances {}, module instances {}, modules {}, nets of the top {}, clock domains {}\n",
                   counts.leafInstances, counts.moduleInstances, counts.modules, counts.topNets, counts.clockDomains);
    } catch (const std::exception &error) {
        fmt::print(stderr, "netlist_generator: {}\n", error.what());
        return 1;
    }
    return 0;
}
