#include "base/Interrupt.h"

#include "base/Failure.h"
#include "base/StandardError.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <system_error>
#include <unistd.h>

namespace kvr::netlistdb::tool {

namespace {

int checked(int result, const char *what)
{
    if (result < 0) {
        throw std::system_error(errno, std::generic_category(), what);
    }
    return result;
}

} // namespace

Interrupt::Interrupt(Signals handled)
{
    if (handled == Signals::LeaveAlone) {
        return;
    }
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        // A blocked signal would arrive even where the caller, nohup for one, wants it ignored.
        struct sigaction before {};
        if (sigaction(number, nullptr, &before) == 0 && before.sa_handler != SIG_IGN) {
            sigaddset(&signals, number);
        }
    }
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    m_signals = checked(signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK), "signalfd");
    m_stop = checked(eventfd(0, EFD_CLOEXEC), "eventfd");
    m_watcher = std::thread([this] { watch(); });
}

Interrupt::~Interrupt()
{
    if (!m_watcher.joinable()) {
        return;
    }
    const std::uint64_t one = 1;
    while (write(m_stop, &one, sizeof one) < 0 && errno == EINTR) {
    }
    m_watcher.join();
    if (m_actor.joinable()) {
        m_actor.join();
    }
    close(m_stop);
    close(m_signals);
}

void Interrupt::check() const
{
    if (requested()) {
        throw Interrupted();
    }
}

void Interrupt::request()
{
    const std::lock_guard<std::mutex> guard(m_lock);
    if (requested()) {
        return;
    }
    m_signal = SIGINT;
    if (m_action) {
        m_action();
    }
}

void Interrupt::watch()
{
    std::array<pollfd, 2> sources{pollfd{m_signals, POLLIN, 0}, pollfd{m_stop, POLLIN, 0}};
    for (;;) {
        if (poll(sources.data(), sources.size(), -1) < 0) {
            continue; // EINTR
        }
        if (sources[1].revents != 0) {
            return;
        }
        signalfd_siginfo info;
        if (read(m_signals, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
            handle(static_cast<int>(info.ssi_signo));
        }
    }
}

void Interrupt::handle(int number)
{
    if (requested()) {
        leave(number, "");
    }
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        if (!m_action) {
            leave(number, "interrupted");
        }
        m_signal = number;
    }
    // The action may wait for a step of the main thread; a second signal must still be handled here.
    m_actor = std::thread([this] {
        const std::lock_guard<std::mutex> guard(m_lock);
        if (m_action) {
            m_action();
        }
    });
}

void Interrupt::leave(int number, const char *message)
{
    m_temporaries.removeForGood();
    if (*message != '\0') {
        sayLastWords(message);
    }
    _exit(EXIT_BY_SIGNAL + number);
}

Interrupt::Action::Action(Interrupt &interrupt, std::function<void()> action) : m_interrupt(interrupt)
{
    const std::lock_guard<std::mutex> guard(interrupt.m_lock);
    if (interrupt.requested()) {
        action();
    } else {
        interrupt.m_action = std::move(action);
    }
}

Interrupt::Action::~Action()
{
    const std::lock_guard<std::mutex> guard(m_interrupt.m_lock);
    m_interrupt.m_action = nullptr;
}

} // namespace kvr::netlistdb::tool
