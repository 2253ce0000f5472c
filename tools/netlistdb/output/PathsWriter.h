#pragma once

#include "output/ResultWriter.h"

namespace kvr::netlistdb::tool {

/// Full names alone, one a line, as the netlist has them: what other runs and other programs read. The top, which has
/// none, is a dot.
class PathsWriter : public ResultWriter {
  public:
    explicit PathsWriter(OutputStream &stream) : m_stream(stream) {}
    void begin(const ResultHead &head) override;
    void row(const Row &row) override;
    void end(Ending ending, const std::vector<Fact> &facts) override;
    void tick() override;

  private:
    OutputStream &m_stream;
    std::size_t m_path = 0; ///< place of the column
    std::string m_line;
};

} // namespace kvr::netlistdb::tool
