#include "analysis/probe/Logic.h"

#include "analysis/probe/Numbers.h"

#include <utility>

namespace kvr::netlistdb::analysis::probe {

namespace {

/// Room for lanes, on the stack unless there are many.
class Room {
  public:
    explicit Room(std::size_t size) : m_large(size > FEW ? size : 0), m_data(size > FEW ? m_large.data() : m_small) {}
    Room(const Room &) = delete;
    Room &operator=(const Room &) = delete;
    Lanes &operator[](std::size_t at) { return m_data[at]; }

  private:
    static constexpr std::size_t FEW = 64;
    Lanes m_small[FEW];
    std::vector<Lanes> m_large;
    Lanes *m_data;
};

/// A table of six inputs at most. Pairs of its bits are 0, 1, the first input or its inverse; the other inputs choose
/// among them.
Lanes lookUp(std::uint64_t table, Span<Signal> inputs, const std::vector<Lanes> &values)
{
    if (inputs.empty()) {
        return (table & 1) != 0 ? ONE : ZERO;
    }
    const Lanes first = values[inputs[0]];
    const Lanes choices[4] = {ZERO, ~first, first, ONE};
    if (inputs.size() == 1) {
        return choices[table & 3];
    }
    Lanes level[32];
    std::size_t count = std::size_t{1} << (inputs.size() - 1);
    for (std::size_t at = 0; at < count; ++at) {
        level[at] = choices[table >> 2 * at & 3];
    }
    for (std::size_t input = 1; input < inputs.size(); ++input) {
        const Lanes select = values[inputs[input]];
        count /= 2;
        for (std::size_t at = 0; at < count; ++at) {
            level[at] = choose(select, level[2 * at], level[2 * at + 1]);
        }
    }
    return level[0];
}

/// The same where every input is known in every run: half the work.
bool lookUpKnown(std::uint64_t table, Span<Signal> inputs, const std::vector<Lanes> &values, Lanes &result)
{
    std::uint64_t in[6];
    std::uint64_t known = ALL_LANES;
    for (std::size_t input = 0; input < inputs.size(); ++input) {
        const Lanes &value = values[inputs[input]];
        known &= value.known();
        in[input] = value.one;
    }
    if (known != ALL_LANES || inputs.size() < 2) {
        return false;
    }
    const std::uint64_t choices[4] = {0, ~in[0], in[0], ALL_LANES};
    std::uint64_t level[32];
    std::size_t count = std::size_t{1} << (inputs.size() - 1);
    for (std::size_t at = 0; at < count; ++at) {
        level[at] = choices[table >> 2 * at & 3];
    }
    for (std::size_t input = 1; input < inputs.size(); ++input) {
        count /= 2;
        for (std::size_t at = 0; at < count; ++at) {
            level[at] = level[2 * at] ^ ((level[2 * at] ^ level[2 * at + 1]) & in[input]);
        }
    }
    result = lanesOf(level[0]);
    return true;
}

Lanes lookUpWide(const std::vector<std::uint64_t> &tables, Span<Signal> inputs, const std::vector<Lanes> &values)
{
    const Span<Signal> narrow(inputs.begin(), inputs.begin() + 6);
    std::vector<Lanes> level;
    level.reserve(tables.size());
    for (const std::uint64_t table : tables) {
        level.push_back(lookUp(table, narrow, values));
    }
    for (std::size_t input = 6; input < inputs.size(); ++input) {
        for (std::size_t at = 0; 2 * at + 1 < level.size(); ++at) {
            level[at] = choose(values[inputs[input]], level[2 * at], level[2 * at + 1]);
        }
        level.resize((level.size() + 1) / 2);
    }
    return level.front();
}

Lanes reduced(Op op, Span<Signal> inputs, const std::vector<Lanes> &values)
{
    Lanes result = op == Op::And ? ONE : ZERO;
    for (const Signal input : inputs) {
        result = op == Op::And  ? result & values[input]
                 : op == Op::Or ? result | values[input]
                                : result ^ values[input];
    }
    return result;
}

void add(const Part &part, Span<Signal> in, Span<Signal> out, std::vector<Lanes> &values)
{
    const std::size_t width = part.width;
    Lanes carry = values[in[2 * width]];
    const Lanes invert = values[in[2 * width + 1]];
    for (std::size_t at = 0; at < width; ++at) {
        const Lanes a = values[in[at]];
        const Lanes b = values[in[width + at]] ^ invert;
        const Lanes half = a ^ b;
        const Lanes sum = half ^ carry;
        carry = (a & b) | (carry & (a | b));
        values[out[at]] = sum;
        if (part.has(PART_CARRIES)) {
            values[out[width + at]] = half;
            values[out[2 * width + at]] = carry;
        }
    }
}

Lanes less(const Part &part, Span<Signal> in, const std::vector<Lanes> &values)
{
    Lanes result = part.has(PART_OR_EQUAL) ? ONE : ZERO;
    for (std::size_t at = 0; at < part.inputs; ++at) {
        Lanes a = values[in[at]];
        Lanes b = values[in[part.inputs + at]];
        if (part.has(PART_SIGNED) && at + 1 == part.inputs) {
            std::swap(a, b);
        }
        result = (~a & b) | (~(a ^ b) & result);
    }
    return result;
}

void shift(const Part &part, Span<Signal> in, Span<Signal> out, std::vector<Lanes> &values)
{
    const std::size_t width = part.inputs;
    const Lanes fill = values[in[width + part.selects]];
    Room bits(width);
    for (std::size_t at = 0; at < width; ++at) {
        bits[at] = values[in[at]];
    }
    for (std::size_t select = 0; select < part.selects; ++select) {
        const Lanes by = values[in[width + select]];
        const std::size_t distance = select < 32 ? std::size_t{1} << select : width;
        if (part.op == Op::ShiftLeft) {
            for (std::size_t at = width; at-- > 0;) {
                bits[at] = choose(by, bits[at], at >= distance ? bits[at - distance] : fill);
            }
        } else {
            for (std::size_t at = 0; at < width; ++at) {
                bits[at] = choose(by, bits[at], at + distance < width ? bits[at + distance] : fill);
            }
        }
    }
    for (std::size_t at = 0; at < out.size(); ++at) {
        values[out[at]] = bits[at];
    }
}

/// More than one select at a time is for the netlist to leave open: known is only what all words agree on.
void oneHot(const Part &part, Span<Signal> in, Span<Signal> out, std::vector<Lanes> &values)
{
    const std::size_t width = part.width;
    const Signal *const selects = in.begin() + width * (part.selects + 1);
    Lanes any = ZERO;
    std::uint64_t several = 0;
    for (std::size_t select = 0; select < part.selects; ++select) {
        const Lanes each = values[selects[select]];
        several |= any.one & each.one;
        any = any | each;
    }
    for (std::size_t at = 0; at < width; ++at) {
        Lanes chosen = ZERO;
        Lanes common = values[in[at]];
        for (std::size_t select = 0; select < part.selects; ++select) {
            const Lanes word = values[in[width * (select + 1) + at]];
            chosen = chosen | (values[selects[select]] & word);
            common = {common.zero | word.zero, common.one | word.one};
        }
        values[out[at]] = inLanes(several, common, choose(any, values[in[at]], chosen));
    }
}

void select(const Part &part, Span<Signal> in, Span<Signal> out, std::vector<Lanes> &values)
{
    const std::size_t words = std::size_t{1} << part.inputs;
    Room level(words);
    for (std::size_t at = 0; at < part.width; ++at) {
        for (std::size_t word = 0; word < words; ++word) {
            level[word] = values[in[word * part.width + at]];
        }
        for (std::size_t bit = 0; bit < part.inputs; ++bit) {
            for (std::size_t word = 0; word < words >> (bit + 1); ++word) {
                level[word] = choose(values[in[words * part.width + bit]], level[2 * word], level[2 * word + 1]);
            }
        }
        values[out[at]] = level[0];
    }
}

void distribute(const Part &part, Span<Signal> in, Span<Signal> out, std::vector<Lanes> &values)
{
    for (std::size_t word = 0; word < std::size_t{1} << part.inputs; ++word) {
        Lanes chosen = ONE;
        for (std::size_t bit = 0; bit < part.inputs; ++bit) {
            const Lanes address = values[in[part.width + bit]];
            chosen = chosen & ((word >> bit & 1) != 0 ? address : ~address);
        }
        for (std::size_t at = 0; at < part.width; ++at) {
            values[out[word * part.width + at]] = chosen & values[in[at]];
        }
    }
}

std::int64_t signExtended(std::uint64_t value, std::uint32_t width)
{
    const std::uint32_t shift = 64 - width;
    return static_cast<std::int64_t>(value << shift) >> shift;
}

std::uint64_t quotient(const Part &part, std::uint64_t left, std::uint64_t right)
{
    if (!part.has(PART_SIGNED)) {
        return part.has(PART_REMAINDER) ? left % right : left / right;
    }
    const std::int64_t a = signExtended(left, part.width);
    const std::int64_t b = signExtended(right, part.width);
    if (b == -1) {
        return part.has(PART_REMAINDER) ? 0 : ~left + 1;
    }
    std::int64_t divided = a / b;
    std::int64_t rest = a % b;
    if (part.has(PART_FLOOR) && rest != 0 && (rest < 0) != (b < 0)) {
        --divided;
        rest += b;
    }
    return static_cast<std::uint64_t>(part.has(PART_REMAINDER) ? rest : divided);
}

void calculate(const Part &part, Span<Signal> in, Span<Signal> out, std::vector<Lanes> &values)
{
    Numbers a;
    Numbers b;
    const auto second = in.begin() + part.width;
    std::uint64_t known = numbersOf(values, {in.begin(), second}, {second, second + part.width}, a, b);
    for (std::size_t lane = 0; lane < 64; ++lane) {
        if (part.op == Op::Multiply) {
            a[lane] *= b[lane];
        } else if (b[lane] == 0) {
            known &= ~(std::uint64_t{1} << lane);
        } else {
            a[lane] = quotient(part, a[lane], b[lane]);
        }
    }
    spread(a, known, out, values);
}

} // namespace

void evaluate(const Part &part, Span<Signal> in, Span<Signal> out, std::vector<Lanes> &values)
{
    switch (part.op) {
    case Op::Lut: {
        Lanes result;
        values[out[0]] = lookUpKnown(part.table, in, values, result) ? result : lookUp(part.table, in, values);
        return;
    }
    case Op::WideLut:
        values[out[0]] = lookUpWide(part.tables, in, values);
        return;
    case Op::And:
    case Op::Or:
    case Op::Xor: {
        const Lanes result = reduced(part.op, in, values);
        values[out[0]] = part.has(PART_NEGATED) ? ~result : result;
        return;
    }
    case Op::Add:
        add(part, in, out, values);
        return;
    case Op::Equal: {
        Lanes same = ONE;
        for (std::size_t at = 0; at < part.inputs; ++at) {
            same = same & ~(values[in[at]] ^ values[in[part.inputs + at]]);
        }
        values[out[0]] = part.has(PART_NEGATED) ? ~same : same;
        return;
    }
    case Op::Less:
        values[out[0]] = less(part, in, values);
        return;
    case Op::ShiftLeft:
    case Op::ShiftRight:
        shift(part, in, out, values);
        return;
    case Op::OneHot:
        oneHot(part, in, out, values);
        return;
    case Op::Select:
        select(part, in, out, values);
        return;
    case Op::Distribute:
        distribute(part, in, out, values);
        return;
    case Op::Multiply:
    case Op::Divide:
        calculate(part, in, out, values);
        return;
    default:
        return;
    }
}

} // namespace kvr::netlistdb::analysis::probe
