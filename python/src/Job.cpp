#include "Job.h"

#include "Text.h"
#include "Turn.h"

#include <chrono>
#include <csignal>
#include <pthread.h>
#include <thread>
#include <utility>

namespace kvr::netlistdb::python {

namespace py = pybind11;

namespace {

constexpr auto PATIENCE = std::chrono::milliseconds(50);
/// How long work that was asked to stop is waited for.
constexpr auto GRACE = std::chrono::milliseconds(300);

/// Signals are for the threads of the interpreter: what is started while it lives gets none.
class SignalsBlocked {
  public:
    SignalsBlocked()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SignalsBlocked(const SignalsBlocked &) = delete;
    SignalsBlocked &operator=(const SignalsBlocked &) = delete;

  private:
    sigset_t m_before{};
};

} // namespace

Job::Job()
    : progress([this](const std::string &what, std::uint64_t done, std::uint64_t total) {
          const std::lock_guard<std::mutex> guard(m_lock);
          m_state = {what, done, total, true};
      })
{
}

void Job::run(std::function<void(Job &)> work, const py::object &callback)
{
    const auto job = std::make_shared<Job>();
    {
        Turn turn;
        const SignalsBlocked blocked;
        std::thread([job, work = std::move(work)]() mutable {
            std::exception_ptr fault;
            try {
                work(*job);
            } catch (...) {
                fault = std::current_exception();
            }
            // What the work owns goes before the turn does.
            work = nullptr;
            endOfTurn();
            const std::lock_guard<std::mutex> guard(job->m_lock);
            job->m_fault = std::move(fault);
            job->m_isFinished = true;
            job->m_isOver.notify_all();
        }).detach();
        turn.handOver();
    }
    try {
        job->watch(callback);
    } catch (...) {
        const py::gil_scoped_release release;
        job->interrupt.request();
        job->waitFor(GRACE);
        throw;
    }
    if (job->m_fault) {
        std::rethrow_exception(std::exchange(job->m_fault, nullptr));
    }
}

void Job::watch(const py::object &callback)
{
    for (bool isFinished = false; !isFinished;) {
        {
            const py::gil_scoped_release release;
            isFinished = waitFor(PATIENCE);
        }
        if (PyErr_CheckSignals() != 0) {
            throw py::error_already_set();
        }
        if (!callback.is_none()) {
            report(callback);
        }
    }
}

bool Job::waitFor(std::chrono::milliseconds patience)
{
    std::unique_lock<std::mutex> guard(m_lock);
    return m_isOver.wait_for(guard, patience, [this] { return m_isFinished; });
}

void Job::report(const py::object &callback)
{
    State state;
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        if (!std::exchange(m_state.isNew, false)) {
            return;
        }
        state = m_state;
    }
    callback(text(state.what), state.done, state.total);
}

} // namespace kvr::netlistdb::python
