#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <thread>

namespace kvr::netlistdb::tool {

/// Turns Ctrl-C (and a request to terminate) into a flag and a call, handled on a thread of its own so that no code
/// runs inside a signal handler. A second signal ends the process at once.
///
/// Make it before any other thread: those inherit the blocked signals.
class Interrupt {
  public:
    Interrupt();
    ~Interrupt();
    Interrupt(const Interrupt &) = delete;
    Interrupt &operator=(const Interrupt &) = delete;

    bool requested() const { return m_signal.load(std::memory_order_relaxed) != 0; }
    /// The signal that asked, or 0.
    int signal() const { return m_signal.load(); }
    /// @throws Interrupted when a signal has asked to stop.
    void check() const;

    /// While it lives, an interrupt also calls @p action, once, on the watching thread; at once when the interrupt
    /// came before. Only one at a time.
    class Action {
      public:
        Action(Interrupt &interrupt, std::function<void()> action);
        /// Waits for a running action.
        ~Action();
        Action(const Action &) = delete;
        Action &operator=(const Action &) = delete;

      private:
        Interrupt &m_interrupt;
    };

  private:
    void watch();

    std::atomic<int> m_signal{0};
    std::mutex m_lock; ///< guards m_action
    std::function<void()> m_action;
    int m_signals = -1; ///< signalfd
    int m_stop = -1;    ///< eventfd that ends the watching thread
    std::thread m_watcher;
};

} // namespace kvr::netlistdb::tool
