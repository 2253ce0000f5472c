#include "Progress.h"

#include <algorithm>

namespace kvr::netlistdb::yosys {

Progress::Progress(const ReadOptions &options, std::uint64_t textSize, std::uint64_t fileSize)
    : m_options(options), m_total(textSize), m_fileSize(fileSize), m_step(std::max<std::uint64_t>(textSize / 100, 1)),
      m_due(m_step)
{
    report(0);
}

void Progress::begin(const char *place)
{
    m_start = place;
    m_next = place + (m_due > m_before ? m_due - m_before : 0);
}

void Progress::end(const char *place)
{
    m_before = std::min(m_before + static_cast<std::uint64_t>(place - m_start), m_total);
}

void Progress::finish()
{
    report(m_total);
}

void Progress::tell(const char *place)
{
    const std::uint64_t done = std::min(m_before + static_cast<std::uint64_t>(place - m_start), m_total);
    report(done);
    m_due = done + m_step;
    m_next = m_start + (m_due - m_before);
}

void Progress::report(std::uint64_t done)
{
    const std::uint64_t inFile = m_total != 0 ? done * m_fileSize / m_total : m_fileSize;
    if (m_options.progress && !m_options.progress(inFile, m_fileSize)) {
        throw ReadCancelled("reading was stopped");
    }
}

} // namespace kvr::netlistdb::yosys
