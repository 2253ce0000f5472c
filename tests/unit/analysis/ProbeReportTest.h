#pragma once

#include "tests/unit/analysis/MapTest.h"

#include <netlistdb/analysis/ProbeReport.h>

#include <memory>
#include <string>

namespace analysis_test {

using kvr::netlistdb::analysis::ProbeReport;
using kvr::netlistdb::analysis::SignalReport;

/// Cells that the netlists of these tests are made of.
extern const std::string PROBE_CELLS;

/// `warning: several-clocks`, `no: constant! unused`, `partly: undriven![0,3]`: the verdict, and the reasons; those
/// that bar with a "!", and where they do not hold for all bits, the places of those for which they do.
std::string textOf(const SignalReport &report);
/// The findings one a line: `reason | evidence | instead`.
std::string detailsOf(const SignalReport &report);

/// Reports about one netlist, or both forms.
class ProbeReportTest : public MapTest {
  protected:
    void loadElaborated(const std::string &netlist);
    void loadPostMap(const std::string &netlist);
    void loadBoth(const std::string &rtl, const std::string &mapped);

    /// About a net or bus of the instance at @p path.
    SignalReport reportOf(const std::string &name, const std::string &path = "") const;
    std::string report(const std::string &name, const std::string &path = "") const
    {
        return textOf(reportOf(name, path));
    }
    std::string details(const std::string &name, const std::string &path = "") const
    {
        return detailsOf(reportOf(name, path));
    }

    std::unique_ptr<ClockMap> deviceMap;
    std::unique_ptr<kvr::netlistdb::analysis::CrossProbe> probe;
    std::unique_ptr<ProbeReport> reports;
};

} // namespace analysis_test
