#include "support/GeneratedDesigns.h"

#include "generator/JsonWriter.h"
#include "generator/NetlistBuilder.h"

#include "DataBase.h"

#include <fmt/format.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <stdexcept>

namespace kvr::netlistdb::bench {
namespace {

namespace fs = std::filesystem;

Design makeDesign(Shape shape, std::size_t leafInstances)
{
    return shape == Shape::Flat ? makeFlatDesign(leafInstances) : makeHierarchicalDesign(leafInstances);
}

fs::path filePath(Shape shape, std::size_t leafInstances, const char *extension)
{
    const char *const configured = std::getenv("NETLISTDB_BENCH_DIR");
    const fs::path directory = configured != nullptr ? configured : BENCH_DATA_DIR;
    fs::create_directories(directory);
    return directory /
           fmt::format("{}_{}.{}", shape == Shape::Flat ? "flat" : "hierarchical", leafInstances, extension);
}

bool isCurrent(const fs::path &path)
{
    return fs::exists(path) && fs::last_write_time(path) >= fs::last_write_time("/proc/self/exe");
}

} // namespace

const DesignFacts &designFacts(Shape shape, std::size_t leafInstances)
{
    static std::map<std::pair<Shape, std::size_t>, DesignFacts> known;
    const auto [found, isNew] = known.try_emplace({shape, leafInstances});
    DesignFacts &facts = found->second;
    if (isNew) {
        const Design design = makeDesign(shape, leafInstances);
        facts.counts = design.counts;
        facts.clockNets = design.clockNets;
        std::vector<std::string> names(design.top().bitCount);
        for (const Signal &signal : design.top().signals) {
            for (unsigned index = 0; index < signal.width; ++index) {
                names[signal.firstBit + index] =
                    signal.width == 1 ? signal.name : fmt::format("{}[{}]", signal.name, index);
            }
        }
        for (const KnownClock &clock : design.knownClocks) {
            facts.knownClocks.emplace_back(names[clock.bit], clock.clock);
        }
    }
    return facts;
}

std::string jsonFile(Shape shape, std::size_t leafInstances)
{
    const fs::path path = filePath(shape, leafInstances, "json");
    if (!isCurrent(path)) {
        writeJson(makeDesign(shape, leafInstances), path.string());
    }
    return path.string();
}

std::string savedFile(Shape shape, std::size_t leafInstances)
{
    const fs::path path = filePath(shape, leafInstances, "netlist");
    if (!isCurrent(path)) {
        Verific::Libset::Reset();
        const Verific::Netlist *const top = buildNetlist(makeDesign(shape, leafInstances));
        const bool saved = top->SaveToFile(path.c_str()) != 0;
        Verific::Libset::Reset();
        if (!saved) {
            throw std::runtime_error("cannot write " + path.string());
        }
    }
    return path.string();
}

Verific::Netlist *restoreDesign(Shape shape, std::size_t leafInstances)
{
    const std::string path = savedFile(shape, leafInstances);
    Verific::Libset::Reset();
    Verific::Netlist *const top = Verific::Netlist::RestoreFromFile(path.c_str());
    if (top == nullptr) {
        throw std::runtime_error("cannot restore " + path);
    }
    return top;
}

} // namespace kvr::netlistdb::bench
