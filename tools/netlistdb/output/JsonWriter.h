#pragma once

#include "output/ResultWriter.h"

namespace kvr::netlistdb::tool {

/// One JSON object with the results in an array, or one JSON object a line: head, results, end.
class JsonWriter : public ResultWriter {
  public:
    JsonWriter(OutputStream &stream, bool lines) : m_stream(stream), m_lines(lines) {}
    void begin(const ResultHead &head) override;
    void row(const Row &row) override;
    void end(Ending ending, const std::vector<Fact> &facts) override;
    void tick() override;

  private:
    OutputStream &m_stream;
    bool m_lines;
    bool m_first = true;
    std::vector<Column> m_columns;
    std::string m_text; ///< of a row; kept for its storage
};

} // namespace kvr::netlistdb::tool
