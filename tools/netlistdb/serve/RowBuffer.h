#pragma once

#include "output/ResultWriter.h"

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

/// Keeps rows as JSON objects until they are taken.
class RowBuffer : public ResultWriter {
  public:
    /// Drops the first @p skipped rows.
    RowBuffer(std::vector<Column> columns, std::uint64_t skipped) : m_columns(std::move(columns)), m_skipped(skipped) {}

    void begin(const ResultHead & /*head*/) override {}
    void row(const Row &row) override;
    void end(Ending /*ending*/, const std::vector<Fact> & /*facts*/) override {}
    void tick() override {}

    bool empty() const { return m_rows.empty(); }
    const std::string &front() const { return m_rows.front(); }
    void pop() { m_rows.pop_front(); }

  private:
    std::vector<Column> m_columns;
    std::uint64_t m_skipped;
    std::deque<std::string> m_rows;
};

} // namespace kvr::netlistdb::tool
