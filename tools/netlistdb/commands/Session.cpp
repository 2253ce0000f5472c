#include "commands/Session.h"

#include "base/ExitCode.h"
#include "base/StandardError.h"
#include "output/PathsWriter.h"

#include <unistd.h>

namespace kvr::netlistdb::tool {

Session::Session(const CommonOptions &commonOptions, const std::vector<std::string> &inputs, Interrupt &runInterrupt)
    : options(commonOptions), interrupt(runInterrupt), progress(commonOptions.progress),
      output(commonOptions.outputFile, inputs, interrupt.temporaries()),
      color(useColor(commonOptions.color, output.isStandardOutput() ? STDOUT_FILENO : -1))
{
}

std::unique_ptr<ResultWriter> Session::makeWriter()
{
    if (options.paths) {
        return std::make_unique<PathsWriter>(output);
    }
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
    say("netlistdb: " + printable(message) + "\n");
}

} // namespace kvr::netlistdb::tool
