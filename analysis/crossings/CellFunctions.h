#pragma once

#include "analysis/crossings/Unfolding.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string_view>
#include <tuple>
#include <vector>

namespace kvr::netlistdb::analysis {

/// What an output of a cell computes from at most six inputs: bit n of the table is the output when the inputs spell
/// the number n, the first being the lowest.
struct TruthTable {
    std::vector<std::uint32_t> inputs; ///< pins
    std::uint64_t bits = 0;

    /// The output for 64 sets of values at a time.
    std::uint64_t evaluate(const std::vector<std::uint64_t> &values) const;
    /// True when the inputs in @p controls, a mask of places, can take values with which input @p place changes
    /// nothing.
    bool isBlocked(std::size_t place, std::uint32_t controls) const;
};

/// Finds truth tables: of look-up tables, gates, multiplexers and the bits of word-level operators.
class CellFunctions {
  public:
    explicit CellFunctions(Unfolding &design) : m_design(design) {}

    /// Null for a cell with another function, or with more inputs. Lives as long as this object.
    const TruthTable *of(const PinPlace &output);

  private:
    std::optional<TruthTable> find(const PinPlace &output);
    std::optional<TruthTable> lookUpTable(const PinPlace &output);
    std::optional<TruthTable> gate(const PinPlace &output, std::string_view type);

    Unfolding &m_design;
    /// By module, cell and pin: instances of a module share the tables.
    std::map<std::tuple<std::uint32_t, std::uint32_t, std::uint32_t>, std::optional<TruthTable>> m_known;
};

/// The name of the type of a leaf cell; may be empty.
std::string_view typeOf(Unfolding &design, std::uint32_t context, std::uint32_t cell);

} // namespace kvr::netlistdb::analysis
