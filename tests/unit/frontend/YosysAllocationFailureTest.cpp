// Memory that runs out at any moment: std::bad_alloc passes, and the global libset is as it was.

#include "ReaderTest.h"

#include <cstdlib>
#include <new>

namespace {

/// Allocations that still succeed; negative: all of them.
long g_allocationsLeft = -1;

void *allocateOrNull(std::size_t size) noexcept
{
    if (g_allocationsLeft == 0) {
        return nullptr;
    }
    if (g_allocationsLeft > 0) {
        --g_allocationsLeft;
    }
    return std::malloc(size == 0 ? 1 : size);
}

void *allocate(std::size_t size)
{
    void *memory = allocateOrNull(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

} // namespace

// Replaced for the whole program, the netlist database's shared library included.
void *operator new(std::size_t size)
{
    return allocate(size);
}
void *operator new[](std::size_t size)
{
    return allocate(size);
}
void *operator new(std::size_t size, const std::nothrow_t &) noexcept
{
    return allocateOrNull(size);
}
void *operator new[](std::size_t size, const std::nothrow_t &) noexcept
{
    return allocateOrNull(size);
}
void operator delete(void *memory) noexcept
{
    std::free(memory);
}
void operator delete[](void *memory) noexcept
{
    std::free(memory);
}
void operator delete(void *memory, std::size_t) noexcept
{
    std::free(memory);
}
void operator delete[](void *memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace yosystest {
namespace {

class YosysAllocationFailure : public ReaderTest {
  protected:
    /// The JSON parser chooses its code for this processor on first use, and cannot bear a failure then.
    void SetUp() override
    {
        readText(R"({"modules": {"top": {}}})");
        Verific::Libset::Reset();
    }

    /// Reads with every allocation failing in turn, until one reading succeeds. Answers the number of failures.
    static long failEveryAllocation(const std::string &text)
    {
        const std::string before = dumpLibset();
        for (long allocation = 0;; ++allocation) {
            Verific::Netlist *top = nullptr;
            bool failed = false;
            g_allocationsLeft = allocation;
            try {
                top = readText(text);
            } catch (const std::bad_alloc &) {
                failed = true;
            }
            g_allocationsLeft = -1;
            if (!failed) {
                EXPECT_NE(top, nullptr);
                return allocation;
            }
            EXPECT_EQ(dumpLibset(), before) << "allocation " << allocation;
        }
    }

    static constexpr const char *DESIGN = R"({"modules": {
        "sub": {"attributes": {"src": "s.v:1.1", "keep": "1"}, "ports": {"a": {"direction": "input", "bits": [2, 3]}}},
        "top": {"attributes": {"top": 1}, "memories": {"m": {"width": 8, "size": 4}},
          "netnames": {"n\\1": {"bits": [5, 6], "attributes": {"src": "t.v:1.1", "keep": "1"}}},
          "cells": {"u\\1": {"type": "sub", "parameters": {"P": "1"}, "attributes": {"A": "b"},
                             "connections": {"a": [5, "0"]}},
                    "u2": {"type": "$dff", "parameters": {"WIDTH": 1},
                           "port_directions": {"CLK": "input", "D": "input", "Q": "output"},
                           "connections": {"CLK": [6], "D": [9], "Q": [2147483647]}},
                    "u3": {"type": "ip", "port_directions": {"A": "input"}, "connections": {"A": ["1"]}}}}}})";
};

TEST_F(YosysAllocationFailure, LeavesAnEmptyLibsetEmpty)
{
    EXPECT_GT(failEveryAllocation(DESIGN), 100);
}

TEST_F(YosysAllocationFailure, LeavesAFullLibsetAsItWas)
{
    readText(DESIGN);
    EXPECT_GT(failEveryAllocation(DESIGN), 100);
}

} // namespace
} // namespace yosystest
