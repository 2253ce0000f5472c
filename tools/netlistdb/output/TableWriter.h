#pragma once

#include "output/ResultWriter.h"

#include <chrono>

namespace kvr::netlistdb::tool {

/// Aligned columns for people. Where the widths are not known beforehand they are those of the first rows; later rows
/// that are wider push the rest of their line to the right. A result without rows is no text at all.
class TableWriter : public ResultWriter {
  public:
    TableWriter(OutputStream &stream, bool color) : m_stream(stream), m_color(color) {}
    void begin(const ResultHead &head) override;
    void row(const Row &row) override;
    void end(Ending ending, const std::vector<Fact> &facts) override;
    void tick() override;
    bool isTable() const override { return true; }

  private:
    struct Place {
        std::size_t at; ///< in the row
        Column column;
        std::size_t width;
    };

    void settle();
    void print(const std::vector<std::string> &cells, bool head);

    OutputStream &m_stream;
    bool m_color;
    bool m_watched = false; ///< by somebody at a terminal
    bool m_settled = false;
    std::vector<Place> m_places;
    std::vector<std::vector<std::string>> m_waiting; ///< rows before the widths are settled
    std::chrono::steady_clock::time_point m_firstRow;
};

} // namespace kvr::netlistdb::tool
