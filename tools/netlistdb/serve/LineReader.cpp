#include "serve/LineReader.h"

#include "base/Failure.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <poll.h>
#include <unistd.h>

namespace kvr::netlistdb::tool {

namespace {

constexpr std::size_t BLOCK = std::size_t(64) * 1024;

} // namespace

LineReader::Kind LineReader::next(std::string &line)
{
    std::size_t searched = m_begin;
    bool isTooLong = false;
    for (;;) {
        const std::size_t end = m_buffer.find('\n', searched);
        if (end != std::string::npos || (m_isAtEnd && (isTooLong || m_begin < m_buffer.size()))) {
            const std::size_t stop = end != std::string::npos ? end : m_buffer.size();
            isTooLong = isTooLong || stop - m_begin > m_longest;
            if (!isTooLong) {
                line.assign(m_buffer, m_begin, stop - m_begin);
                if (!line.empty() && line.back() == '\r') {
                    line.pop_back();
                }
            }
            m_begin = end != std::string::npos ? end + 1 : stop;
            return isTooLong ? Kind::TooLong : Kind::Line;
        }
        if (m_isAtEnd) {
            return Kind::End;
        }
        m_buffer.erase(0, m_begin);
        m_begin = 0;
        if (m_buffer.size() > m_longest) {
            isTooLong = true;
            m_buffer.clear();
        }
        searched = m_buffer.size();
        if (!wait()) {
            return Kind::Stopped;
        }
        m_isAtEnd = !fill();
    }
}

/// Returns false when it is time to stop.
bool LineReader::wait() const
{
    std::array<pollfd, 2> sources{pollfd{m_descriptor, POLLIN, 0}, pollfd{m_stop, POLLIN, 0}};
    while (poll(sources.data(), sources.size(), -1) < 0) {
        if (errno != EINTR) {
            throw refused("standard input", std::strerror(errno));
        }
    }
    return (sources[1].revents & POLLIN) == 0;
}

/// Reads what is there; false at the end.
bool LineReader::fill()
{
    const std::size_t before = m_buffer.size();
    m_buffer.resize(before + BLOCK);
    for (;;) {
        const ssize_t got = read(m_descriptor, m_buffer.data() + before, BLOCK);
        if (got >= 0) {
            m_buffer.resize(before + static_cast<std::size_t>(got));
            return got > 0;
        }
        if (errno != EINTR) {
            throw refused("standard input", std::strerror(errno));
        }
    }
}

} // namespace kvr::netlistdb::tool
