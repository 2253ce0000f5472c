#include "base/Interrupt.h"
#include "base/Progress.h"
#include "base/Stats.h"
#include "design/Design.h"
#include "design/NearestNames.h"
#include "design/YosysProcess.h"

#include <DataBase.h>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <frontend/yosys/YosysReader.h>
#include <fstream>
#include <sys/stat.h>

namespace kvr::netlistdb::tool {

namespace {

enum class Kind { Json, Saved, Verilog };

bool endsWith(const std::string &text, const char *end)
{
    const std::size_t length = std::strlen(end);
    return text.size() >= length && text.compare(text.size() - length, length, end) == 0;
}

/// @throws Failure unless @p file is there, readable, and not empty.
void checkReadable(const std::string &file)
{
    struct stat status {};
    if (stat(file.c_str(), &status) != 0) {
        throw refused(file, std::strerror(errno));
    }
    if (S_ISDIR(status.st_mode)) {
        throw refused(file, std::strerror(EISDIR));
    }
    if (!S_ISREG(status.st_mode)) {
        // Its kind is found out by a look into it, and what that takes from a pipe is gone.
        throw refused(file, "is no regular file");
    }
    if (status.st_size == 0) {
        throw refused(file, "is empty");
    }
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        throw refused(file, std::strerror(errno != 0 ? errno : EIO));
    }
}

/// By name where the name says it, otherwise by the first character that is no white space.
Kind kindOf(const std::string &file)
{
    if (isVerilogName(file)) {
        return Kind::Verilog;
    }
    if (endsWith(file, ".json")) {
        return Kind::Json;
    }
    std::ifstream stream(file, std::ios::binary);
    char first = 0;
    stream >> first;
    return first == '{' ? Kind::Json : Kind::Saved;
}

Verific::Netlist *readJson(const std::string &file, const std::string &top, const Reading &reading)
{
    yosys::ReadOptions options;
    options.top = top;
    options.cellTables = reading.cellTables;
    options.progress = [&reading](std::uint64_t done, std::uint64_t total) {
        reading.progress.update(done, total);
        return !reading.interrupt.requested();
    };
    try {
        return yosys::readJson(file, options);
    } catch (const yosys::ReadCancelled &) {
        throw Interrupted();
    } catch (const yosys::ReadError &error) {
        throw Failure(EXIT_REFUSED, error.what());
    }
}

/// A directory that goes, with everything in it, when this object does.
class TemporaryDirectory {
  public:
    TemporaryDirectory()
    {
        std::string path = (std::filesystem::temp_directory_path() / "netlistdb.XXXXXX").string();
        if (mkdtemp(path.data()) == nullptr) {
            throw refused(path, std::strerror(errno));
        }
        m_path = path;
    }
    ~TemporaryDirectory()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory &) = delete;
    TemporaryDirectory &operator=(const TemporaryDirectory &) = delete;

    std::string file(const char *name) const { return m_path + "/" + name; }

  private:
    std::string m_path;
};

Verific::Netlist *readVerilog(const std::vector<std::string> &files, const Reading &reading)
{
    const TemporaryDirectory directory;
    const std::string json = directory.file("netlist.json");
    reading.progress.begin("elaborating " + files.front() + " with yosys");
    elaborateWithYosys(files, reading.top, json, reading.interrupt);
    reading.progress.begin("reading " + files.front());
    return readJson(json, reading.top, reading);
}

/// The netlist of module @p name in the library set.
Verific::Netlist *findModule(const std::string &file, const std::string &name)
{
    NearestNames nearest(name);
    Verific::MapIter li;
    Verific::Library *library = nullptr;
    FOREACH_LIBRARY_OF_LIBSET (Verific::Libset::Global(), li, library) {
        Verific::Cell *cell = library->GetCell(name.c_str());
        if (cell != nullptr && cell->GetFirstNetlist() != nullptr) {
            return cell->GetFirstNetlist();
        }
        Verific::MapIter ci;
        FOREACH_CELL_OF_LIBRARY (library, ci, cell) {
            if (cell->Name() != nullptr) {
                nearest.offer(cell->Name());
            }
        }
    }
    throw refused(file, "has no module '" + name + "'" + didYouMean(nearest.best()));
}

Verific::Netlist *readSaved(const std::string &file, const std::string &top)
{
    Verific::Netlist *netlist = Verific::Netlist::RestoreFromFile(file.c_str());
    if (netlist == nullptr) {
        throw refused(file, "neither a Yosys JSON netlist nor an undamaged saved netlist");
    }
    const char *name = netlist->CellBaseName();
    return top.empty() || (name != nullptr && top == name) ? netlist : findModule(file, top);
}

} // namespace

bool isVerilogName(const std::string &file)
{
    return endsWith(file, ".v") || endsWith(file, ".sv");
}

SourceNetlist readNetlist(const std::vector<std::string> &files, const Reading &asked)
{
    Reading reading = asked;
    const TemporaryDirectory tables;
    for (std::size_t number = 0; number < reading.cellTables.size(); ++number) {
        std::string &file = reading.cellTables[number];
        checkReadable(file);
        if (isVerilogName(file)) {
            const std::string table = tables.file(("cells_" + std::to_string(number) + ".json").c_str());
            reading.progress.begin("deriving the cells of " + file + " with yosys");
            deriveCellTable(file, table, reading.interrupt);
            file = table;
        }
    }
    for (const std::string &file : files) {
        checkReadable(file);
    }
    const std::string &file = files.front();
    Verific::LineFile::SetRoot(reading.sourceRoot.c_str());
    reading.progress.begin("reading " + file);
    reading.stats.begin("read");
    SourceNetlist source;
    source.name = file;
    switch (kindOf(file)) {
    case Kind::Json:
        source.netlist = readJson(file, reading.top, reading);
        break;
    case Kind::Saved:
        source.netlist = readSaved(file, reading.top);
        break;
    case Kind::Verilog:
        source.netlist = readVerilog(files, reading);
        break;
    }
    reading.interrupt.check();
    source.form = reading.form.value_or(detectForm(*source.netlist));
    return source;
}

} // namespace kvr::netlistdb::tool
