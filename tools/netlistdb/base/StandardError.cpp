#include "base/StandardError.h"

#include "base/Terminal.h"

#include <cerrno>
#include <chrono>
#include <mutex>
#include <poll.h>
#include <unistd.h>

namespace kvr::netlistdb::tool {

namespace {

constexpr auto PATIENCE = std::chrono::milliseconds(100);

std::timed_mutex &lock()
{
    static std::timed_mutex mutex;
    return mutex;
}

void writeAll(std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = write(STDERR_FILENO, text.data(), text.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return;
        }
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

std::string lineOf(const std::string &message)
{
    const bool color = useColor(When::Auto, STDERR_FILENO);
    return (color ? "\x1b[1;31mnetlistdb:\x1b[0m " : "netlistdb: ") + printable(message) + "\n";
}

} // namespace

void say(std::string_view text)
{
    const std::lock_guard<std::timed_mutex> guard(lock());
    writeAll(text);
}

void complain(const std::string &message)
{
    say(lineOf(message));
}

void sayLastWords(const std::string &message)
{
    pollfd room{STDERR_FILENO, POLLOUT, 0};
    if (!lock().try_lock_for(PATIENCE) || poll(&room, 1, static_cast<int>(PATIENCE.count())) != 1) {
        return;
    }
    const bool rewrites = isatty(STDERR_FILENO) != 0 && !isDumbTerminal();
    writeAll((rewrites ? "\r\x1b[K" : "") + lineOf(message));
}

} // namespace kvr::netlistdb::tool
