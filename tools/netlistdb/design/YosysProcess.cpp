#include "design/YosysProcess.h"

#include "base/Failure.h"
#include "base/Interrupt.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

namespace kvr::netlistdb::tool {

namespace {

/// The place of a module name in a yosys script is free text: nothing that yosys would take for syntax may go there.
bool isSafeInScript(const std::string &name)
{
    return name.find_first_of(" \t\r\n\";#") == std::string::npos;
}

std::vector<std::string> commandLine(const std::vector<std::string> &sources, const std::string &top,
                                     const std::string &json)
{
    const std::string choice = top.empty() ? "-auto-top" : "-top " + top;
    std::vector<std::string> words = {
        "yosys", "-q",   "-f", "verilog -sv", "-p", "hierarchy -check " + choice + "; proc; opt_clean",
        "-b",    "json", "-o", json};
    for (const std::string &source : sources) {
        // A leading dash would make the file an option.
        words.push_back(source.front() == '-' ? "./" + source : source);
    }
    return words;
}

/// Starts @p words with standard output thrown away and standard error going to @p errors. Answers 0 or an error.
int start(pid_t &child, const std::vector<std::string> &words, int errors)
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
    posix_spawn_file_actions_adddup2(&actions, errors, STDERR_FILENO);

    // This process blocks and ignores signals that the child must heed.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes, &signals);
    sigaddset(&signals, SIGPIPE);
    sigaddset(&signals, SIGINT);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

    const int error = posix_spawnp(&child, "yosys", &actions, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

std::string readAll(int descriptor)
{
    std::string text;
    std::array<char, 4096> buffer{};
    for (;;) {
        const ssize_t count = read(descriptor, buffer.data(), buffer.size());
        if (count > 0) {
            text.append(buffer.data(), static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            return text;
        }
    }
}

/// The line of @p log that says why yosys stopped.
std::string faultIn(std::string_view log)
{
    std::string_view fault;
    while (!log.empty()) {
        const std::size_t end = std::min(log.find('\n'), log.size());
        const std::string_view line = log.substr(0, end);
        log.remove_prefix(std::min(end + 1, log.size()));
        if (line.find("ERROR: ") != std::string_view::npos) {
            return std::string(line);
        }
        if (!line.empty()) {
            fault = line;
        }
    }
    return std::string(fault);
}

} // namespace

void elaborateWithYosys(const std::vector<std::string> &sources, const std::string &top, const std::string &json,
                        Interrupt &interrupt)
{
    if (!isSafeInScript(top)) {
        throw wrongUsage("--top: '" + top + "' is no module name that yosys takes");
    }
    std::array<int, 2> errors{};
    if (pipe2(errors.data(), O_CLOEXEC) != 0) {
        throw refused(sources.front(), std::string("cannot start yosys: ") + std::strerror(errno));
    }
    pid_t child = 0;
    const int error = start(child, commandLine(sources, top, json), errors[1]);
    close(errors[1]);
    if (error != 0) {
        close(errors[0]);
        throw refused(sources.front(), error == ENOENT
                                           ? "Verilog is read with yosys, which is not installed (Debian package yosys)"
                                           : std::string("cannot start yosys: ") + std::strerror(error));
    }
    std::string log;
    int status = 0;
    {
        const Interrupt::Action stopChild(interrupt, [child] { kill(child, SIGTERM); });
        log = readAll(errors[0]);
        close(errors[0]);
        siginfo_t info;
        // Leaves the child's number taken until nobody can signal it any more.
        while (waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT) < 0 && errno == EINTR) {
        }
    }
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    interrupt.check();
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        const std::string fault = faultIn(log);
        throw refused(sources.front(), "yosys: " + (fault.empty() ? "stopped without saying why" : fault));
    }
}

} // namespace kvr::netlistdb::tool
