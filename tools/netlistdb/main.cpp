#include "app/CommandLine.h"
#include "base/Failure.h"
#include "base/StandardError.h"
#include "commands/Command.h"
#include "commands/Session.h"

#include <csignal>
#include <exception>
#include <fcntl.h>
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

int fail(int exitCode, const std::string &message)
{
    complain(message);
    return exitCode;
}

int runCommand(Request &request, Interrupt &interrupt)
{
    const std::vector<std::string> inputs = request.command->prepare(request.options);
    Session session(request.options, inputs, interrupt);
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
    // So is a limit on the size of files, which would else end the process on the spot.
    std::signal(SIGXFSZ, SIG_IGN);
    Interrupt interrupt;
    try {
        const auto request = parseCommandLine(argc, argv);
        return request->command ? runCommand(*request, interrupt) : request->exitCode;
    } catch (const Failure &failure) {
        return fail(failure.exitCode(), failure.what());
    } catch (const Interrupted &) {
        return fail(EXIT_BY_SIGNAL + interrupt.signal(), "interrupted");
    } catch (const OutputClosed &) {
        return EXIT_FOUND;
    } catch (const std::bad_alloc &) {
        return fail(EXIT_REFUSED, "not enough memory");
    } catch (const std::exception &fault) {
        return fail(EXIT_REFUSED, fault.what());
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
        return fail(EXIT_REFUSED, fault.what());
    }
}
