#include "base/Interrupt.h"
#include "base/Progress.h"
#include "base/Stats.h"
#include "design/Design.h"
#include "design/InputFile.h"
#include "design/NearestNames.h"
#include "design/YosysProcess.h"

#include <DataBase.h>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <frontend/yosys/NetlistReader.h>
#include <frontend/yosys/UserModuleName.h>
#include <frontend/yosys/YosysReader.h>
#include <simdjson.h>
#include <string_view>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>

namespace kvr::netlistdb::tool {

namespace {

bool endsWith(const std::string &text, std::string_view end)
{
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

/// Hands every module in the library set to @p visit, with the name of its cell and the one that the user wrote.
template <class Visit> void visitModules(Visit visit)
{
    Verific::MapIter li;
    Verific::Library *library = nullptr;
    FOREACH_LIBRARY_OF_LIBSET (Verific::Libset::Global(), li, library) {
        Verific::MapIter ci;
        const Verific::Cell *cell = nullptr;
        FOREACH_CELL_OF_LIBRARY (library, ci, cell) {
            Verific::Netlist *netlist = cell->GetFirstNetlist();
            if (netlist == nullptr || cell->Name() == nullptr) {
                continue;
            }
            const char *userName = netlist->GetAttValue(yosys::USER_MODULE);
            visit(*netlist, std::string(cell->Name()), std::string(userName != nullptr ? userName : cell->Name()));
        }
    }
}

/// A question for the modules in the library set that are called much like @p name. None when some were made from the
/// module of that name: the message lists those.
std::string nearestModules(const std::string &name)
{
    NearestNames nearest(name);
    bool isKnown = false;
    visitModules([&](const Verific::Netlist &, const std::string &, const std::string &userName) {
        nearest.offer(userName);
        isKnown = isKnown || yosys::isMadeFrom(userName, name);
    });
    return isKnown ? "" : didYouMean(nearest.best());
}

Verific::Netlist *readJson(Input &input, const yosys::ReadOptions &options)
{
    if (!input.file.empty()) {
        return yosys::readJson(input.file, options);
    }
    const yosys::JsonInput text{input.text.data(), input.text.size(), input.text.capacity()};
    return yosys::readJsonText(text, input.name, options);
}

/// Modules of @p input that are called much like @p top, as far as it can be read without a choice of the top.
std::string hintForTop(Input &input, yosys::ReadOptions options)
{
    const std::string top = std::move(options.top);
    options.top.clear();
    try {
        readJson(input, options);
    } catch (const yosys::ReadError &) {
        return {};
    }
    return nearestModules(top);
}

/// Reads JSON from the file of @p input, or from its text.
Verific::Netlist *readJson(Input &input, const Reading &reading)
{
    yosys::ReadOptions options;
    options.top = reading.top;
    options.cellTables = reading.cellTables;
    options.progress = [&reading](std::uint64_t done, std::uint64_t total) {
        reading.progress.update(done, total);
        return !reading.interrupt.requested();
    };
    try {
        return readJson(input, options);
    } catch (const yosys::ReadCancelled &) {
        throw Interrupted();
    } catch (const yosys::ReadError &error) {
        throw Failure(EXIT_REFUSED, error.what() + (reading.top.empty() ? "" : hintForTop(input, options)));
    }
}

Verific::Netlist *readVerilog(const std::vector<std::string> &files, const Reading &reading)
{
    Input input;
    input.name = nameOfSources(files);
    reading.progress.begin("elaborating " + input.name + " with yosys");
    input.text = elaborateWithYosys(files, reading.verilog, reading.top, reading.interrupt);
    input.text.reserve(input.text.size() + simdjson::SIMDJSON_PADDING);
    reading.progress.begin("reading " + input.name);
    return readJson(input, reading);
}

/// The netlist of module @p name below @p top: a cell of that name, or the only one that was made from the module that
/// the user calls so. The library set may hold modules of other designs.
Verific::Netlist *findModule(const std::string &file, const Verific::Netlist &top, const std::string &name)
{
    Verific::Netlist *exact = nullptr;
    std::vector<std::pair<std::string, Verific::Netlist *>> variants;
    Verific::Set hierarchy(Verific::POINTER_HASH);
    top.Hierarchy(hierarchy, 1);
    visitModules([&](Verific::Netlist &netlist, const std::string &cellName, const std::string &userName) {
        if (hierarchy.Get(&netlist) == nullptr) {
            return;
        }
        if (cellName == name) {
            exact = exact == nullptr ? &netlist : exact;
        } else if (userName != cellName && (userName == name || yosys::isMadeFrom(userName, name))) {
            variants.emplace_back(userName, &netlist);
        }
    });
    if (exact != nullptr) {
        return exact;
    }
    if (variants.size() > 1) {
        std::vector<std::string> names;
        names.reserve(variants.size());
        for (const auto &variant : variants) {
            names.push_back(variant.first);
        }
        throw refused(file, yosys::severalMadeFrom(name, names));
    }
    if (variants.empty()) {
        throw refused(file, "no module '" + name + "', which was asked for as the top" + nearestModules(name));
    }
    return variants.front().second;
}

/// A netlist in memory under a name that can be opened.
class MemoryFile {
  public:
    explicit MemoryFile(const std::string &text) : m_descriptor(memfd_create("netlist", MFD_CLOEXEC))
    {
        for (std::string_view rest = text; !rest.empty();) {
            const ssize_t written = write(m_descriptor, rest.data(), rest.size());
            if (written < 0) {
                throw std::system_error(errno, std::generic_category(), "a file in memory");
            }
            rest.remove_prefix(static_cast<std::size_t>(written));
        }
    }
    ~MemoryFile() { close(m_descriptor); }
    MemoryFile(const MemoryFile &) = delete;
    MemoryFile &operator=(const MemoryFile &) = delete;

    std::string name() const { return "/proc/self/fd/" + std::to_string(m_descriptor); }

  private:
    int m_descriptor;
};

Verific::Netlist *readSaved(const Input &input, const std::string &top)
{
    Verific::Netlist *netlist = input.file.empty()
                                    ? Verific::Netlist::RestoreFromFile(MemoryFile(input.text).name().c_str())
                                    : Verific::Netlist::RestoreFromFile(input.file.c_str());
    if (netlist == nullptr) {
        throw refused(input.name, "neither a Yosys JSON netlist nor an undamaged saved netlist");
    }
    const char *name = netlist->CellBaseName();
    return top.empty() || (name != nullptr && top == name) ? netlist : findModule(input.name, *netlist, top);
}

/// Tables of cells derived from the Verilog models among those that @p reading names; they take the models' place there
/// and go with this object.
class DerivedTables {
  public:
    explicit DerivedTables(Reading &reading) : m_temporaries(reading.interrupt.temporaries())
    {
        for (std::string &file : reading.cellTables) {
            checkReadable(file);
            if (isVerilogName(file)) {
                derive(file, reading);
            }
        }
    }
    ~DerivedTables()
    {
        if (!m_directory.empty()) {
            m_temporaries.remove(m_directory);
        }
    }
    DerivedTables(const DerivedTables &) = delete;
    DerivedTables &operator=(const DerivedTables &) = delete;

  private:
    void derive(std::string &file, const Reading &reading)
    {
        const std::string parent = std::filesystem::temp_directory_path().string();
        if (m_directory.empty() && !m_temporaries.makeDirectory(parent, m_directory)) {
            m_directory.clear();
            throw refused(parent, std::strerror(errno));
        }
        const std::string table = m_directory + "/cells_" + std::to_string(m_number++) + ".json";
        reading.progress.begin("deriving the cells of " + file + " with yosys");
        deriveCellTable(file, table, reading.interrupt);
        file = table;
    }

    TemporaryPaths &m_temporaries;
    std::string m_directory;
    unsigned m_number = 0;
};

} // namespace

bool isVerilogName(const std::string &file)
{
    return endsWith(file, ".v") || endsWith(file, ".sv");
}

SourceNetlist readNetlist(const std::vector<std::string> &files, const Reading &asked)
{
    Reading reading = asked;
    const DerivedTables tables(reading);
    for (const std::string &file : files) {
        checkReadable(file);
    }
    Verific::LineFile::SetRoot(reading.sourceRoot.c_str());
    reading.stats.begin("read");
    SourceNetlist source;
    if (reading.verilog.given() || isVerilogName(files.front())) {
        source.name = nameOfSources(files);
        source.netlist = readVerilog(files, reading);
    } else {
        source.name = inputName(files.front());
        reading.progress.begin("reading " + source.name);
        Input input = openInput(files.front());
        source.netlist = input.isJson ? readJson(input, reading) : readSaved(input, reading.top);
    }
    source.form = reading.form.value_or(detectForm(*source.netlist));
    return source;
}

} // namespace kvr::netlistdb::tool
