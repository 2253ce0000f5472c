#pragma once

#include <netlistdb/IVDBResultSet.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

namespace kvr::netlistdb {

/// Owns a result set, and lets go of it when a step throws.
///
/// A result set whose step threw stays locked for good: deleting or cancelling it waits forever. This handle
/// abandons such a set, without deleting it: what the set holds (its walk, some kilobytes, more where the search has
/// gone wide) is never freed. From then on the handle is at its end. Header only; one thread pulls, any may cancel.
///
///     SearchResults results(database.search(param));
///     while (results.next()) {
///         use(*results.getCurrent());
///     }
class SearchResults {
  public:
    /// Takes ownership of @p results; null makes a handle that is at its end.
    explicit SearchResults(IVDBResultSet *results) : m_results(results) {}
    /// Deletes the set unless it was abandoned. The items stay, and must still be there.
    ~SearchResults() = default;
    SearchResults(const SearchResults &) = delete;
    SearchResults &operator=(const SearchResults &) = delete;

    /// Walks on to the next result; false at the end, after a cancel and in an abandoned set.
    /// @throws what IVDBResultSet::next throws, after abandoning the set.
    bool next()
    {
        const Turn turn(m_isBusy);
        if (m_results == nullptr) {
            return false;
        }
        m_hasStepped = true;
        try {
            m_results->next();
        } catch (...) {
            abandon();
            throw;
        }
        return m_results->status() == RESULT_MATCH;
    }

    /// The status of the set; RESULT_NONE in an abandoned one.
    std::uint32_t status() const { return m_results != nullptr ? m_results->status() : std::uint32_t{RESULT_NONE}; }

    /// The current result, or null. Not owned. Steps once when nobody has.
    /// @throws what IVDBResultSet::next throws, after abandoning the set.
    IVDBItem *getCurrent()
    {
        if (!m_hasStepped) {
            next();
        }
        return m_results != nullptr ? m_results->getCurrent() : nullptr;
    }

    /// The instance whose path prefixes the full name of the current net or bus, or null. Not owned.
    IVDBItem *getContext() { return m_results != nullptr ? m_results->getContext() : nullptr; }

    /// Makes every later step end with false. Waits for a running step; does nothing when that step throws. Any thread.
    /// @throws std::system_error when the lock of the set fails.
    void cancel()
    {
        const Turn turn(m_isBusy);
        if (m_results != nullptr) {
            m_results->cancel();
        }
    }

  private:
    /// A spin lock: a step takes it in half the time of a mutex, and only a cancel ever waits.
    class Turn {
      public:
        explicit Turn(std::atomic_flag &isBusy) : m_isBusy(isBusy)
        {
            while (m_isBusy.test_and_set(std::memory_order_acquire)) {
                std::this_thread::sleep_for(std::chrono::microseconds(100));
            }
        }
        ~Turn() { m_isBusy.clear(std::memory_order_release); }
        Turn(const Turn &) = delete;
        Turn &operator=(const Turn &) = delete;

      private:
        std::atomic_flag &m_isBusy;
    };

    void abandon() { static_cast<void>(m_results.release()); }

    // Held for each step, so that a cancel does not wait inside a set that a throwing step leaves locked.
    std::atomic_flag m_isBusy = ATOMIC_FLAG_INIT;
    bool m_hasStepped = false; ///< of the thread that pulls
    std::unique_ptr<IVDBResultSet> m_results;
};

} // namespace kvr::netlistdb
