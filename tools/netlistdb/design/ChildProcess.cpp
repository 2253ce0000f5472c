#include "design/ChildProcess.h"

#include "base/Interrupt.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace kvr::netlistdb::tool {

namespace {

/// Above all descriptors that a child gets, so that none of its pipes is closed by putting another in place.
constexpr int FIRST_FREE = 64;

/// A pipe from the child to this process.
class Pipe {
  public:
    Pipe()
    {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) {
            throw std::system_error(errno, std::generic_category(), "pipe");
        }
        m_read = ends[0];
        m_write = fcntl(ends[1], F_DUPFD_CLOEXEC, FIRST_FREE);
        close(ends[1]);
    }
    ~Pipe()
    {
        closeWrite();
        close(m_read);
    }
    Pipe(const Pipe &) = delete;
    Pipe &operator=(const Pipe &) = delete;

    int readEnd() const { return m_read; }
    int writeEnd() const { return m_write; }
    void closeWrite()
    {
        if (m_write >= 0) {
            close(m_write);
            m_write = -1;
        }
    }

  private:
    int m_read = -1;
    int m_write = -1;
};

int start(pid_t &child, const std::vector<std::string> &words, const std::vector<Pipe> &pipes)
{
    std::vector<char *> arguments;
    arguments.reserve(words.size() + 1);
    for (const std::string &word : words) {
        arguments.push_back(const_cast<char *>(word.c_str()));
    }
    arguments.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    for (std::size_t at = 0; at < pipes.size(); ++at) {
        posix_spawn_file_actions_adddup2(&actions, pipes[at].writeEnd(), STDERR_FILENO + static_cast<int>(at));
    }

    // This process blocks and ignores signals that the child must handle. In a group of its own the child can be ended
    // with all that it starts.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes, &signals);
    for (const int number : {SIGPIPE, SIGINT, SIGTERM, SIGXFSZ}) {
        sigaddset(&signals, number);
    }
    posix_spawnattr_setsigdefault(&attributes, &signals);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);

    const int error = posix_spawnp(&child, words.front().c_str(), &actions, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

/// Reads all pipes to their ends, each as fast as it fills.
void readAll(const std::vector<Pipe> &pipes, std::vector<std::string> &texts)
{
    std::vector<pollfd> sources;
    sources.reserve(pipes.size());
    for (const Pipe &pipe : pipes) {
        sources.push_back({pipe.readEnd(), POLLIN, 0});
    }
    std::string part(std::size_t{1} << 16, '\0');
    for (std::size_t open = pipes.size(); open > 0;) {
        if (poll(sources.data(), sources.size(), -1) < 0) {
            continue; // EINTR
        }
        for (std::size_t at = 0; at < sources.size(); ++at) {
            if (sources[at].fd < 0 || sources[at].revents == 0) {
                continue;
            }
            const ssize_t count = read(sources[at].fd, part.data(), part.size());
            if (count > 0) {
                texts[at].append(part, 0, static_cast<std::size_t>(count));
            } else if (count == 0 || errno != EINTR) {
                sources[at].fd = -1; // poll() passes over it
                --open;
            }
        }
    }
}

} // namespace

ChildResult runChild(const std::vector<std::string> &words, std::size_t more, Interrupt &interrupt)
{
    ChildResult result;
    std::vector<Pipe> pipes(1 + more);
    result.outputs.resize(pipes.size());
    pid_t child = 0;
    {
        // Stands before the child does: what comes while it is started must end it, too.
        std::atomic<pid_t> group{0};
        const auto end = [&group] {
            if (group != 0) {
                kill(-group, SIGKILL);
            }
        };
        const Interrupt::Action endChild(interrupt, end);
        result.startError = start(child, words, pipes);
        if (result.startError != 0) {
            return result;
        }
        group = child;
        if (interrupt.requested()) {
            end();
        }
        for (Pipe &pipe : pipes) {
            pipe.closeWrite();
        }
        readAll(pipes, result.outputs);
        siginfo_t info;
        // Leaves the child's number taken until nobody can signal it any more.
        while (waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT) < 0 && errno == EINTR) {
        }
    }
    while (waitpid(child, &result.status, 0) < 0 && errno == EINTR) {
    }
    interrupt.check();
    return result;
}

} // namespace kvr::netlistdb::tool
