#include "serve/MessageWriter.h"

#include "base/Failure.h"

#include <cerrno>
#include <cstring>
#include <string_view>
#include <unistd.h>

namespace kvr::netlistdb::tool {

void MessageWriter::write(std::string line)
{
    line += '\n';
    const std::lock_guard<std::mutex> guard(m_lock);
    for (std::string_view rest = line; !rest.empty();) {
        const ssize_t written = ::write(m_descriptor, rest.data(), rest.size());
        if (written >= 0) {
            rest.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EPIPE) {
            throw OutputClosed();
        } else if (errno != EINTR) {
            throw refused("standard output", std::strerror(errno));
        }
    }
}

} // namespace kvr::netlistdb::tool
