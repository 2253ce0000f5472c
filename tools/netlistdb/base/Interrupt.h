#pragma once

#include "base/TemporaryPaths.h"

#include <atomic>
#include <functional>
#include <mutex>
#include <thread>

namespace kvr::netlistdb::tool {

/// Handles Ctrl-C, a request to terminate and a terminal that goes away, on a thread of its own so that no code runs
/// inside a signal handler. Signals that were ignored when the program started stay ignored.
///
/// A signal ends the process at once, whatever the main thread is in the middle of: nothing is freed, but temporary
/// files go. Only while an Action lives it is the main thread that ends the work, and a second signal ends the process.
///
/// Make it before any other thread: those inherit the blocked signals. A process whose signals are somebody else's
/// business makes one that leaves them alone, and asks by request().
class Interrupt {
  public:
    enum class Signals { Handle, LeaveAlone };
    explicit Interrupt(Signals signals = Signals::Handle);
    ~Interrupt();
    Interrupt(const Interrupt &) = delete;
    Interrupt &operator=(const Interrupt &) = delete;

    bool requested() const { return m_signal.load(std::memory_order_relaxed) != 0; }
    /// The signal that asked, or 0.
    int signal() const { return m_signal.load(); }
    /// @throws Interrupted when a signal has asked to stop.
    void check() const;
    /// Asks as Ctrl-C does while an Action lives; runs the action on the calling thread. Without an Action the work
    /// goes on to where it looks at requested(). Any thread.
    void request();
    /// What goes when a signal ends the process.
    TemporaryPaths &temporaries() { return m_temporaries; }

    /// While it lives, a signal sets requested() and calls @p action, once, on another thread; at once when the signal
    /// came before. Only one at a time.
    class Action {
      public:
        explicit Action(
            Interrupt &interrupt, std::function<void()> action = [] {});
        /// Waits for a running action.
        ~Action();
        Action(const Action &) = delete;
        Action &operator=(const Action &) = delete;

      private:
        Interrupt &m_interrupt;
    };

  private:
    void watch();
    void handle(int number);
    [[noreturn]] void leave(int number, const char *message);

    TemporaryPaths m_temporaries;
    std::atomic<int> m_signal{0};
    std::mutex m_lock; ///< guards m_action
    std::function<void()> m_action;
    int m_signals = -1; ///< signalfd
    int m_stop = -1;    ///< eventfd that ends the watching thread
    std::thread m_actor;
    std::thread m_watcher;
};

} // namespace kvr::netlistdb::tool
