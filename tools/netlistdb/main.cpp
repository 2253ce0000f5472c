#include "app/CommandLine.h"
#include "base/Failure.h"
#include "commands/Command.h"
#include "commands/Session.h"

#include <csignal>
#include <cstdio>
#include <exception>
#include <fcntl.h>
#include <fmt/format.h>
#include <new>
#include <unistd.h>

namespace kvr::netlistdb::tool {

namespace {

/// A file must not get the number of a standard stream that the caller has closed: what is written to the stream would
/// end up in it.
void openStandardStreams()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) < 0) {
            static_cast<void>(open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY));
        }
    }
}

int complain(int exitCode, const std::string &message)
{
    const bool color = useColor(When::Auto, STDERR_FILENO);
    fmt::print(stderr, "{}netlistdb:{} {}\n", color ? "\x1b[1;31m" : "", color ? "\x1b[0m" : "", printable(message));
    return exitCode;
}

int runCommand(const Request &request, Interrupt &interrupt)
{
    Session session(request.options, interrupt);
    const int exitCode = request.command->run(session);
    if (request.options.stats) {
        session.stats.end();
        session.progress.clear();
        session.stats.print();
    }
    return exitCode;
}

int run(int argc, const char *const *argv)
{
    // A reader that goes away is noticed where the output is written.
    std::signal(SIGPIPE, SIG_IGN);
    Interrupt interrupt;
    try {
        const auto request = parseCommandLine(argc, argv);
        return request->command ? runCommand(*request, interrupt) : request->exitCode;
    } catch (const Failure &failure) {
        return complain(failure.exitCode(), failure.what());
    } catch (const Interrupted &) {
        return complain(EXIT_BY_SIGNAL + interrupt.signal(), "interrupted");
    } catch (const OutputClosed &) {
        return EXIT_FOUND;
    } catch (const std::bad_alloc &) {
        return complain(EXIT_REFUSED, "not enough memory");
    } catch (const std::exception &fault) {
        return complain(EXIT_REFUSED, fault.what());
    }
}

} // namespace

} // namespace kvr::netlistdb::tool

int main(int argc, char **argv)
{
    using namespace kvr::netlistdb::tool;
    openStandardStreams();
    try {
        return run(argc, argv);
    } catch (const std::exception &fault) {
        return complain(EXIT_REFUSED, fault.what());
    }
}
