#include "commands/Session.h"

#include "base/ExitCode.h"

#include <cstdio>
#include <fmt/format.h>
#include <unistd.h>

namespace kvr::netlistdb::tool {

Session::Session(const CommonOptions &commonOptions, Interrupt &runInterrupt)
    : options(commonOptions), interrupt(runInterrupt), progress(commonOptions.progress),
      output(commonOptions.outputFile),
      color(useColor(commonOptions.color, output.isStandardOutput() ? STDOUT_FILENO : -1))
{
}

std::unique_ptr<ResultWriter> Session::makeWriter()
{
    return makeResultWriter(options.format, output, color);
}

int Session::finish(ResultWriter &writer, bool found, Ending ending, const std::vector<Fact> &facts)
{
    progress.clear();
    writer.end(ending, facts);
    output.close();
    if (ending == Ending::Interrupted) {
        writeNotes();
        note("interrupted: the result is partial");
        return EXIT_BY_SIGNAL + interrupt.signal();
    }
    return finish(found);
}

int Session::finish(bool found)
{
    progress.clear();
    output.close();
    writeNotes();
    return found ? EXIT_FOUND : EXIT_NOTHING_FOUND;
}

void Session::writeNotes()
{
    for (const std::string &each : m_notes) {
        note(each);
    }
    m_notes.clear();
}

void Session::note(const std::string &message)
{
    progress.clear();
    fmt::print(stderr, "netlistdb: {}\n", printable(message));
}

} // namespace kvr::netlistdb::tool
