#include "design/YosysProcess.h"

#include "base/Failure.h"
#include "base/Interrupt.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
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

    const int error = posix_spawnp(&child, words.front().c_str(), &actions, &attributes, arguments.data(), environ);
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

/// What a program that has ended says.
struct Ended {
    int startError = 0; ///< why it could not be started; 0 when it could
    bool succeeded = false;
    std::string fault;
};

/// Runs @p words to the end.
/// @throws Failure when there are no pipes left; Interrupted.
Ended run(const std::vector<std::string> &words, const std::string &blamed, Interrupt &interrupt)
{
    std::array<int, 2> errors{};
    if (pipe2(errors.data(), O_CLOEXEC) != 0) {
        throw refused(blamed, "cannot start " + words.front() + ": " + std::strerror(errno));
    }
    pid_t child = 0;
    Ended ended;
    ended.startError = start(child, words, errors[1]);
    close(errors[1]);
    if (ended.startError != 0) {
        close(errors[0]);
        return ended;
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
    ended.succeeded = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    ended.fault = faultIn(log);
    return ended;
}

/// The script that makes tables of cells from models: beside the program in a build, under share/ when installed.
std::string derivingScript()
{
    std::error_code ignored;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path();
    for (const char *place : {"families/derive.py", "../share/netlistdb/families/derive.py"}) {
        const std::filesystem::path script = program / place;
        if (std::filesystem::exists(script, ignored)) {
            return script.string();
        }
    }
    return {};
}

} // namespace

void elaborateWithYosys(const std::vector<std::string> &sources, const std::string &top, const std::string &json,
                        Interrupt &interrupt)
{
    if (!isSafeInScript(top)) {
        throw wrongUsage("--top: '" + top + "' is no module name that yosys takes");
    }
    const Ended ended = run(commandLine(sources, top, json), sources.front(), interrupt);
    if (ended.startError != 0) {
        throw refused(sources.front(), ended.startError == ENOENT
                                           ? "Verilog is read with yosys, which is not installed (Debian package yosys)"
                                           : std::string("cannot start yosys: ") + std::strerror(ended.startError));
    }
    if (!ended.succeeded) {
        throw refused(sources.front(), "yosys: " + (ended.fault.empty() ? "stopped without saying why" : ended.fault));
    }
}

void deriveCellTable(const std::string &models, const std::string &table, Interrupt &interrupt)
{
    const std::string script = derivingScript();
    if (script.empty()) {
        throw refused(models, "cell models need families/derive.py, which is not installed beside the program");
    }
    const std::string file = models.front() == '-' ? "./" + models : models;
    const Ended ended = run({"python3", "-B", script, "--models", table, file}, models, interrupt);
    if (ended.startError != 0) {
        throw refused(models, ended.startError == ENOENT
                                  ? "cell models are read with python3, which is not installed (Debian package python3)"
                                  : std::string("cannot start python3: ") + std::strerror(ended.startError));
    }
    if (!ended.succeeded) {
        throw refused(models, ended.fault.empty() ? "its cells cannot be derived" : ended.fault);
    }
}

} // namespace kvr::netlistdb::tool
