#pragma once

#include "base/Interrupt.h"
#include "base/Progress.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <pybind11/pybind11.h>
#include <string>

namespace kvr::netlistdb::python {

/// What long work reports to, and is stopped by.
class Job {
  public:
    Job();
    Job(const Job &) = delete;
    Job &operator=(const Job &) = delete;

    tool::Interrupt interrupt{tool::Interrupt::Signals::LeaveAlone};
    tool::Progress progress;

    /// Runs @p work on a thread of its own, in a turn, and waits for it; meanwhile other Python threads run and
    /// @p callback, unless it is None, is called with what is done, how much, and of how much. The caller holds the
    /// interpreter lock.
    ///
    /// When a signal handler or the callback raises, the work is asked to stop; what cannot stop goes on by itself, and
    /// whoever wants a turn waits for it. So @p work owns all that it touches.
    /// @throws what the work throws, and error_already_set.
    static void run(std::function<void(Job &)> work, const pybind11::object &callback);

  private:
    struct State {
        std::string what;
        std::uint64_t done = 0;
        std::uint64_t total = 0;
        bool isNew = false;
    };

    bool waitFor(std::chrono::milliseconds patience);
    void report(const pybind11::object &callback);
    void watch(const pybind11::object &callback);

    std::mutex m_lock; ///< guards what follows
    std::condition_variable m_isOver;
    bool m_isFinished = false;
    State m_state;
    std::exception_ptr m_fault;
};

} // namespace kvr::netlistdb::python
