#pragma once

#include "design/Form.h"
#include "design/Reading.h"
#include "serve/ServedForm.h"

#include <functional>
#include <memory>
#include <netlistdb/analysis/CrossProbe.h>
#include <netlistdb/analysis/ProbeReport.h>
#include <optional>
#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

/// Where a design that is served comes from.
struct ServedSource {
    std::string name;
    std::vector<std::string> files;
    std::string postMap; ///< file of the post-map form; empty when @ref files are one form or the other
    std::string rules;   ///< file of clock groups and waivers; empty for none
};

/// A design that is served under a name: one form of it, or both.
class ServedDesign {
  public:
    explicit ServedDesign(ServedSource source) : m_source(std::move(source)) {}

    const ServedSource &source() const { return m_source; }
    bool hasBothForms() const { return !m_source.postMap.empty(); }
    /// Reads and imports the design, and makes what most questions rest on.
    /// @throws Failure, Interrupted
    void load(const Reading &reading);
    // What follows is for a design that was loaded.

    /// Steps that take a second at most, even for a design of a million leaves. Each makes something that further
    /// questions rest on.
    std::vector<std::function<void()>> preparations() const;

    /// The form called @p name; empty for the form that there is, and of two the elaborated one.
    /// @throws Failure when the design has no such form.
    ServedForm &form(const std::string &name);
    /// The form whose nets are probed.
    ServedForm &probed() { return *m_first; }
    /// What is in the other form.
    /// @throws Failure when there is one form only.
    const analysis::CrossProbe &match(Call *call);
    const analysis::ProbeReport &report(Call *call);

  private:
    std::vector<ServedForm *> forms() const;

    ServedSource m_source;
    std::unique_ptr<ServedForm> m_first; ///< the elaborated form when there are two
    std::unique_ptr<ServedForm> m_postMap;
    std::unique_ptr<const analysis::CrossProbe> m_match;
    std::unique_ptr<const analysis::ProbeReport> m_report;
};

} // namespace kvr::netlistdb::tool
