#pragma once

#include <netlistdb/IVDBResultSet.h>

#include <memory>
#include <mutex>

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
        const std::lock_guard<std::mutex> guard(m_lock);
        if (m_results == nullptr) {
            return false;
        }
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
        const std::lock_guard<std::mutex> guard(m_lock);
        try {
            return m_results != nullptr ? m_results->getCurrent() : nullptr;
        } catch (...) {
            abandon();
            throw;
        }
    }

    /// The instance whose path prefixes the full name of the current net or bus, or null. Not owned.
    IVDBItem *getContext() { return m_results != nullptr ? m_results->getContext() : nullptr; }

    /// Makes every later step end with false. Waits for a running step; does nothing when that step throws. Any thread.
    /// @throws std::system_error when the lock fails.
    void cancel()
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        if (m_results != nullptr) {
            m_results->cancel();
        }
    }

  private:
    void abandon() { static_cast<void>(m_results.release()); }

    // Held for each step, so that a cancel does not wait inside a set that a throwing step leaves locked.
    std::mutex m_lock;
    std::unique_ptr<IVDBResultSet> m_results;
};

} // namespace kvr::netlistdb
