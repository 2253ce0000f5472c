#pragma once

#include "BitTable.h"
#include "Bits.h"
#include "LineFile.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace kvr::netlistdb::yosys {

/// The names of one module's bits, and which of its names each bit has.
///
/// A bit takes the best of its names: the name of a port, then one that the user declared, then a visible one that
/// synthesis derived from such a name, then a hidden one. Among equals the one with the fewest hierarchy separators
/// ('.' and '/'), then the shortest, then the first in byte order, then the first in the file; among ports the first in
/// the file.
class NetNames {
  public:
    enum class Rank : std::uint8_t { Port, Declared, Derived, Hidden };

    struct Name {
        std::string_view text;
        VectorRange range;
        std::size_t firstBit = 0; ///< in bits()
        std::uint64_t order = 0;  ///< smaller is better; then the text decides
        Verific::linefile_type position = 0;
        std::uint32_t attributes = NO_ATTRIBUTES; ///< index of the caller's
        Rank rank = Rank::Hidden;
        bool declared = false; ///< the user wrote it, as far as the file says
        bool more = false;     ///< the attributes hold more than the position
    };
    static constexpr std::uint32_t NO_ATTRIBUTES = 0xFFFFFFFFu;

    /// Forgets everything; @p textSize as for BitTable::start().
    void start(std::size_t textSize);

    /// Adds a bit for the name that is added next.
    void addBit(Bit bit) { m_bits.push_back(bit); }
    /// Number of bits added since the latest name.
    std::size_t pendingBits() const { return m_bits.size() - m_named; }
    Bit pendingBit(std::size_t position) const { return m_bits[m_named + position]; }
    void dropPendingBits() { m_bits.resize(m_named); }
    /// Adds a name for the pending bits. range.width must be their number.
    Name &add(std::string_view text, Rank rank, const VectorRange &range);

    /// Lets every bit take its best name. Constants take none.
    void choose();

    std::vector<Name> &names() { return m_names; }
    Bit bitOf(const Name &name, unsigned position) const { return m_bits[name.firstBit + position]; }
    /// The entry of bit @p position of name number @p name when the bit has that name, there and nowhere else in the
    /// name; otherwise null.
    BitTable::Entry *taken(std::uint32_t name, unsigned position)
    {
        const Bit bit = bitOf(m_names[name], position);
        if (isConstant(bit)) {
            return nullptr;
        }
        BitTable::Entry &entry = m_table.at(bit);
        return entry.name == name && entry.position == position ? &entry : nullptr;
    }
    /// True when every bit of name number @p name has it.
    bool takenWhole(std::uint32_t name)
    {
        for (unsigned position = 0; position < m_names[name].range.width; ++position) {
            if (taken(name, position) == nullptr) {
                return false;
            }
        }
        return true;
    }
    BitTable::Entry &entry(Bit bit) { return m_table.at(bit); }

  private:
    bool better(const Name &left, const Name &right) const
    {
        return left.order != right.order ? left.order < right.order : left.text < right.text;
    }

    std::vector<Name> m_names;
    std::vector<Bit> m_bits;
    std::size_t m_named = 0; ///< bits that belong to names
    BitTable m_table;
};

} // namespace kvr::netlistdb::yosys
