// One road through the library in one process, for timing and measuring from outside.

#include "support/JsonPass.h"
#include "support/Measure.h"
#include "support/TreeWalk.h"

#include "DataBase.h"
#include "yosys/YosysReader.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <exception>
#include <map>
#include <memory>
#include <stdexcept>

namespace kvr::netlistdb::bench {
namespace {

class Driver {
  public:
    explicit Driver(std::vector<std::string> arguments) : m_arguments(std::move(arguments)) {}

    void run(const std::string &road)
    {
        using Road = void (Driver::*)();
        static const std::map<std::string, Road> roads{
            {"json-pass", &Driver::jsonPass},
            {"read-json", &Driver::readJson},
            {"save", &Driver::save},
            {"restore", &Driver::restoreOnly},
            {"restore-import", &Driver::postMap},
            {"restore-unfold", &Driver::elaborated},
            {"names", &Driver::names},
            {"search", &Driver::search},
            {"clocks-post-map", &Driver::clocksPostMap},
            {"clocks-elaborated", &Driver::clocksElaborated},
        };
        const auto found = roads.find(road);
        if (found == roads.end()) {
            throw std::runtime_error("no road " + road);
        }
        (this->*found->second)();
        fmt::print("peak_mib {:.1f}\n", static_cast<double>(peakBytes()) / (1 << 20));
    }

  private:
    const std::string &argument(std::size_t index) const
    {
        if (index >= m_arguments.size()) {
            throw std::runtime_error("a file is missing");
        }
        return m_arguments[index];
    }

    void phase(const char *name)
    {
        fmt::print("{0}_s {1:.4f}\n{0}_cpu_s {2:.4f}\n", name, m_watch.lap(), m_processorWatch.lap());
    }

    Verific::Netlist *restore()
    {
        Verific::Netlist *const netlist = Verific::Netlist::RestoreFromFile(argument(0).c_str());
        if (netlist == nullptr) {
            throw std::runtime_error(argument(0) + ": not a saved netlist");
        }
        phase("restore");
        return netlist;
    }

    void jsonPass()
    {
        const JsonPassCounts counts = passOverJson(argument(0));
        phase("pass");
        fmt::print("bytes {}\nchecksum {}\n", counts.bytes, counts.checksum);
    }

    void readJson()
    {
        yosys::readJson(argument(0));
        phase("read");
        Verific::Libset::Reset();
        phase("delete");
    }

    void save()
    {
        const Verific::Netlist *const netlist = yosys::readJson(argument(0));
        phase("read");
        if (netlist->SaveToFile(argument(1).c_str()) == 0) {
            throw std::runtime_error("cannot write " + argument(1));
        }
        phase("save");
    }

    void restoreOnly()
    {
        restore();
        Verific::Libset::Reset();
        phase("delete");
    }

    void import(DesignDatabase &database, Shape shape)
    {
        Verific::Netlist *const netlist = restore();
        netlist->SetDisposable(1); // as the program does: only the import needs it
        if (!bench::import(database, shape, netlist)) {
            throw std::runtime_error(argument(0) + ": the import answers false");
        }
        phase("import");
    }

    void postMap()
    {
        {
            DesignDatabase database(true);
            import(database, Shape::Flat);
            fmt::print("instances {}\n", database.getRoot(IDesignDatabase::SOURCE_POST_MAP)->getSubInstances().size());
        }
        phase("destroy");
    }

    void elaborated()
    {
        {
            DesignDatabase database(true);
            import(database, Shape::Hierarchical);
            const TreeCounts counts = countTree(database, IDesignDatabase::SOURCE_ELABORATED);
            fmt::print("instances {}\nleaves {}\n", counts.instances, counts.leaves);
            phase("count");
        }
        phase("destroy");
    }

    static Shape shapeOf(const std::string &text) { return text == "flat" ? Shape::Flat : Shape::Hierarchical; }

    /// Saved netlist, file to write, shape.
    void names()
    {
        const Shape shape = shapeOf(argument(2));
        DesignDatabase database(false);
        import(database, shape);
        writeLines(fullNames(database, sourceOf(shape)), argument(1));
        phase("names");
    }

    /// Saved netlist, shape, plain pattern.
    void search()
    {
        const Shape shape = shapeOf(argument(1));
        DesignDatabase database(false);
        import(database, shape);
        VDBSearchParam param;
        param.itemTypes = ITEM_INSTANCE | ITEM_NET | ITEM_NET_BUS;
        param.filterByName = true;
        param.pattern = argument(2);
        param.startItem = database.getRoot(sourceOf(shape));
        SearchResults results(database.search(param));
        std::size_t hits = 0;
        while (results.next()) {
            hits += results.getCurrent()->getItemType() != ITEM_INSTANCE ? 1 : 0;
        }
        phase("search");
        fmt::print("hits {}\n", hits);
    }

    void clocks(Shape shape)
    {
        DesignDatabase database(true);
        import(database, shape);
        const std::vector<InstanceNet> places = allNets(database, sourceOf(shape));
        phase("list");
        std::size_t clocked = 0;
        for (const auto &[instance, net] : places) {
            clocked += database.findDrivingClockDomains(instance, net, sourceOf(shape)) != nullptr ? 1 : 0;
        }
        phase("clocks");
        fmt::print("nets {}\nclocked {}\n", places.size(), clocked);
    }

    void clocksPostMap() { clocks(Shape::Flat); }
    void clocksElaborated() { clocks(Shape::Hierarchical); }

    std::vector<std::string> m_arguments;
    Stopwatch m_watch;
    ProcessorStopwatch m_processorWatch;
};

} // namespace
} // namespace kvr::netlistdb::bench

int main(int argc, char **argv)
{
    CLI::App app("Goes one road through the library and prints the seconds of each phase.");
    std::string road;
    std::vector<std::string> arguments;
    app.add_option("road", road,
                   "json-pass, read-json, save, restore, restore-import, restore-unfold, names, search, "
                   "clocks-post-map or clocks-elaborated")
        ->required();
    app.add_option("files", arguments, "files of the road")->required();
    CLI11_PARSE(app, argc, argv);
    try {
        kvr::netlistdb::bench::Driver(arguments).run(road);
    } catch (const std::exception &error) {
        fmt::print(stderr, "bench_drive: {}\n", error.what());
        return 1;
    }
    return 0;
}
