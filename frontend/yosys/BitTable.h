#pragma once

#include "Bits.h"

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace Verific {
class Net;
}

namespace kvr::netlistdb::yosys {

/// What is known of every bit of one module, by its number.
class BitTable {
  public:
    static constexpr std::uint32_t NO_NAME = 0xFFFFFFFFu;

    struct Entry {
        std::uint32_t name = NO_NAME; ///< number of the best name so far
        std::uint32_t position = 0;   ///< the bit's place in that name
        Verific::Net *net = nullptr;  ///< once it is made
    };

    /// Forgets everything. Files count bits from 2 on without gaps, so that no number exceeds the size of the module's
    /// text, @p textSize: up to there the table is an array. Larger numbers are legal, and found by hashing.
    void start(std::size_t textSize)
    {
        m_dense.clear();
        m_sparse.clear();
        m_denseEnd = textSize;
    }

    /// The entry of @p bit, which is no constant. Valid until the next call.
    Entry &at(Bit bit)
    {
        if (bit < m_dense.size()) {
            return m_dense[bit];
        }
        return bit < m_denseEnd ? grow(bit) : m_sparse[bit];
    }

  private:
    Entry &grow(Bit bit);

    std::vector<Entry> m_dense;
    std::unordered_map<Bit, Entry> m_sparse;
    std::size_t m_denseEnd = 0;
};

} // namespace kvr::netlistdb::yosys
