#include "output/OutputStream.h"

#include "base/Failure.h"
#include "base/TemporaryPaths.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kvr::netlistdb::tool {

namespace {

constexpr std::size_t BUFFER_SIZE = std::size_t{64} * 1024;
constexpr auto PATIENCE = std::chrono::milliseconds(50);

mode_t creationMode()
{
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

} // namespace

OutputStream::OutputStream(const std::string &name, const std::vector<std::string> &inputs, TemporaryPaths &temporaries)
    : m_name(name), m_temporaries(temporaries), m_target(findTarget(name, inputs))
{
    switch (m_target.kind) {
    case OutputTarget::Kind::Stream:
        m_descriptor = m_target.descriptor;
        break;
    case OutputTarget::Kind::Place:
        m_descriptor = open(m_target.path.c_str(), O_WRONLY | O_CLOEXEC);
        break;
    case OutputTarget::Kind::File:
        m_descriptor = m_temporaries.makeFile(m_target.directory(), m_temporary);
        break;
    }
    if (m_descriptor < 0) {
        m_temporary.clear();
        throw refused(name, std::strerror(errno));
    }
}

OutputStream::~OutputStream()
{
    if (m_target.kind != OutputTarget::Kind::Stream && m_descriptor >= 0) {
        ::close(m_descriptor);
    }
    if (!m_temporary.empty()) {
        m_temporaries.remove(m_temporary);
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
    if (m_target.kind == OutputTarget::Kind::Stream) {
        return;
    }
    if (!m_temporary.empty()) {
        keepModeAndOwner();
    }
    const int descriptor = m_descriptor;
    m_descriptor = -1;
    if (::close(descriptor) != 0) {
        fail();
    }
    if (!m_temporary.empty()) {
        if (!m_temporaries.moveTo(m_temporary, m_target.path)) {
            fail();
        }
        m_temporary.clear();
    }
}

void OutputStream::takeFile(const std::string &file)
{
    if (!m_temporary.empty() && m_temporaries.moveTo(file, m_temporary)) {
        // The empty file that was open has lost its name.
        ::close(m_descriptor);
        m_descriptor = ::open(m_temporary.c_str(), O_RDONLY | O_CLOEXEC);
        if (m_descriptor < 0) {
            fail();
        }
        return;
    }
    copy(file);
}

void OutputStream::copy(const std::string &file)
{
    const int source = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (source < 0) {
        fail();
    }
    std::string part(BUFFER_SIZE, '\0');
    ssize_t count = 0;
    while ((count = read(source, part.data(), part.size())) > 0) {
        write({part.data(), static_cast<std::size_t>(count)});
    }
    const int error = errno;
    ::close(source);
    if (count < 0) {
        errno = error;
        fail();
    }
}

/// A new file is as readable as any. The owner is given up before the mode, which may hold what only owners may set.
void OutputStream::keepModeAndOwner() const
{
    const bool keeps = m_target.exists && fchown(m_descriptor, m_target.status.st_uid, m_target.status.st_gid) == 0;
    const mode_t mode = m_target.exists ? m_target.status.st_mode & (keeps ? 07777 : 0777) : creationMode();
    if (fchmod(m_descriptor, mode) != 0) {
        fail();
    }
}

void OutputStream::fail() const
{
    const int error = errno;
    if (isStandardOutput() && error == EPIPE) {
        throw OutputClosed();
    }
    throw refused(isStandardOutput() ? "standard output" : m_name, std::strerror(error));
}

} // namespace kvr::netlistdb::tool
