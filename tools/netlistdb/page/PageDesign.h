#pragma once

#include "design/ProbeList.h"
#include "design/ProbedDesign.h"
#include "output/Json.h"

#include <analysis/ClockMapState.h>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace kvr::netlistdb::tool {

/// A design as the parts of a page see it: its modules by number, an item for each, and the source files by number.
class PageDesign {
  public:
    /// @p probed must outlive the object.
    explicit PageDesign(ProbedDesign &probed);

    ProbedDesign &probed() { return m_probed; }
    Design &design() { return m_probed.design(); }
    const analysis::ClockMap &clocks() { return design().clocks(); }
    const analysis::DesignModel &model() { return clocks().state().design; }
    /// The modules with contents, each behind those that it instantiates.
    const std::vector<analysis::ModuleGraph> &modules() { return model().hierarchy.modules; }
    /// An instance of module @p module; null when the tree does not reach down to one.
    IVDBInstance *instanceOf(std::uint32_t module) const { return m_instances[module]; }
    /// Nets and buses of module @p module, as users know them.
    const std::vector<Probe> &probesOf(std::uint32_t module) const { return m_probes[module]; }
    /// The instance that part @p sub of @p instance, of module @p module, is; null when the tree has none.
    IVDBInstance *below(IVDBInstance &instance, std::uint32_t module, std::uint32_t sub);

    /// Number of a source file; NO_FILE for an empty name.
    std::int64_t fileNumber(const std::string &file);
    static constexpr std::int64_t NO_FILE = -1;
    /// The names of the files, those in the working directory from there.
    const std::vector<std::string> &files() const { return m_files; }

  private:
    ProbedDesign &m_probed;
    std::vector<IVDBInstance *> m_instances;  ///< by module
    std::vector<std::vector<Probe>> m_probes; ///< by module
    std::vector<std::string> m_files;
    std::unordered_map<std::string, std::int64_t> m_fileNumbers;
    std::string m_directory;
};

/// What a net is electrically, as a number: 0 when it is no clock of the module or below and no port, otherwise one
/// more than the sum of 1 for a port, 2 for an inverted one, and 4 times the number of the clock or port.
std::uint64_t pageCode(analysis::ElectricalCode code);

} // namespace kvr::netlistdb::tool
