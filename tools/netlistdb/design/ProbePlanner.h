#pragma once

#include "design/Design.h"
#include "design/PathResolver.h"

#include <memory>
#include <netlistdb/analysis/ProbePlan.h>
#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

/// Makes the probes of a plan from a design, and finds those of a plan in it.
class ProbePlanner {
  public:
    /// Reads the elaborated netlist @p designs[0], and the post-map netlist behind it when there is one.
    /// @throws Failure, Interrupted
    ProbePlanner(const std::vector<std::string> &designs, const Reading &reading);
    /// For a design that is loaded; @p probe, when it is not null, tells of the device. Both must outlive the planner.
    ProbePlanner(Design &elaborated, const analysis::CrossProbe *probe);
    ~ProbePlanner();
    ProbePlanner(const ProbePlanner &) = delete;
    ProbePlanner &operator=(const ProbePlanner &) = delete;

    Design &design() { return m_elaborated; }
    /// The number of bits that @p path names; 0: none.
    std::size_t widthOf(const std::string &path) { return m_resolver.find(path).size(); }
    /// Refuses a path that names neither net nor bus.
    /// @throws Failure with the nearest names.
    void check(const std::string &path) { m_resolver.nets(path); }

    /// Gets to know what is on the device, and how nets are made. Takes most of the time; what follows needs it.
    void match(const Reading &reading);
    /// The same for a design that was loaded before.
    void match();
    /// The net or bus that @p path names, as a plan holds it.
    /// @throws Failure when there is none.
    analysis::PlanProbe probeOf(const std::string &path);
    /// What became of @p before.
    analysis::RebuiltProbe rebuilt(const analysis::PlanProbe &before);

  private:
    using Wires = std::vector<analysis::NetFingerprints::Wire>;

    void fill(analysis::PlanBit &bit, IVDBInstance *instance, IVDBNet *net, const std::string &wantedDevice) const;
    void addClocks(const IVDBInstance *instance, const IVDBNet *net, std::vector<analysis::PlanClock> &clocks);
    PathResolver::Bit search(const analysis::PlanBit &before, std::string &why);
    bool isOnDevice(const analysis::NetFingerprints::Wire &wire, const std::string &device) const;

    DesignPair m_designs;
    Design &m_elaborated;
    PathResolver m_resolver;
    std::unique_ptr<const analysis::CrossProbe> m_ownProbe;
    const analysis::CrossProbe *m_probe = nullptr; ///< null without a post-map netlist
    std::unique_ptr<const analysis::NetFingerprints> m_fingerprints;
};

} // namespace kvr::netlistdb::tool
