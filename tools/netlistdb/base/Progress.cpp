#include "base/Progress.h"

#include "base/StandardError.h"

#include <fmt/format.h>
#include <unistd.h>

namespace kvr::netlistdb::tool {

namespace {

constexpr auto PAUSE = std::chrono::milliseconds(100);

} // namespace

Progress::Progress(When when) : m_enabled(when != When::Never && isatty(STDERR_FILENO) != 0 && !isDumbTerminal()) {}

Progress::~Progress()
{
    clear();
}

void Progress::begin(const std::string &what)
{
    if (m_sink) {
        m_what = what;
        m_sink(m_what, 0, 0);
    }
    if (m_enabled) {
        m_what = printable(what);
        show(m_what);
    }
}

void Progress::update(std::uint64_t done, std::uint64_t total)
{
    if (m_sink) {
        m_sink(m_what, done, total);
    }
    if (m_enabled && total != 0 && std::chrono::steady_clock::now() - m_last >= PAUSE) {
        const double share = static_cast<double>(done) / static_cast<double>(total);
        show(fmt::format("{} {:3.0f} %", m_what, 100 * share));
    }
}

void Progress::clear()
{
    if (m_shown) {
        say("\r\x1b[K");
        m_shown = false;
    }
}

void Progress::show(const std::string &line)
{
    say("\r" + line + "\x1b[K");
    m_shown = true;
    m_last = std::chrono::steady_clock::now();
}

} // namespace kvr::netlistdb::tool
