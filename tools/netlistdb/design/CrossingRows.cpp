#include "design/CrossingRows.h"

#include "design/Subscript.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <unordered_map>

namespace kvr::netlistdb::tool {

using analysis::Crossing;
using analysis::CrossingClass;
using analysis::CrossingEnd;

namespace {

/// Numbers for names, the same for the same name.
class NameNumbers {
  public:
    /// @p name must outlive the object.
    std::uint32_t of(std::string_view name)
    {
        return m_numbers.try_emplace(name, static_cast<std::uint32_t>(m_numbers.size())).first->second;
    }

  private:
    std::unordered_map<std::string_view, std::uint32_t> m_numbers;
};

/// What crossings of one row have in common, but for the class.
using Likeness = std::array<std::uint32_t, 7>;
/// A likeness by its number, and the class.
using RowKey = std::uint64_t;

struct LikenessHash {
    std::size_t operator()(const Likeness &likeness) const
    {
        std::uint64_t hash = 0;
        for (const std::uint32_t part : likeness) {
            hash = (hash ^ part) * 0x9E3779B97F4A7C15U;
            hash ^= hash >> 32U;
        }
        return hash;
    }
};

const std::string &busOf(const CrossingEnd &end)
{
    return end.bus.empty() ? end.name : end.bus;
}

/// The name of a pin without its subscript.
std::string_view portOf(std::string_view pin)
{
    return pin.substr(0, pin.find('['));
}

/// Finds the row of each crossing.
class RowNumbers {
  public:
    explicit RowNumbers(bool bits) : m_bits(bits) {}

    /// The same number for what is alike. Numbers follow the order of first calls.
    std::uint32_t likenessOf(const Crossing &crossing, const CrossingRules::Waiver *waiver)
    {
        if (m_bits) {
            return m_likenesses++;
        }
        const Likeness likeness{crossing.launch ? *crossing.launch + 1 : 0, crossing.capture,
                                m_names.of(busOf(crossing.from)),           m_names.of(busOf(crossing.to)),
                                m_names.of(portOf(crossing.to.pin)),        crossing.isKept ? 1U : 0U,
                                waiver != nullptr ? waiver->line() : 0U};
        const auto [place, isNew] = m_alike.try_emplace(likeness, m_likenesses);
        m_likenesses += isNew ? 1 : 0;
        return place->second;
    }

    /// The row of a likeness and a class; @p next when there is none yet.
    std::uint32_t rowOf(std::uint32_t likeness, CrossingClass kind, std::uint32_t next)
    {
        if (m_bits) {
            return next;
        }
        const RowKey key = RowKey(likeness) * analysis::CROSSING_CLASSES + static_cast<RowKey>(kind);
        return m_rows.try_emplace(key, next).first->second;
    }

  private:
    bool m_bits;
    std::uint32_t m_likenesses = 0;
    NameNumbers m_names;
    std::unordered_map<Likeness, std::uint32_t, LikenessHash> m_alike;
    std::unordered_map<RowKey, std::uint32_t> m_rows;
};

} // namespace

CrossingRows::CrossingRows(const std::vector<Crossing> &crossings, const analysis::ClockMap &clocks,
                           const CrossingRules &rules, Options options)
    : m_crossings(crossings)
{
    RowNumbers numbers(options.bits);
    std::vector<std::uint32_t> rows;
    std::vector<std::uint32_t> members;
    rows.reserve(crossings.size());
    members.reserve(crossings.size());
    for (std::uint32_t number = 0; number < crossings.size(); ++number) {
        const Crossing &crossing = crossings[number];
        const CrossingRules::Waiver *const waiver = rules.waiverOf(crossing, clocks);
        const std::uint32_t likeness = numbers.likenessOf(crossing, waiver);
        for (std::size_t at = 0; at < analysis::CROSSING_CLASSES; ++at) {
            const auto kind = static_cast<CrossingClass>(at);
            const bool isDeciding = kind == crossing.kind;
            if (!(options.allClasses ? crossing.holds(kind) : isDeciding)) {
                continue;
            }
            const std::uint32_t place = numbers.rowOf(likeness, kind, static_cast<std::uint32_t>(m_rows.size()));
            if (place == m_rows.size()) {
                m_rows.push_back({&crossing, waiver, crossing.launch, crossing.capture, kind, 0, 0, 0, crossing.cells,
                                  crossing.stages});
            }
            CrossingRow &row = m_rows[place];
            ++row.bits;
            row.deciding += isDeciding ? 1 : 0;
            row.cells = std::min(row.cells, crossing.cells);
            row.stages = std::min(row.stages, crossing.stages);
            rows.push_back(place);
            members.push_back(number);
        }
    }
    sortMembers(rows, members);
}

/// @p rows has the row of each member, and @p crossings the crossing that it is.
void CrossingRows::sortMembers(const std::vector<std::uint32_t> &rows, const std::vector<std::uint32_t> &crossings)
{
    std::uint32_t begin = 0;
    for (CrossingRow &row : m_rows) {
        row.begin = begin;
        begin += row.bits;
    }
    m_members.resize(rows.size());
    std::vector<std::uint32_t> filled(m_rows.size());
    for (std::size_t member = 0; member < rows.size(); ++member) {
        const std::uint32_t row = rows[member];
        m_members[m_rows[row].begin + filled[row]++] = crossings[member];
    }
}

CrossingRules::Used CrossingRows::usedWaivers() const
{
    CrossingRules::Used used;
    for (const CrossingRow &row : m_rows) {
        if (row.waiver != nullptr) {
            used.insert(row.waiver);
        }
    }
    return used;
}

std::string CrossingRows::textOf(const CrossingRow &row, CrossingEnd Crossing::*end) const
{
    const CrossingEnd &first = row.first->*end;
    if (first.bus.empty()) {
        return first.name;
    }
    std::vector<int> bits(row.bits);
    for (std::size_t at = 0; at < bits.size(); ++at) {
        bits[at] = (m_crossings[m_members[row.begin + at]].*end).bit;
    }
    return bitsText(first.bus, bits);
}

} // namespace kvr::netlistdb::tool
