#pragma once

namespace platformtest {

/// From now on `new` works @p count times in the whole program and then throws std::bad_alloc.
void limitAllocations(long count);
void liftAllocationLimit();

} // namespace platformtest
