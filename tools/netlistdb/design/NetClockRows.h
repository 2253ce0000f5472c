#pragma once

#include "design/PathResolver.h"
#include "output/RowSource.h"

#include <netlistdb/analysis/ClockMap.h>
#include <string>
#include <utility>
#include <vector>

namespace kvr::netlistdb::tool {

/// What rows about the clocks of nets hold besides the clocks that reach them.
struct NetClockChoice {
    bool capture = false; ///< the clocks whose registers the net reaches
    bool why = false;     ///< the chains that prove the clocks
};

/// Every clock that reaches each of some nets.
class NetClockRows : public RowSource {
  public:
    /// @p bits are nets of @p design, which has clocks and must outlive the object.
    NetClockRows(Design &design, std::vector<PathResolver::Bit> bits, const NetClockChoice &choice)
        : m_design(design), m_bits(std::move(bits)), m_choice(choice)
    {
    }

    std::vector<Column> columns() const override;
    bool step(ResultWriter &writer) override;
    /// Number of nets so far that a clock reaches.
    std::uint64_t found() const { return m_found; }

  private:
    void write(const PathResolver::Bit &bit, ResultWriter &writer);

    Design &m_design;
    std::vector<PathResolver::Bit> m_bits;
    NetClockChoice m_choice;
    std::size_t m_next = 0;
    std::uint64_t m_found = 0;
};

/// What the path of @p bit looks like: with the name that it was asked for by, in a table.
std::string shownPath(const PathResolver::Bit &bit, bool isTable);

/// Where a net goes to, ready to be shown.
struct CapturedNet {
    std::vector<std::pair<std::string, std::string>> clocks; ///< with the roles of the pins
    std::vector<std::string> reached;
    std::string shown;
};
CapturedNet capturedOf(const analysis::CaptureClocks &capture, const analysis::ClockMap &map);

} // namespace kvr::netlistdb::tool
