#pragma once

#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>

namespace kvr::netlistdb::tool {

/// One thread that does everything that touches a design: one task after the other, in the order in which they came,
/// and when none waits, preparations.
class Worker {
  public:
    using Task = std::function<void()>;

    /// Starts with @p first. The descriptor failed() can be read once a task has thrown, which ends the thread.
    explicit Worker(Task first);
    /// Waits for the task that is being done. The others are dropped.
    ~Worker();
    Worker(const Worker &) = delete;
    Worker &operator=(const Worker &) = delete;

    void post(Task task);
    /// Leaves @p task for when nothing else is to be done.
    void prepare(Task task);
    /// Drops the preparations, and waits until no posted task is left, or one has thrown. Returns false when the thread
    /// is still in the middle of something.
    bool drain();
    /// Ends the thread when it is done with what it does.
    void stop();
    int failed() const { return m_failed; }
    /// Stops, and throws what a task has thrown.
    void finish();

  private:
    void run(const Task &first);
    /// The next thing to do; empty when the thread is to end.
    Task next();

    std::mutex m_lock; ///< guards what follows up to the thread
    std::condition_variable m_changed;
    std::deque<Task> m_tasks;
    std::deque<Task> m_preparations;
    bool m_isBusy = true;
    bool m_isPosted = false; ///< what it is busy with
    bool m_isEnding = false;
    std::exception_ptr m_fault;
    int m_failed; ///< eventfd
    std::thread m_thread;
};

} // namespace kvr::netlistdb::tool
