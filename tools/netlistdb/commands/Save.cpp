#include "base/Failure.h"
#include "commands/Command.h"
#include "commands/Session.h"
#include "design/Design.h"

#include <CLI/CLI.hpp>
#include <DataBase.h>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string_view>

namespace kvr::netlistdb::tool {

namespace {

/// True when @p file begins like what this command writes.
bool isSavedNetlist(const std::string &file)
{
    constexpr std::string_view MAGIC = "\x8ENLDB\r\n\x1A";
    std::ifstream stream(file, std::ios::binary);
    std::string begin(MAGIC.size(), '\0');
    return stream.read(begin.data(), static_cast<std::streamsize>(begin.size())) && begin == MAGIC;
}

class SaveCommand : public DesignCommand {
  public:
    const char *name() const override { return "save"; }
    const char *summary() const override { return "Write the saved-netlist form, which is quick to read"; }
    const char *arguments() const override { return "DESIGN... OUT [OPTIONS]"; }
    const char *more() const override
    {
        return "OUT appears, or replaces what was there, only as a whole. A file that is no saved netlist is replaced\n"
               "with --force only.\n\n"
               "Examples:\n"
               "  netlistdb save soc.json soc.netlist\n"
               "  netlistdb save rtl/soc.v rtl/uart.v soc.netlist --top soc";
    }

    void addOptions(CLI::App &app, CommonOptions &common) override
    {
        app.add_flag("--force", m_force, "Replace OUT also when it is no saved netlist");
        addSourceOptions(app, common);
        addReportOptions(app, common);
    }

    int run(Session &session) override
    {
        const std::string &file = m_own.front();
        OutputStream output(file, m_design, session.interrupt.temporaries());
        if (!m_force && output.target().exists && output.target().status.st_size > 0 && !isSavedNetlist(file)) {
            throw refused(file, "is there and no saved netlist; --force replaces it");
        }
        const SourceNetlist source = readNetlist(m_design, session.reading());
        session.progress.begin("saving " + file);
        session.stats.begin("save");
        write(*source.netlist, file, output, session.interrupt.temporaries());
        Verific::Libset::Reset();
        return session.finish(true);
    }

  protected:
    std::size_t leastOwnArguments() const override { return 1; }

  private:
    /// The netlist database writes files only, under other names first: in a directory of their own nothing of that is
    /// left over. Beside the target a move puts the netlist in place.
    static void write(const Verific::Netlist &netlist, const std::string &file, OutputStream &output,
                      TemporaryPaths &temporaries)
    {
        const bool isFile = output.target().kind == OutputTarget::Kind::File;
        std::string directory;
        if (!temporaries.makeDirectory(
                isFile ? output.target().directory() : std::filesystem::temp_directory_path().string(), directory)) {
            throw refused(file, std::string("cannot be written: ") + std::strerror(errno));
        }
        const std::string saved = directory + "/netlist";
        errno = 0;
        const bool written = netlist.SaveToFile(saved.c_str()) != 0;
        const int error = errno;
        if (written) {
            output.takeFile(saved);
        }
        temporaries.remove(directory);
        if (!written) {
            throw refused(file,
                          error != 0 ? std::string("cannot be written: ") + std::strerror(error) : "cannot be written");
        }
        output.close();
    }

    bool m_force = false;
};

} // namespace

std::unique_ptr<Command> makeSaveCommand()
{
    return std::make_unique<SaveCommand>();
}

} // namespace kvr::netlistdb::tool
