#include "output/OutputStream.h"

#include "base/Failure.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace kvr::netlistdb::tool {

namespace {

constexpr std::size_t BUFFER_SIZE = std::size_t{64} * 1024;
constexpr auto PATIENCE = std::chrono::milliseconds(50);

/// The file that @p path leads to, so that a link stays a link when its target is replaced.
std::string followLinks(const std::string &path)
{
    const std::unique_ptr<char, void (*)(void *)> real(realpath(path.c_str(), nullptr), std::free);
    return real ? real.get() : path;
}

mode_t creationMode()
{
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

} // namespace

OutputStream::OutputStream(const std::string &path) : m_descriptor(STDOUT_FILENO)
{
    if (path.empty() || path == "-") {
        return;
    }
    struct stat status {};
    const bool exists = stat(path.c_str(), &status) == 0;
    m_path = path;
    if (exists && !S_ISREG(status.st_mode)) {
        m_descriptor = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    } else if (exists && access(path.c_str(), W_OK) != 0) {
        m_descriptor = -1;
    } else {
        m_path = exists ? followLinks(path) : path;
        m_temporary = m_path + ".XXXXXX";
        m_descriptor = mkostemp(m_temporary.data(), O_CLOEXEC);
        if (m_descriptor < 0) {
            m_temporary.clear();
        } else {
            fchmod(m_descriptor, exists ? status.st_mode & 07777 : creationMode());
        }
    }
    if (m_descriptor < 0) {
        throw refused(path, std::strerror(errno));
    }
}

OutputStream::~OutputStream()
{
    if (m_descriptor != STDOUT_FILENO && m_descriptor >= 0) {
        ::close(m_descriptor);
    }
    if (!m_temporary.empty()) {
        unlink(m_temporary.c_str());
    }
}

void OutputStream::write(std::string_view text)
{
    m_buffer += text;
    if (m_buffer.size() >= BUFFER_SIZE) {
        flush();
    }
}

bool OutputStream::isTerminal() const
{
    return isatty(m_descriptor) != 0;
}

void OutputStream::tick()
{
    if (!m_buffer.empty() && std::chrono::steady_clock::now() - m_flushed >= PATIENCE) {
        flush();
    }
}

void OutputStream::flush()
{
    std::string_view rest = m_buffer;
    while (!rest.empty()) {
        const ssize_t written = ::write(m_descriptor, rest.data(), rest.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written < 0) {
            fail();
        }
        rest.remove_prefix(static_cast<std::size_t>(written));
    }
    m_buffer.clear();
    m_flushed = std::chrono::steady_clock::now();
}

void OutputStream::close()
{
    if (m_descriptor < 0) {
        return;
    }
    flush();
    if (isStandardOutput()) {
        return;
    }
    const int descriptor = m_descriptor;
    m_descriptor = -1;
    if (::close(descriptor) != 0) {
        fail();
    }
    if (!m_temporary.empty()) {
        if (rename(m_temporary.c_str(), m_path.c_str()) != 0) {
            fail();
        }
        m_temporary.clear();
    }
}

void OutputStream::fail() const
{
    const int error = errno;
    if (isStandardOutput() && error == EPIPE) {
        throw OutputClosed();
    }
    throw refused(isStandardOutput() ? "standard output" : m_path, std::strerror(error));
}

} // namespace kvr::netlistdb::tool
