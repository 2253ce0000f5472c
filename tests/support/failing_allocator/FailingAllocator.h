#pragma once

#include <new>

namespace testsupport {

// A test program that links `failing_allocator` runs out of memory on demand: every `new` of the program, those in
// shared libraries included, comes here.

enum class Failures {
    ONE, ///< one allocation fails, those behind it succeed
    ALL, ///< no allocation succeeds any more
};

/// Lets @p count allocations pass; the next one throws std::bad_alloc.
void failAllocationAfter(long count, Failures failures = Failures::ONE);
/// True when the allocation meant to fail has failed.
bool allocationHasFailed();
void failNoAllocation();

enum class Outcome { THREW, WENT_THROUGH, NOT_REACHED };

/// Runs @p call while its allocation number @p number fails: the call throws that on, goes through without, or has no
/// such allocation.
template <typename Call> Outcome failAllocation(long number, Call call)
{
    failAllocationAfter(number);
    Outcome outcome = Outcome::THREW;
    try {
        call();
        outcome = allocationHasFailed() ? Outcome::WENT_THROUGH : Outcome::NOT_REACHED;
    } catch (const std::bad_alloc &) {
        outcome = Outcome::THREW;
    }
    failNoAllocation();
    return outcome;
}

} // namespace testsupport
