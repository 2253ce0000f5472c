#include "Design.h"
#include "JsonWriter.h"
#include "NetlistBuilder.h"

#include "DataBase.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <exception>
#include <stdexcept>
#include <utility>

namespace bench = kvr::netlistdb::bench;

namespace {

/// Saves the netlist of a design, which is given back to the system before the file is written.
void save(bench::Design design, const std::string &path)
{
    Verific::Netlist *const netlist = bench::buildNetlist(design);
    design = {};
    if (netlist->SaveToFile(path.c_str()) == 0) {
        throw std::runtime_error("cannot write " + path);
    }
}

} // namespace

int main(int argc, char **argv)
{
    CLI::App app("Writes a generated design.");
    std::string shape;
    std::size_t size = 0;
    std::string json;
    std::string saved;
    std::string names;
    app.add_option("shape", shape, "flat or hierarchical")->required()->check(CLI::IsMember({"flat", "hierarchical"}));
    app.add_option("leaves", size, "number of leaf instances")->required()->check(CLI::Range(1000U, 100000000U));
    CLI::Option_group &files = *app.add_option_group("files", "What is written");
    files.add_option("-o,--output", json, "Yosys JSON; of some millions of cells, more than a reader takes");
    files.add_option("--saved", saved, "saved netlist, without a detour over JSON");
    files.require_option(1);
    app.add_option("--names", names, "file for the names of all nets of the top, one a line");
    CLI11_PARSE(app, argc, argv);
    try {
        bench::Design design = shape == "flat" ? bench::makeFlatDesign(size) : bench::makeHierarchicalDesign(size);
        const bench::DesignCounts counts = design.counts;
        if (!names.empty()) {
            bench::writeNames(design, names);
        }
        if (saved.empty()) {
            bench::writeJson(design, json);
        } else {
            save(std::move(design), saved);
        }
        fmt::print("leaf instances {}, module instances {}, modules {}, nets of the top {}, clock domains {}\n",
                   counts.leafInstances, counts.moduleInstances, counts.modules, counts.topNets, counts.clockDomains);
    } catch (const std::exception &error) {
        fmt::print(stderr, "netlist_generator: {}\n", error.what());
        return 1;
    }
    return 0;
}
