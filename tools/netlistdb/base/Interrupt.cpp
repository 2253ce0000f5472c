#include "base/Interrupt.h"

#include "base/Failure.h"

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

Interrupt::Interrupt()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    m_signals = checked(signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK), "signalfd");
    m_stop = checked(eventfd(0, EFD_CLOEXEC), "eventfd");
    m_watcher = std::thread([this] { watch(); });
}

Interrupt::~Interrupt()
{
    const std::uint64_t one = 1;
    while (write(m_stop, &one, sizeof one) < 0 && errno == EINTR) {
    }
    m_watcher.join();
    close(m_stop);
    close(m_signals);
}

void Interrupt::check() const
{
    if (requested()) {
        throw Interrupted();
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
        if (read(m_signals, &info, sizeof info) != static_cast<ssize_t>(sizeof info)) {
            continue;
        }
        const int number = static_cast<int>(info.ssi_signo);
        int none = 0;
        if (!m_signal.compare_exchange_strong(none, number)) {
            _exit(EXIT_BY_SIGNAL + number);
        }
        // The action may wait for a step of the main thread; a second signal must still get through, so the default
        // action takes over from here.
        std::signal(number, SIG_DFL);
        sigset_t signals;
        sigemptyset(&signals);
        sigaddset(&signals, number);
        pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
        const std::lock_guard<std::mutex> guard(m_lock);
        if (m_action) {
            m_action();
            m_action = nullptr;
        }
    }
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
