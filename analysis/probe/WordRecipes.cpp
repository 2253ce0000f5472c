// Word-level operators of yosys.

#include "analysis/probe/RecipeBuilder.h"

#include <algorithm>
#include <unordered_map>

namespace kvr::netlistdb::analysis::probe {

namespace {

constexpr std::size_t WIDEST_NUMBER = 64; ///< bits that products and quotients are computed for

Slots shared(std::initializer_list<Slots> all)
{
    Slots slots;
    for (const Slots &some : all) {
        slots.insert(slots.end(), some.begin(), some.end());
    }
    return slots;
}

bool bothSigned(const RecipeBuilder &cell)
{
    return cell.flag("A_SIGNED") && (cell.port("B").empty() || cell.flag("B_SIGNED"));
}

/// All bits of Y but the lowest are 0.
Slot onlyBit(RecipeBuilder &cell)
{
    const Slots y = cell.port("Y");
    for (std::size_t at = 1; at < y.size(); ++at) {
        cell.join(y[at], SLOT_ZERO);
    }
    return y.front();
}

void bitwise(RecipeBuilder &cell, std::uint64_t table)
{
    const Slots y = cell.port("Y");
    const bool isSigned = bothSigned(cell);
    const Slots a = cell.extended("A", y.size(), isSigned);
    const Slots b = cell.extended("B", y.size(), isSigned);
    for (std::size_t at = 0; at < y.size(); ++at) {
        cell.lut({a[at], b[at]}, table, y[at]);
    }
}

void inverter(RecipeBuilder &cell)
{
    const Slots y = cell.port("Y");
    const Slots a = cell.extended("A", y.size(), cell.flag("A_SIGNED"));
    for (std::size_t at = 0; at < y.size(); ++at) {
        cell.lut({a[at]}, 1, y[at]);
    }
}

Part &reduction(RecipeBuilder &cell, Op op, const Slots &inputs, Slot output, bool negated)
{
    Part &part = cell.add(op, {inputs, {output}});
    part.inputs = static_cast<std::uint32_t>(inputs.size());
    part.flags = negated ? PART_NEGATED : 0;
    return part;
}

void reduce(RecipeBuilder &cell, Op op, bool negated)
{
    reduction(cell, op, cell.port("A"), onlyBit(cell), negated);
}

void logic(RecipeBuilder &cell, std::uint64_t table)
{
    const Slot a = cell.inner();
    const Slot b = cell.inner();
    reduction(cell, Op::Or, cell.port("A"), a, false);
    reduction(cell, Op::Or, cell.port("B"), b, false);
    cell.lut({a, b}, table, onlyBit(cell));
}

void sum(RecipeBuilder &cell, const Slots &a, const Slots &b, Slot carry, Slot invert)
{
    const Slots y = cell.port("Y");
    Part &part = cell.add(Op::Add, {a, b, {carry, invert}, y});
    part.width = static_cast<std::uint32_t>(y.size());
}

void addition(RecipeBuilder &cell, bool subtracts)
{
    const std::size_t width = cell.port("Y").size();
    const bool isSigned = bothSigned(cell);
    const Slot one = subtracts ? SLOT_ONE : SLOT_ZERO;
    sum(cell, cell.extended("A", width, isSigned), cell.extended("B", width, isSigned), one, one);
}

void negation(RecipeBuilder &cell)
{
    const std::size_t width = cell.port("Y").size();
    sum(cell, Slots(width, SLOT_ZERO), cell.extended("A", width, cell.flag("A_SIGNED")), SLOT_ONE, SLOT_ONE);
}

void alu(RecipeBuilder &cell)
{
    const Slots y = cell.port("Y");
    const bool isSigned = bothSigned(cell);
    const auto orInner = [&](Slots slots) {
        while (slots.size() < y.size()) {
            slots.push_back(cell.inner());
        }
        return slots;
    };
    Part &part = cell.add(Op::Add, {cell.extended("A", y.size(), isSigned),
                                    cell.extended("B", y.size(), isSigned),
                                    {cell.pin("CI", SLOT_ZERO), cell.pin("BI", SLOT_ZERO)},
                                    y,
                                    orInner(cell.port("X")),
                                    orInner(cell.port("CO"))});
    part.width = static_cast<std::uint32_t>(y.size());
    part.flags = PART_CARRIES;
}

void fullAdder(RecipeBuilder &cell)
{
    const Slots a = cell.port("A"), b = cell.port("B"), c = cell.port("C"), x = cell.port("X"), y = cell.port("Y");
    for (std::size_t at = 0; at < y.size() && at < a.size() && at < b.size() && at < c.size() && at < x.size(); ++at) {
        cell.lut({a[at], b[at], c[at]}, TABLE_XOR3, y[at]);
        cell.lut({a[at], b[at], c[at]}, TABLE_MAJORITY, x[at]);
    }
}

void lookAhead(RecipeBuilder &cell)
{
    const Slots p = cell.port("P"), g = cell.port("G"), co = cell.port("CO");
    Slot carry = cell.pin("CI", SLOT_ZERO);
    for (std::size_t at = 0; at < co.size() && at < p.size() && at < g.size(); ++at) {
        cell.lut({p[at], g[at], carry}, 0xEC, co[at]);
        carry = co[at];
    }
}

void compare(RecipeBuilder &cell, Op op, const char *left, const char *right, std::uint16_t flags)
{
    const std::size_t width = std::max(cell.port("A").size(), cell.port("B").size());
    const bool isSigned = bothSigned(cell);
    const Slots a = cell.extended(left, width, isSigned);
    const Slots b = cell.extended(right, width, isSigned);
    const Slot y = onlyBit(cell);
    Part &part = cell.add(op, {a, b, {y}});
    part.inputs = static_cast<std::uint32_t>(width);
    part.flags = static_cast<std::uint16_t>(flags | (isSigned ? PART_SIGNED : 0));
}

void shift(RecipeBuilder &cell, bool left, bool keepsSign)
{
    const Slots y = cell.port("Y");
    const bool isSigned = cell.flag("A_SIGNED");
    const std::size_t width = std::max(cell.port("A").size(), y.size());
    const Slots a = cell.extended("A", width, isSigned);
    const Slots amount = cell.port("B");
    const Slot fill = keepsSign && isSigned && !a.empty() ? a.back() : SLOT_ZERO;
    Part &part = cell.add(left ? Op::ShiftLeft : Op::ShiftRight, {a, amount, {fill}, y});
    part.inputs = static_cast<std::uint32_t>(width);
    part.selects = static_cast<std::uint32_t>(amount.size());
    part.width = static_cast<std::uint32_t>(y.size());
}

/// Bits of an amount beyond those that can move a bit of an operand of @p width to another place: where they differ
/// from the sign, everything has left the operand.
Slot takeFarBits(RecipeBuilder &cell, Slots &amount, std::size_t width, bool isSigned)
{
    std::size_t enough = isSigned ? 2 : 1;
    while ((std::size_t{1} << (enough - (isSigned ? 1 : 0))) < width) {
        ++enough;
    }
    if (amount.size() <= enough) {
        return SLOT_ZERO;
    }
    Slots far;
    for (std::size_t at = isSigned ? enough - 1 : enough; at < amount.size(); ++at) {
        far.push_back(isSigned ? cell.lut({amount[at], amount.back()}, TABLE_XOR) : amount[at]);
    }
    amount.resize(enough);
    const Slot isFar = cell.inner();
    reduction(cell, Op::Or, far, isFar, false);
    return isFar;
}

/// To the right by B, to the left when B is negative: first left by the weight of the sign, then right by the rest.
void indexedShift(RecipeBuilder &cell, Slot fill)
{
    const Slots y = cell.port("Y");
    Slots amount = cell.port("B");
    Slots a = cell.port("A");
    const bool isSigned = cell.flag("B_SIGNED") && !amount.empty();
    const std::size_t width = std::max(a.size(), y.size());
    const Slot isFar = takeFarBits(cell, amount, width, isSigned);
    a.resize(width, cell.flag("A_SIGNED") && fill == SLOT_ZERO && !a.empty() ? a.back() : fill);
    if (isSigned) {
        const std::size_t weight = std::size_t{1} << (amount.size() - 1);
        const Slot sign = amount.back();
        amount.pop_back();
        a.resize(width + weight, fill);
        Slots moved;
        for (std::size_t at = 0; at < a.size(); ++at) {
            moved.push_back(cell.lut({a[at], at >= weight ? a[at - weight] : fill, sign}, TABLE_CHOOSE));
        }
        a = moved;
    }
    Slots near;
    for (std::size_t at = 0; at < y.size(); ++at) {
        near.push_back(isFar == SLOT_ZERO ? y[at] : cell.inner());
    }
    Part &part = cell.add(Op::ShiftRight, {a, amount, {fill}, near});
    part.inputs = static_cast<std::uint32_t>(a.size());
    part.selects = static_cast<std::uint32_t>(amount.size());
    part.width = static_cast<std::uint32_t>(y.size());
    for (std::size_t at = 0; at < y.size() && isFar != SLOT_ZERO; ++at) {
        cell.lut({near[at], fill, isFar}, TABLE_CHOOSE, y[at]);
    }
}

void multiplexer(RecipeBuilder &cell)
{
    const Slots a = cell.port("A"), b = cell.port("B"), y = cell.port("Y");
    const Slots select = cell.port("S");
    for (std::size_t at = 0; at < y.size() && at < a.size() && at < b.size() && !select.empty(); ++at) {
        cell.lut({a[at], b[at], select.size() == 1 ? select.front() : select[std::min(at, select.size() - 1)]},
                 TABLE_CHOOSE, y[at]);
    }
}

void oneHot(RecipeBuilder &cell)
{
    const Slots y = cell.port("Y"), select = cell.port("S");
    Part &part = cell.add(Op::OneHot, {cell.port("A"), cell.port("B"), select, y});
    part.width = static_cast<std::uint32_t>(y.size());
    part.selects = static_cast<std::uint32_t>(select.size());
}

void addressed(RecipeBuilder &cell, Op op)
{
    const Slots y = cell.port("Y"), select = cell.port("S");
    Part &part = cell.add(op, {cell.port("A"), select, y});
    part.width = static_cast<std::uint32_t>(op == Op::Select ? y.size() : cell.port("A").size());
    part.inputs = static_cast<std::uint32_t>(select.size());
}

bool number(RecipeBuilder &cell, Op op, std::uint16_t flags)
{
    const Slots y = cell.port("Y");
    const bool isSigned = bothSigned(cell);
    const std::size_t width =
        op == Op::Multiply ? y.size() : std::max({y.size(), cell.port("A").size(), cell.port("B").size()});
    if (width > WIDEST_NUMBER) {
        return false;
    }
    Slots result = y;
    while (result.size() < width) {
        result.push_back(cell.inner());
    }
    Part &part = cell.add(op, {cell.extended("A", width, isSigned), cell.extended("B", width, isSigned), result});
    part.width = static_cast<std::uint32_t>(width);
    part.flags = static_cast<std::uint16_t>(flags | (isSigned ? PART_SIGNED : 0));
    return true;
}

bool table(RecipeBuilder &cell)
{
    const Slots a = cell.port("A");
    const std::string_view contents = cell.parameter("LUT");
    if (a.size() > 16) {
        return false;
    }
    const std::size_t places = std::size_t{1} << a.size();
    std::vector<std::uint64_t> words((places + 63) / 64, 0);
    for (std::size_t at = 0; at < places; ++at) {
        words[at / 64] |= std::uint64_t{bitOf(contents, at)} << at % 64;
    }
    if (a.size() <= 6) {
        cell.lut(a, words.front(), onlyBit(cell));
        return true;
    }
    Part &part = cell.add(Op::WideLut, {a, {onlyBit(cell)}});
    part.inputs = static_cast<std::uint32_t>(a.size());
    part.tables = words;
    return true;
}

void wiring(RecipeBuilder &cell, const Slots &from)
{
    const Slots y = cell.port("Y");
    for (std::size_t at = 0; at < y.size(); ++at) {
        cell.join(y[at], at < from.size() ? from[at] : SLOT_ZERO);
    }
}

void slice(RecipeBuilder &cell)
{
    const Slots a = cell.port("A");
    const std::size_t first = std::min<std::size_t>(cell.number("OFFSET"), a.size());
    wiring(cell, Slots(a.begin() + static_cast<std::ptrdiff_t>(first), a.end()));
}

using Build = bool (*)(RecipeBuilder &);

template <void (*build)(RecipeBuilder &)> bool done(RecipeBuilder &cell)
{
    build(cell);
    return true;
}

const std::unordered_map<std::string_view, Build> &builders()
{
    static const std::unordered_map<std::string_view, Build> all = {
        {"$not", done<inverter>},
        {"$and", [](RecipeBuilder &cell) { return bitwise(cell, TABLE_AND), true; }},
        {"$or", [](RecipeBuilder &cell) { return bitwise(cell, TABLE_OR), true; }},
        {"$xor", [](RecipeBuilder &cell) { return bitwise(cell, TABLE_XOR), true; }},
        {"$xnor", [](RecipeBuilder &cell) { return bitwise(cell, 9), true; }},
        {"$bweqx", [](RecipeBuilder &cell) { return bitwise(cell, 9), true; }},
        {"$reduce_and", [](RecipeBuilder &cell) { return reduce(cell, Op::And, false), true; }},
        {"$reduce_or", [](RecipeBuilder &cell) { return reduce(cell, Op::Or, false), true; }},
        {"$reduce_bool", [](RecipeBuilder &cell) { return reduce(cell, Op::Or, false), true; }},
        {"$reduce_xor", [](RecipeBuilder &cell) { return reduce(cell, Op::Xor, false), true; }},
        {"$reduce_xnor", [](RecipeBuilder &cell) { return reduce(cell, Op::Xor, true), true; }},
        {"$logic_not", [](RecipeBuilder &cell) { return reduce(cell, Op::Or, true), true; }},
        {"$logic_and", [](RecipeBuilder &cell) { return logic(cell, TABLE_AND), true; }},
        {"$logic_or", [](RecipeBuilder &cell) { return logic(cell, TABLE_OR), true; }},
        {"$add", [](RecipeBuilder &cell) { return addition(cell, false), true; }},
        {"$sub", [](RecipeBuilder &cell) { return addition(cell, true), true; }},
        {"$neg", done<negation>},
        {"$alu", done<alu>},
        {"$fa", done<fullAdder>},
        {"$lcu", done<lookAhead>},
        {"$eq", [](RecipeBuilder &cell) { return compare(cell, Op::Equal, "A", "B", 0), true; }},
        {"$eqx", [](RecipeBuilder &cell) { return compare(cell, Op::Equal, "A", "B", 0), true; }},
        {"$ne", [](RecipeBuilder &cell) { return compare(cell, Op::Equal, "A", "B", PART_NEGATED), true; }},
        {"$nex", [](RecipeBuilder &cell) { return compare(cell, Op::Equal, "A", "B", PART_NEGATED), true; }},
        {"$lt", [](RecipeBuilder &cell) { return compare(cell, Op::Less, "A", "B", 0), true; }},
        {"$le", [](RecipeBuilder &cell) { return compare(cell, Op::Less, "A", "B", PART_OR_EQUAL), true; }},
        {"$gt", [](RecipeBuilder &cell) { return compare(cell, Op::Less, "B", "A", 0), true; }},
        {"$ge", [](RecipeBuilder &cell) { return compare(cell, Op::Less, "B", "A", PART_OR_EQUAL), true; }},
        {"$shl", [](RecipeBuilder &cell) { return shift(cell, true, false), true; }},
        {"$sshl", [](RecipeBuilder &cell) { return shift(cell, true, false), true; }},
        {"$shr", [](RecipeBuilder &cell) { return shift(cell, false, false), true; }},
        {"$sshr", [](RecipeBuilder &cell) { return shift(cell, false, true), true; }},
        {"$shift", [](RecipeBuilder &cell) { return indexedShift(cell, SLOT_ZERO), true; }},
        {"$shiftx", [](RecipeBuilder &cell) { return indexedShift(cell, SLOT_UNKNOWN), true; }},
        {"$mux", done<multiplexer>},
        {"$bwmux", done<multiplexer>},
        {"$pmux", done<oneHot>},
        {"$bmux", [](RecipeBuilder &cell) { return addressed(cell, Op::Select), true; }},
        {"$demux", [](RecipeBuilder &cell) { return addressed(cell, Op::Distribute), true; }},
        {"$mul", [](RecipeBuilder &cell) { return number(cell, Op::Multiply, 0); }},
        {"$div", [](RecipeBuilder &cell) { return number(cell, Op::Divide, 0); }},
        {"$mod", [](RecipeBuilder &cell) { return number(cell, Op::Divide, PART_REMAINDER); }},
        {"$divfloor", [](RecipeBuilder &cell) { return number(cell, Op::Divide, PART_FLOOR); }},
        {"$modfloor", [](RecipeBuilder &cell) { return number(cell, Op::Divide, PART_REMAINDER | PART_FLOOR); }},
        {"$lut", table},
        {"$slice", done<slice>},
        {"$pos",
         [](RecipeBuilder &cell) {
             return wiring(cell, cell.extended("A", cell.port("Y").size(), cell.flag("A_SIGNED"))), true;
         }},
        {"$buf", [](RecipeBuilder &cell) { return wiring(cell, cell.port("A")), true; }},
        {"$concat",
         [](RecipeBuilder &cell) {
             return wiring(cell, shared({cell.port("A"), cell.port("B")})), true;
         }},
        {"$tribuf",
         [](RecipeBuilder &cell) {
             const Slots a = cell.port("A"), y = cell.port("Y");
             for (std::size_t at = 0; at < y.size() && at < a.size(); ++at) {
                 cell.lut({SLOT_UNKNOWN, a[at], cell.pin("EN", SLOT_ONE)}, TABLE_CHOOSE, y[at]);
             }
             return true;
         }},
    };
    return all;
}

} // namespace

bool addWordOperator(RecipeBuilder &cell)
{
    const auto found = builders().find(cell.type());
    // Carries are the only result that is not called Y.
    const char *const result = cell.type() == "$lcu" ? "CO" : "Y";
    return found != builders().end() && !cell.port(result).empty() && found->second(cell);
}

} // namespace kvr::netlistdb::analysis::probe
