#pragma once

#include "memory/Sanitizers.h"

namespace testsupport {

/// How many of @p count random inputs a test runs: all of them, but a third with sanitizers, which are slow.
constexpr unsigned randomInputs(unsigned count)
{
    return kvr::memory::IS_SANITIZED ? count / 3 : count;
}

} // namespace testsupport
