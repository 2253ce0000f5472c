#pragma once

#include "design/ProbeList.h"
#include "design/SourceText.h"
#include "output/Json.h"
#include "output/ResultWriter.h"

#include <netlistdb/analysis/ProbeReport.h>
#include <optional>
#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

class Design;

/// The clock that most bits of a net or bus that may be probed are sampled with; of equally many, the first.
std::optional<analysis::ClockId> samplingClockOf(const analysis::SignalReport &report);

/// Writes nets and buses with what there is to say about probing them.
class ProbeRows {
  public:
    /// @p hasDevice: with the nets of the post-map form.
    ProbeRows(Design &design, bool hasDevice, ResultWriter &writer)
        : m_design(design), m_hasDevice(hasDevice), m_writer(writer)
    {
    }

    static std::vector<Column> columns(bool hasDevice);
    void write(IVDBInstance &instance, const Probe &probe, const analysis::SignalReport &report);

  private:
    Design &m_design;
    bool m_hasDevice;
    ResultWriter &m_writer;
    std::vector<std::string> m_clocks;
    std::string m_directory = workingDirectory();
};

/// The groups as JSON, one object for each analyser core.
Json groupsOf(const analysis::ProbeGroups &groups, const analysis::ClockMap &clocks);
/// Writes them as a table of their own.
void writeGroups(const Json &groups, ResultWriter &writer);

} // namespace kvr::netlistdb::tool
