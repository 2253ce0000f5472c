#include "design/ClockFilter.h"

#include "base/Failure.h"
#include "design/CrossingWords.h"
#include "design/NearestNames.h"

#include <fmt/format.h>

namespace kvr::netlistdb::tool {

ClockFilter::ClockFilter(const analysis::ClockMap &clocks, const std::string &text)
    : m_has(clocks.clocks().size(), text.empty()), m_hasNone(text.empty() || text == "(none)")
{
    if (m_hasNone) {
        return;
    }
    const NamePattern pattern(NamePattern::Kind::Glob, text, false);
    NearestNames nearest(text);
    bool isKnown = false;
    for (std::size_t clock = 0; clock < m_has.size(); ++clock) {
        m_has[clock] = isClockCalled(clocks.clocks()[clock], pattern);
        isKnown = isKnown || m_has[clock];
        nearest.offer(clocks.clocks()[clock].name);
    }
    if (!isKnown) {
        throw wrongUsage(fmt::format("no clock '{}'{}", text, didYouMean(nearest.best())));
    }
}

} // namespace kvr::netlistdb::tool
