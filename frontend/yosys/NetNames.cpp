#include "NetNames.h"

#include <algorithm>

namespace kvr::netlistdb::yosys {

void NetNames::start(std::size_t textSize)
{
    m_names.clear();
    m_bits.clear();
    m_named = 0;
    m_table.start(textSize);
}

NetNames::Name &NetNames::add(std::string_view text, Rank rank, const VectorRange &range)
{
    // Rank, separators and length in one number; ports are ranked by their order alone.
    std::uint64_t order = static_cast<std::uint64_t>(rank) << 56;
    if (rank == Rank::Port) {
        order |= m_names.size();
    } else {
        const auto separators = std::count_if(text.begin(), text.end(), [](char c) { return c == '.' || c == '/'; });
        order |= std::min<std::uint64_t>(static_cast<std::uint64_t>(separators), 0xFFFFFF) << 32;
        order |= std::min<std::uint64_t>(text.size(), 0xFFFFFFFF);
    }
    Name name;
    name.text = text;
    name.range = range;
    name.firstBit = m_named;
    name.order = order;
    name.rank = rank;
    m_named = m_bits.size();
    m_names.push_back(name);
    return m_names.back();
}

void NetNames::choose()
{
    for (std::uint32_t number = 0; number < m_names.size(); ++number) {
        const Name &name = m_names[number];
        for (unsigned position = 0; position < name.range.width; ++position) {
            const Bit bit = bitOf(name, position);
            if (isConstant(bit)) {
                continue;
            }
            BitTable::Entry &entry = m_table.at(bit);
            if (entry.name == BitTable::NO_NAME || better(name, m_names[entry.name])) {
                entry.name = number;
                entry.position = position;
            }
        }
    }
}

} // namespace kvr::netlistdb::yosys
