#include "serve/Worker.h"

#include <cerrno>
#include <cstdint>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace kvr::netlistdb::tool {

Worker::Worker(Task first) : m_failed(eventfd(0, EFD_CLOEXEC))
{
    if (m_failed < 0) {
        throw std::system_error(errno, std::generic_category(), "eventfd");
    }
    m_thread = std::thread([this, first = std::move(first)] { run(first); });
}

Worker::~Worker()
{
    stop();
    close(m_failed);
}

void Worker::post(Task task)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    m_tasks.push_back(std::move(task));
    m_changed.notify_all();
}

void Worker::prepare(Task task)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    m_preparations.push_back(std::move(task));
    m_changed.notify_all();
}

bool Worker::drain()
{
    std::unique_lock<std::mutex> guard(m_lock);
    m_preparations.clear();
    m_changed.wait(guard, [this] { return (m_tasks.empty() && !(m_isBusy && m_isPosted)) || m_fault != nullptr; });
    return !m_isBusy;
}

void Worker::finish()
{
    stop();
    if (m_fault != nullptr) {
        std::rethrow_exception(std::exchange(m_fault, nullptr));
    }
}

void Worker::stop()
{
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_isEnding = true;
        m_changed.notify_all();
    }
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

void Worker::run(const Task &first)
{
    try {
        first();
        for (Task task = next(); task; task = next()) {
            task();
        }
    } catch (...) {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_fault = std::current_exception();
        m_isBusy = false;
        const std::uint64_t one = 1;
        while (write(m_failed, &one, sizeof one) < 0 && errno == EINTR) {
        }
    }
    const std::lock_guard<std::mutex> guard(m_lock);
    m_isBusy = false;
    m_changed.notify_all();
}

Worker::Task Worker::next()
{
    std::unique_lock<std::mutex> guard(m_lock);
    m_isBusy = false;
    m_changed.notify_all();
    m_changed.wait(guard, [this] { return m_isEnding || !m_tasks.empty() || !m_preparations.empty(); });
    if (m_isEnding) {
        return {};
    }
    m_isBusy = true;
    m_isPosted = !m_tasks.empty();
    std::deque<Task> &from = m_isPosted ? m_tasks : m_preparations;
    Task task = std::move(from.front());
    from.pop_front();
    return task;
}

} // namespace kvr::netlistdb::tool
