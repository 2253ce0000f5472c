#pragma once

#include "design/Design.h"

#include <memory>
#include <netlistdb/analysis/ProbeReport.h>
#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

/// A design whose nets are to be probed: one form of it, or the elaborated form with the device that became of it.
class ProbedDesign {
  public:
    /// @p postMap is empty when there is one form.
    /// @throws Failure, Interrupted
    ProbedDesign(const std::vector<std::string> &files, const std::string &postMap, const Reading &reading);

    /// The form whose nets are asked for.
    Design &design() { return *m_design; }
    /// The post-map form; null when it was not given.
    const Design *device() const { return m_device.get(); }
    const analysis::ProbeReport &report() const { return *m_report; }

  private:
    std::unique_ptr<Design> m_design;
    std::unique_ptr<Design> m_device;
    std::unique_ptr<const analysis::CrossProbe> m_probe;
    std::unique_ptr<const analysis::ProbeReport> m_report;
};

} // namespace kvr::netlistdb::tool
