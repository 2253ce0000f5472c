// Memory that runs out at any moment: std::bad_alloc passes, and the global libset is as it was.

#include "ReaderTest.h"

#include "tests/support/failing_allocator/FailingAllocator.h"

#include <new>

namespace yosystest {
namespace {

class YosysAllocationFailure : public ReaderTest {
  protected:
    /// The JSON parser chooses its code for this processor on first use, and cannot handle a failure then.
    void SetUp() override
    {
        readText(R"({"modules": {"top": {}}})");
        Verific::Libset::Reset();
    }

    /// Reads with every allocation failing in turn, until one reading succeeds. Returns the number of failures.
    static long failEveryAllocation(const std::string &text)
    {
        const std::string before = dumpLibset();
        for (long allocation = 0;; ++allocation) {
            Verific::Netlist *top = nullptr;
            bool failed = false;
            testsupport::failAllocationAfter(allocation, testsupport::Failures::ALL);
            try {
                top = readText(text);
            } catch (const std::bad_alloc &) {
                failed = true;
            }
            testsupport::failNoAllocation();
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
