#pragma once

#include <cstddef>
#include <functional>

namespace testsupport {

/// Runs @p call on a thread with a stack of @p bytes, and returns how much of it was touched, in whole pages.
std::size_t stackUsed(std::size_t bytes, const std::function<void()> &call);

} // namespace testsupport
