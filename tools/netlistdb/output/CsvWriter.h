#pragma once

#include "output/ResultWriter.h"

namespace kvr::netlistdb::tool {

/// Comma-separated values with a line of column names, quoted as in RFC 4180. Lists are joined with a blank.
class CsvWriter : public ResultWriter {
  public:
    explicit CsvWriter(OutputStream &stream) : m_stream(stream) {}
    void begin(const ResultHead &head) override;
    void row(const Row &row) override;
    void end(Ending ending, const std::vector<Fact> &facts) override;
    void tick() override;

  private:
    OutputStream &m_stream;
    std::vector<bool> m_shown;
    std::string m_line;
};

} // namespace kvr::netlistdb::tool
