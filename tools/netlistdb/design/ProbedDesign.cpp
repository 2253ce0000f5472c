#include "design/ProbedDesign.h"

#include "base/Progress.h"
#include "base/Stats.h"

namespace kvr::netlistdb::tool {

ProbedDesign::ProbedDesign(const std::vector<std::string> &files, const std::string &postMap, const Reading &reading)
{
    if (postMap.empty()) {
        m_design = loadDesign(files, Clocks::Yes, reading);
        reading.stats.begin("trace");
        m_report = std::make_unique<const analysis::ProbeReport>(m_design->clocks());
        return;
    }
    DesignPair pair = loadDesignPair(files, postMap, reading);
    m_design = std::move(pair.elaborated);
    m_device = std::move(pair.postMap);
    reading.progress.begin("matching");
    reading.stats.begin("match");
    m_probe = std::make_unique<const analysis::CrossProbe>(m_design->database());
    reading.progress.clear();
    reading.stats.begin("trace");
    m_report = std::make_unique<const analysis::ProbeReport>(m_design->clocks(), m_device->clocks(), *m_probe);
}

} // namespace kvr::netlistdb::tool
