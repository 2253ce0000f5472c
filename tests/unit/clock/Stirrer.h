#pragma once

// For programs that are run several times, to show that their output does not depend on where items lie in memory.

#include "tests/unit/clock/ClockTest.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <random>
#include <vector>

namespace clock_test {

/// Leaves the heap with holes of all sizes in no order.
class Stirrer {
  public:
    explicit Stirrer(unsigned seed) : m_random(seed) {}

    void stir()
    {
        m_blocks.resize(4000);
        for (std::unique_ptr<char[]> &block : m_blocks) {
            if (m_random() % 3 != 0) {
                block = std::make_unique<char[]>(16 + m_random() % 300);
            }
        }
        std::shuffle(m_blocks.begin(), m_blocks.end(), m_random);
        m_blocks.resize(2000);
    }

  private:
    std::mt19937 m_random;
    std::vector<std::unique_ptr<char[]>> m_blocks;
};

/// Which of two neighbouring items lies first in memory, over all of them.
inline std::size_t orderOf(const std::vector<IVDBInstance *> &instances)
{
    std::size_t order = 0;
    for (const IVDBInstance *instance : instances) {
        const IVDBNet *last = nullptr;
        for (const IVDBNet *net : netsOf(instance)) {
            order = order * 31 + (std::less<>()(last, net) ? 1 : 2);
            last = net;
        }
    }
    return order;
}

} // namespace clock_test
