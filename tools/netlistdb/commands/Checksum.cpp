#include "base/Failure.h"
#include "commands/Command.h"
#include "commands/Session.h"

#include <CLI/CLI.hpp>
#include <array>
#include <cstring>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <netlistdb/VDBHelper.h>
#include <sys/stat.h>

namespace kvr::netlistdb::tool {

namespace {

std::string checksumOf(const std::string &file)
{
    struct stat status {};
    // A directory can be opened, but reads as an empty file.
    if (stat(file.c_str(), &status) != 0 || S_ISDIR(status.st_mode)) {
        throw refused(file, std::strerror(S_ISDIR(status.st_mode) ? EISDIR : errno));
    }
    std::array<unsigned char, 32> digest{};
    errno = 0;
    try {
        VDBHelper::computeSHA256CheckSum(file, digest.data());
    } catch (const std::runtime_error &fault) {
        throw refused(file, errno != 0 ? std::strerror(errno) : fault.what());
    }
    return fmt::format("{:02x}", fmt::join(digest, ""));
}

class ChecksumCommand : public Command {
  public:
    const char *name() const override { return "checksum"; }
    const char *summary() const override { return "Show the SHA-256 checksum of a file"; }
    const char *arguments() const override { return "FILE... [OPTIONS]"; }
    const char *more() const override
    {
        return "Tables are in the format that `sha256sum --check` reads.\n\n"
               "Examples:\n"
               "  netlistdb checksum soc.json\n"
               "  netlistdb checksum soc.json soc.netlist --format csv";
    }

    void addOptions(CLI::App &app, CommonOptions &common) override
    {
        addOutputOptions(app, common);
        addReportOptions(app, common);
    }

    void takeArguments(std::vector<std::string> arguments, const CommonOptions & /*common*/) override
    {
        if (arguments.empty()) {
            throw wrongUsage("no file given; usage: netlistdb checksum FILE...");
        }
        m_files = std::move(arguments);
    }

    std::vector<std::string> prepare(CommonOptions & /*common*/) override { return m_files; }

    int run(Session &session) override
    {
        session.stats.begin("read");
        if (session.options.format == Format::Table) {
            for (const std::string &file : m_files) {
                session.output.write(checksumOf(file) + "  " + printable(file) + "\n");
            }
            return session.finish(true);
        }
        ResultHead head;
        head.command = "checksum";
        head.columns = {{"file", nullptr}, {"sha256", nullptr}};
        const auto writer = session.makeWriter();
        writer->begin(head);
        for (const std::string &file : m_files) {
            const std::string checksum = checksumOf(file);
            writer->row({std::string_view(file), std::string_view(checksum)});
        }
        return session.finish(*writer, true, Ending::Complete);
    }

  private:
    std::vector<std::string> m_files;
};

} // namespace

std::unique_ptr<Command> makeChecksumCommand()
{
    return std::make_unique<ChecksumCommand>();
}

} // namespace kvr::netlistdb::tool
