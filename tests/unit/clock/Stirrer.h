#pragma once

// For programs that are run several times, to show that their output does not depend on where items lie in memory.

#include "memory/Sanitizers.h"
#include "memory/SlabPool.h"
#include "tests/unit/clock/ClockTest.h"

#include <netlistdb/VDBInstance.h>
#include <netlistdb/VDBNet.h>

#include <DataBase.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <random>
#include <vector>

namespace clock_test {

/// Leaves the heap, and the slabs of items and of netlist objects, with holes of all sizes in no order.
class Stirrer {
  public:
    explicit Stirrer(unsigned seed)
        : m_random(seed), m_netSlabs(m_random), m_instanceSlabs(m_random), m_dbNetSlabs(m_random),
          m_dbInstanceSlabs(m_random)
    {
    }

    void stir()
    {
        m_netSlabs.open();
        m_instanceSlabs.open();
        m_dbNetSlabs.open();
        m_dbInstanceSlabs.open();
        for (int each = 0; each < 4000; ++each) {
            m_heap.push_back(std::make_unique<char[]>(someSize()));
            m_items.push_back(std::make_unique<Block<kvr::netlistdb::VDBNet>>(someSize()));
            m_objects.push_back(std::make_unique<Block<Verific::DesignObj>>(someSize()));
        }
        halve(m_heap);
        halve(m_items);
        halve(m_objects);
    }

  private:
    /// Memory of the kind that objects of @p Class are made in.
    template <typename Class> class Block {
      public:
        explicit Block(std::size_t size) : m_size(size), m_memory(Class::operator new(size)) {}
        ~Block() { Class::operator delete(m_memory, m_size); }
        Block(const Block &) = delete;
        Block &operator=(const Block &) = delete;

      private:
        std::size_t m_size;
        void *m_memory;
    };

    /// Full slabs of the size of @p Class. Each slab takes its places from front to back, so that single holes in many
    /// slabs are what makes the order of objects uneven.
    template <typename Class> class FullSlabs {
      public:
        explicit FullSlabs(std::mt19937 &random)
        {
            // Builds with a sanitizer have no slabs.
            m_blocks.resize(kvr::memory::IS_SANITIZED ? 0 : 16 * kvr::memory::SlabPool::SLAB_SIZE / sizeof(Class));
            for (std::unique_ptr<Block<Class>> &block : m_blocks) {
                block = std::make_unique<Block<Class>>(sizeof(Class));
            }
            std::shuffle(m_blocks.begin(), m_blocks.end(), random);
        }
        /// Makes some more holes.
        void open() { m_blocks.resize(m_blocks.size() - std::min<std::size_t>(m_blocks.size(), 150)); }

      private:
        std::vector<std::unique_ptr<Block<Class>>> m_blocks;
    };

    std::size_t someSize() { return 16 + m_random() % 300; }
    template <typename Blocks> void halve(Blocks &blocks)
    {
        std::shuffle(blocks.begin(), blocks.end(), m_random);
        blocks.resize(blocks.size() / 2);
    }

    std::mt19937 m_random;
    FullSlabs<kvr::netlistdb::VDBNet> m_netSlabs;
    FullSlabs<kvr::netlistdb::VDBInstance> m_instanceSlabs;
    FullSlabs<Verific::Net> m_dbNetSlabs;
    FullSlabs<Verific::Instance> m_dbInstanceSlabs;
    std::vector<std::unique_ptr<char[]>> m_heap;
    std::vector<std::unique_ptr<Block<kvr::netlistdb::VDBNet>>> m_items;
    std::vector<std::unique_ptr<Block<Verific::DesignObj>>> m_objects;
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
