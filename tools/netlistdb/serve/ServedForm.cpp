#include "serve/ServedForm.h"

#include "serve/Call.h"

#include <utility>

namespace kvr::netlistdb::tool {

namespace {

void begin(Call *call, const char *what)
{
    if (call != nullptr) {
        call->begin(what);
    }
}

} // namespace

ServedForm::ServedForm(std::unique_ptr<Design> design, const std::string &rules, const Interrupt &interrupt)
    : m_design(std::move(design)), m_paths(*m_design, Asker::Tool), m_probes(*m_design),
      m_rules(rules.empty() ? CrossingRules() : CrossingRules(rules)), m_interrupt(interrupt)
{
}

const analysis::ClockMap &ServedForm::clocks(Call *call)
{
    if (!m_hasClocks) {
        begin(call, "following clocks");
        m_design->clocks();
        m_hasClocks = true;
    }
    return m_design->clocks();
}

const Census &ServedForm::census(Call *call)
{
    if (!m_census) {
        begin(call, "counting");
        m_census = takeCensus(*m_design, m_interrupt);
    }
    return *m_census;
}

const analysis::NetCounts &ServedForm::counts(Call *call)
{
    if (!m_counts) {
        const analysis::ClockMap &map = clocks(call);
        begin(call, "counting the nets of each clock");
        m_counts = map.countNets();
    }
    return *m_counts;
}

const CrossingRows &ServedForm::crossings(CrossingRows::Options options, Call *call)
{
    const analysis::ClockMap &map = clocks(call);
    if (m_crossings == nullptr) {
        begin(call, "finding crossings");
        m_crossings = std::make_unique<const analysis::Crossings>(map, m_rules.groups(map));
    }
    std::unique_ptr<const CrossingRows> &rows = m_crossingRows[(options.allClasses ? 2 : 0) + (options.bits ? 1 : 0)];
    if (rows == nullptr) {
        begin(call, "putting crossings together");
        rows = std::make_unique<const CrossingRows>(m_crossings->all(), map, m_rules, options);
    }
    return *rows;
}

} // namespace kvr::netlistdb::tool
