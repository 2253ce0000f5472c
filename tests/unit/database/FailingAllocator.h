#pragma once

namespace testsupport {

// The allocator of a test program that links FailingAllocator.cpp fails on demand.

/// Lets @p count allocations pass and the next one throw std::bad_alloc, once.
void failAllocationAfter(long count);
/// True when the allocation meant to fail has failed.
bool allocationHasFailed();
void failNoAllocation();

} // namespace testsupport
