#include "Progress.h"

#include <algorithm>

namespace kvr::netlistdb::yosys {

Progress::Progress(const ReadOptions &options, std::uint64_t total)
    : m_options(options), m_total(total), m_step(std::max<std::uint64_t>(total / 100, 1)), m_due(m_step)
{
    report(0);
}

void Progress::begin(std::uint64_t place)
{
    m_start = place;
    m_next = place + (m_due > m_before ? m_due - m_before : 0);
}

void Progress::finishPart(std::uint64_t end)
{
    m_before = std::min(m_before + end - m_start, m_total);
}

void Progress::finish()
{
    report(m_total);
}

void Progress::tell(std::uint64_t place)
{
    const std::uint64_t done = std::min(m_before + place - m_start, m_total);
    report(done);
    m_due = done + m_step;
    m_next = m_start + (m_due - m_before);
}

void Progress::report(std::uint64_t done)
{
    if (m_options.progress && !m_options.progress(done, m_total)) {
        throw ReadCancelled("reading was stopped");
    }
}

} // namespace kvr::netlistdb::yosys
