#pragma once

#include <netlistdb/Export.h>

#include <cstdint>

namespace kvr::netlistdb {

class IVDBItem;

/// What status() returns.
enum ResultStatus : std::uint32_t {
    RESULT_MATCH = 0, ///< the current item is a result
    RESULT_NONE = 1,  ///< the walk is at its end, or was cancelled
};

/// A forward-only cursor over search results, pulled by one thread; cancel may come from another.
///
/// Loop: `next`; while `status()` is RESULT_MATCH read `getCurrent` (an instance, a net or a net bus: tell them apart
/// by type code) and, for a net or bus, `getContext`; `next` again. Delete the set before the items it walks.
class NETLISTDB_EXPORT IVDBResultSet {
  public:
    /// Cancels, waiting for a running step. The items stay.
    virtual ~IVDBResultSet();
    /// Makes every later step end with RESULT_NONE. Waits for a running step, whose result stands. Any thread.
    /// @throws std::system_error when the lock fails.
    virtual void cancel() = 0;
    /// Walks on to the next result; costs what lies between the two. What the walk throws passes through, and the set
    /// stays locked: next, cancel and deletion then wait forever, so the caller abandons it as it is. SearchResults
    /// does.
    /// @throws std::runtime_error for an inconsistent item, std::regex_error, std::bad_function_call for a set without
    ///         predicate, std::system_error when the lock fails.
    virtual void next() = 0;
    /// Does nothing: the set is forward-only.
    virtual void previous() = 0;
    /// A ResultStatus; RESULT_MATCH before the first step. Takes no lock: for the thread that steps.
    virtual std::uint32_t status() const = 0;
    /// The current result, or null at the end. Not owned. Steps once if `next` has never run, and throws as `next`.
    virtual IVDBItem *getCurrent() = 0;
    /// The instance reported last: its path prefixes the full name of the current net or bus. Null before the first
    /// instance. Not owned.
    virtual IVDBItem *getContext() = 0;

  protected:
    /// For derived classes alone.
    IVDBResultSet() = default;
};

} // namespace kvr::netlistdb
