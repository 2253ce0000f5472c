#include "CellTable.h"

#include "BuiltInFamilies.h"
#include "Digits.h"
#include "YosysReader.h"

#include <algorithm>
#include <array>
#include <simdjson.h>

namespace kvr::netlistdb::yosys {

namespace {

namespace dom = simdjson::dom;

struct KindName {
    CellKind kind;
    const char *name;
};
constexpr std::array<KindName, 19> KINDS = {{{CellKind::FlipFlop, "flip-flop"},
                                             {CellKind::Latch, "latch"},
                                             {CellKind::Memory, "memory"},
                                             {CellKind::Dsp, "dsp"},
                                             {CellKind::ShiftRegister, "shift-register"},
                                             {CellKind::Ddr, "ddr"},
                                             {CellKind::LogicCell, "logic-cell"},
                                             {CellKind::ClockBuffer, "clock-buffer"},
                                             {CellKind::ClockGate, "clock-gate"},
                                             {CellKind::ClockMux, "clock-mux"},
                                             {CellKind::ClockDivider, "clock-divider"},
                                             {CellKind::Pll, "pll"},
                                             {CellKind::Oscillator, "oscillator"},
                                             {CellKind::Carry, "carry"},
                                             {CellKind::Lut, "lut"},
                                             {CellKind::Io, "io"},
                                             {CellKind::Constant, "constant"},
                                             {CellKind::Logic, "logic"},
                                             {CellKind::HardBlock, "hard-block"}}};

/// @p pattern as in PinPatterns. Patterns come from tables that people write: a `*` inside a pattern is rare and short.
bool fits(std::string_view text, std::string_view pattern)
{
    while (!pattern.empty() && pattern.front() != '*') {
        if (text.empty()) {
            return false;
        }
        if (pattern.front() == '#') {
            if (!isDigit(text.front())) {
                return false;
            }
            while (!text.empty() && isDigit(text.front())) {
                text.remove_prefix(1);
            }
        } else if (pattern.front() == text.front()) {
            text.remove_prefix(1);
        } else {
            return false;
        }
        pattern.remove_prefix(1);
    }
    if (pattern.empty()) {
        return text.empty();
    }
    pattern.remove_prefix(1);
    for (std::size_t skipped = 0; skipped <= text.size(); ++skipped) {
        if (fits(text.substr(skipped), pattern)) {
            return true;
        }
    }
    return false;
}

/// Reads one table; keeps its position for messages.
class TableReader {
  public:
    explicit TableReader(const std::string &file) : m_file(file) {}

    std::deque<std::pair<std::string, CellDescription>> read(std::string_view text)
    {
        dom::parser parser;
        dom::element root;
        const simdjson::padded_string padded(text);
        const simdjson::error_code error = parser.parse(padded).get(root);
        if (error == simdjson::MEMALLOC) {
            throw std::bad_alloc();
        }
        if (error != simdjson::SUCCESS) {
            fail(std::string("not valid JSON: ") + simdjson::error_message(error));
        }
        const dom::object table = object(root, "the table");
        if (textOf(table, "format") != "netlistdb-cells") {
            fail("no table of cells: \"format\" must be \"netlistdb-cells\"");
        }
        std::int64_t version = 0;
        if (table["version"].get(version) != simdjson::SUCCESS || version != 1) {
            fail("\"version\" must be 1");
        }
        m_family = textOf(table, "family");
        if (m_family.empty()) {
            fail("the table has no \"family\"");
        }
        if (table["self_describing"].get(m_selfDescribing) != simdjson::SUCCESS) {
            m_selfDescribing = false;
        }
        dom::element cells;
        if (table["cells"].get(cells) != simdjson::SUCCESS) {
            fail("the table has no \"cells\"");
        }
        std::deque<std::pair<std::string, CellDescription>> described;
        for (const auto field : object(cells, "\"cells\"")) {
            m_cell = field.key;
            described.emplace_back(std::string(field.key), describe(object(field.value, "the cell")));
        }
        return described;
    }

  private:
    [[noreturn]] void fail(const std::string &fault) const
    {
        throw ReadError(m_file + ": " + (m_cell.empty() ? "" : "cell '" + m_cell + "': ") + fault);
    }

    dom::object object(dom::element element, const char *what) const
    {
        dom::object result;
        if (element.get(result) != simdjson::SUCCESS) {
            fail(std::string(what) + " must be an object");
        }
        return result;
    }

    std::string textOf(const dom::object &object, const char *key) const
    {
        dom::element element;
        if (object[key].get(element) != simdjson::SUCCESS) {
            return {};
        }
        std::string_view text;
        if (element.get(text) != simdjson::SUCCESS) {
            fail("\"" + std::string(key) + "\" must be a text");
        }
        return std::string(text);
    }

    /// A number or a text, as a text.
    std::string value(dom::element element) const
    {
        std::int64_t number = 0;
        if (element.get(number) == simdjson::SUCCESS) {
            return std::to_string(number);
        }
        std::string_view text;
        if (element.get(text) != simdjson::SUCCESS) {
            fail("the value of a parameter must be a number or a text");
        }
        return std::string(text);
    }

    CellCondition condition(dom::element element) const
    {
        CellCondition result;
        for (const auto field : object(element, "a condition")) {
            std::vector<std::string> values;
            dom::array list;
            if (field.value.get(list) == simdjson::SUCCESS) {
                for (const dom::element each : list) {
                    values.push_back(value(each));
                }
            } else {
                values.push_back(value(field.value));
            }
            result.emplace_back(std::string(field.key), std::move(values));
        }
        return result;
    }

    std::vector<CellCondition> conditions(const dom::object &clock, const char *key) const
    {
        std::vector<CellCondition> result;
        dom::element element;
        if (clock[key].get(element) != simdjson::SUCCESS) {
            return result;
        }
        dom::array list;
        if (element.get(list) == simdjson::SUCCESS) {
            for (const dom::element each : list) {
                result.push_back(condition(each));
            }
        } else {
            result.push_back(condition(element));
        }
        return result;
    }

    CellClock clock(const dom::object &described) const
    {
        CellClock result;
        result.pin = textOf(described, "pin");
        if (result.pin.empty()) {
            fail("a clock has no \"pin\"");
        }
        const std::string edge = textOf(described, "edge");
        if (edge == "fall") {
            result.edge = ClockEdge::Fall;
        } else if (edge == "both") {
            result.edge = ClockEdge::Both;
        } else if (!edge.empty() && edge != "rise") {
            fail("\"edge\" must be \"rise\", \"fall\" or \"both\", not \"" + edge + "\"");
        }
        result.outputs = PinPatterns(textOf(described, "outputs"));
        result.when = conditions(described, "when");
        result.unless = conditions(described, "unless");
        dom::element inverted;
        if (described["inverted"].get(inverted) == simdjson::SUCCESS) {
            result.inverted = condition(inverted);
        }
        return result;
    }

    CellDescription describe(const dom::object &cell) const
    {
        CellDescription result;
        result.family = m_family;
        result.selfDescribing = m_selfDescribing;
        const std::string kind = textOf(cell, "kind");
        const auto known =
            std::find_if(KINDS.begin(), KINDS.end(), [&](const KindName &each) { return kind == each.name; });
        if (known == KINDS.end()) {
            fail(kind.empty() ? "it has no \"kind\"" : "unknown kind \"" + kind + "\"");
        }
        result.kind = known->kind;
        dom::element clocks;
        if (cell["clocks"].get(clocks) == simdjson::SUCCESS) {
            dom::array list;
            if (clocks.get(list) != simdjson::SUCCESS) {
                fail("\"clocks\" must be a list");
            }
            for (const dom::element each : list) {
                result.clocks.push_back(clock(object(each, "a clock")));
            }
        }
        result.read = PinPatterns(textOf(cell, "read"));
        result.input = textOf(cell, "input");
        result.enable = PinPatterns(textOf(cell, "enable"));
        result.set = PinPatterns(textOf(cell, "set"));
        result.reset = PinPatterns(textOf(cell, "reset"));
        dom::element defaults;
        if (cell["defaults"].get(defaults) == simdjson::SUCCESS) {
            for (const auto field : object(defaults, "\"defaults\"")) {
                result.defaults.emplace(std::string(field.key), value(field.value));
            }
        }
        return result;
    }

    const std::string &m_file;
    std::string m_cell;
    std::string m_family;
    bool m_selfDescribing = false;
};

} // namespace

const char *nameOf(CellKind kind)
{
    return std::find_if(KINDS.begin(), KINDS.end(), [&](const KindName &each) { return each.kind == kind; })->name;
}

PinPatterns::PinPatterns(std::string_view text)
{
    while (!text.empty()) {
        const std::size_t blank = std::min(text.find(' '), text.size());
        if (blank > 0) {
            m_patterns.emplace_back(text.substr(0, blank));
        }
        text.remove_prefix(std::min(blank + 1, text.size()));
    }
}

std::size_t PinPatterns::place(std::string_view pin) const
{
    const auto fitting = std::find_if(m_patterns.begin(), m_patterns.end(),
                                      [&](const std::string &pattern) { return fits(pin, pattern); });
    return static_cast<std::size_t>(fitting - m_patterns.begin());
}

bool sameValue(std::string_view value, std::string_view wanted)
{
    while (!value.empty() && value.back() == ' ') {
        value.remove_suffix(1);
    }
    if (value == wanted) {
        return true;
    }
    if (value.empty() || wanted.empty()) {
        return false;
    }
    if (wanted.find('?') != std::string_view::npos) {
        for (std::size_t place = 0; place < std::max(value.size(), wanted.size()); ++place) {
            const char bit = place < value.size() ? value[value.size() - 1 - place] : '0';
            const char want = place < wanted.size() ? wanted[wanted.size() - 1 - place] : '?';
            if (want != '?' && want != bit) {
                return false;
            }
        }
        return true;
    }
    const auto number = [](std::string_view text, unsigned base, std::uint64_t &result) {
        result = 0;
        for (const char c : text) {
            if (!isDigit(c) || static_cast<unsigned>(c - '0') >= base) {
                return false;
            }
            result = result * base + static_cast<unsigned>(c - '0');
        }
        return true;
    };
    std::uint64_t left = 0;
    std::uint64_t right = 0;
    return (number(value, 2, left) || number(value, 10, left)) && number(wanted, 10, right) && left == right;
}

void CellTable::add(std::string_view text, const std::string &name)
{
    TableReader reader(name);
    std::deque<std::pair<std::string, CellDescription>> cells = reader.read(text);
    for (auto &cell : cells) {
        m_cells.push_back(std::move(cell));
        std::vector<const CellDescription *> &known = m_byName[m_cells.back().first];
        // Cells without clocks fit anything that has their name: they are tried last.
        const CellDescription *added = &m_cells.back().second;
        known.insert(added->clocks.empty() && added->input.empty() ? known.end() : known.begin(), added);
    }
}

const std::vector<const CellDescription *> *CellTable::find(std::string_view name) const
{
    const auto found = m_byName.find(name);
    return found != m_byName.end() ? &found->second : nullptr;
}

const CellTable &builtInCells()
{
    static const CellTable cells = [] {
        CellTable table;
        for (const auto &[name, text] : builtInFamilies()) {
            table.add(text, std::string(name));
        }
        return table;
    }();
    return cells;
}

} // namespace kvr::netlistdb::yosys
