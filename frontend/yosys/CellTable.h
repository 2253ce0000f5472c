#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kvr::netlistdb::yosys {

/// What a device cell is.
enum class CellKind {
    FlipFlop,
    Latch,
    Memory,
    Dsp,
    ShiftRegister,
    Ddr,
    LogicCell,
    ClockBuffer,
    ClockGate,
    ClockMux,
    ClockDivider,
    Pll,
    Oscillator,
    Carry,
    Lut,
    Io,
    Constant,
    Logic,
    HardBlock,
};

/// As the tables write it: "flip-flop", "clock-buffer", …
const char *nameOf(CellKind kind);

enum class ClockEdge { Rise, Fall, Both };

/// Names of pins; in a pattern `#` stands for a number and `*` for any text.
class PinPatterns {
  public:
    PinPatterns() = default;
    /// @p text holds the patterns, with blanks between them.
    explicit PinPatterns(std::string_view text);
    bool match(std::string_view pin) const { return place(pin) < m_patterns.size(); }
    /// Place of the first pattern that fits @p pin; size() when none does.
    std::size_t place(std::string_view pin) const;
    std::size_t size() const { return m_patterns.size(); }
    bool empty() const { return m_patterns.empty(); }

  private:
    std::vector<std::string> m_patterns;
};

/// Parameters that must all have one of the values listed.
using CellCondition = std::vector<std::pair<std::string, std::vector<std::string>>>;

/// One clock pin of a cell and the outputs that it clocks.
struct CellClock {
    std::string pin; ///< `name`, or `name[position]` for one bit of a vector
    ClockEdge edge = ClockEdge::Rise;
    PinPatterns outputs;
    std::vector<CellCondition> when;   ///< one of them must hold; none: always
    std::vector<CellCondition> unless; ///< none of them may hold
    CellCondition inverted;            ///< holds when the pin's edge is the other one
};

/// What is known of one type of device cells.
struct CellDescription {
    std::string family;
    bool selfDescribing = false; ///< files carry the attributes of the cell themselves
    CellKind kind = CellKind::Logic;
    std::vector<CellClock> clocks;
    PinPatterns read;  ///< inputs that an output without a clock depends on first
    std::string input; ///< of a clock buffer or gate: the pin that carries the clock
    PinPatterns enable;
    PinPatterns set;
    PinPatterns reset;
    std::unordered_map<std::string, std::string> defaults; ///< of parameters that the clocks depend on
};

/// True when @p value, as a file writes it, is what @p wanted says: the same text; the same number, where @p value may
/// be in bits; or bits that fit a pattern with `?` for any bit.
bool sameValue(std::string_view value, std::string_view wanted);

/// Device cells by name, from one or several tables.
class CellTable {
  public:
    /// Adds the cells of a table, in front of those that are there already.
    /// @throws ReadError when @p text is no such table; @p name stands for it in the message.
    void add(std::string_view text, const std::string &name);

    /// Everything known under @p name, the likeliest first; null when nothing is.
    const std::vector<const CellDescription *> *find(std::string_view name) const;

  private:
    std::deque<std::pair<std::string, CellDescription>> m_cells;
    std::unordered_map<std::string_view, std::vector<const CellDescription *>> m_byName;
};

/// The cells of the families that the reader knows.
const CellTable &builtInCells();

} // namespace kvr::netlistdb::yosys
