#pragma once

#include "Closed.h"
#include "Job.h"
#include "Store.h"
#include "design/Design.h"
#include "design/PathResolver.h"
#include "design/ProbePlanner.h"

#include <memory>
#include <netlistdb/analysis/CrossProbe.h>
#include <netlistdb/analysis/ProbeReport.h>
#include <set>
#include <string>
#include <vector>

namespace kvr::netlistdb::python {

/// What to load, and how.
struct LoadRequest {
    std::vector<std::string> files;
    std::string postMap; ///< of two forms, the other; empty: files are the only one
    std::optional<tool::Form> form;
    std::string top;
    std::vector<std::string> cells;
    std::string sourceRoot;
    tool::VerilogOptions verilog;
    std::uint64_t maxInstances;
};

/// One form of a design.
struct View {
    explicit View(tool::Design &theDesign) : design(theDesign), resolver(theDesign) {}
    tool::Design &design;
    tool::PathResolver resolver;
};

/// Something that walks the items of a design, and lets go of them when the design is closed.
class Walker {
  public:
    virtual ~Walker() = default;
    /// In a turn.
    virtual void letGo() = 0;
};

/// A design, one or both forms of it, until it is closed. Opened and closed with the interpreter lock, so that whoever
/// has it and has found the design open may look at its items.
class Loaded : public std::enable_shared_from_this<Loaded> {
  public:
    /// For Job::run.
    static std::shared_ptr<Loaded> load(const LoadRequest &request, Job &job);
    ~Loaded();
    Loaded(const Loaded &) = delete;
    Loaded &operator=(const Loaded &) = delete;

    bool isClosed() const { return m_content == nullptr; }
    /// Closes it; does nothing the second time.
    void close();
    /// @throws Closed
    View &view(bool isDevice) const;
    bool hasDevice() const;
    const std::vector<std::string> &notes() const { return m_notes; }

    // In a turn. Each is made at the first call, which takes long.
    /// @throws Closed
    const analysis::ClockMap &clocks(bool isDevice) const;
    /// @throws Closed, Failure without the post-map form
    const analysis::CrossProbe &probe() const;
    /// @throws Closed
    const analysis::ProbeReport &report() const;

    /// @throws Closed, Failure without the elaborated form
    tool::ProbePlanner &planner() const;

    // Whether they are there. In a turn.
    /// @throws Closed
    bool hasClocks(bool isDevice) const;
    /// @throws Closed
    bool hasProbe() const;
    /// @throws Closed
    bool hasReport() const;

    void add(Walker &walker) { m_walkers.insert(&walker); }
    void remove(Walker &walker) { m_walkers.erase(&walker); }

  private:
    struct Content;
    Loaded() = default;
    Content &content() const;

    std::unique_ptr<Content> m_content;
    std::vector<std::string> m_notes;
    std::set<Walker *> m_walkers;
};

} // namespace kvr::netlistdb::python
