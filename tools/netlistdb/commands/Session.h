#pragma once

#include "base/Interrupt.h"
#include "base/Progress.h"
#include "base/Stats.h"
#include "commands/CommonOptions.h"
#include "design/Reading.h"
#include "output/OutputStream.h"
#include "output/ResultWriter.h"

#include <memory>

namespace kvr::netlistdb::tool {

/// What one run of one command works with. Made after the command line has been understood; an output file that cannot
/// be written is found out here, before a long read.
class Session {
  public:
    /// @p inputs are files that the output may not be.
    Session(const CommonOptions &commonOptions, const std::vector<std::string> &inputs, Interrupt &runInterrupt);

    const CommonOptions &options;
    Interrupt &interrupt;
    Progress progress;
    Stats stats;
    OutputStream output;
    bool color; ///< in tables

    /// How the design is to be read, as the options have it. Uses this session.
    Reading reading()
    {
        return {options.form,         options.top, options.cells, options.sourceRoot, options.verilog,
                options.maxInstances, progress,    stats,         interrupt,          m_notes};
    }
    std::unique_ptr<ResultWriter> makeWriter();
    /// Ends the result: hands everything on, and returns the exit code. Says so on standard error when the result is
    /// partial.
    int finish(ResultWriter &writer, bool found, Ending ending, const std::vector<Fact> &facts = {});
    /// The same for a result that was written without a writer.
    int finish(bool found);
    /// Writes a line to standard error.
    void note(const std::string &message);

  private:
    void writeNotes();

    std::vector<std::string> m_notes; ///< what reading has to say
};

} // namespace kvr::netlistdb::tool
