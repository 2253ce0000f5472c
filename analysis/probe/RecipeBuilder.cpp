#include "analysis/probe/RecipeBuilder.h"

namespace kvr::netlistdb::analysis::probe {

Slots RecipeBuilder::port(std::string_view name) const
{
    Slots slots;
    for (const std::uint32_t pin : m_cell.port(name)) {
        slots.push_back(static_cast<Slot>(pin));
    }
    return slots;
}

Slot RecipeBuilder::pin(std::string_view name, Slot missing) const
{
    const PinList &pins = m_cell.port(name);
    return pins.empty() ? missing : static_cast<Slot>(pins.front());
}

Slots RecipeBuilder::extended(std::string_view name, std::size_t width, bool isSigned) const
{
    Slots slots = port(name);
    const Slot fill = isSigned && !slots.empty() ? slots.back() : SLOT_ZERO;
    slots.resize(width, fill);
    return slots;
}

Part &RecipeBuilder::add(Op op, std::initializer_list<Slots> slots)
{
    Part &part = m_recipe.parts.emplace_back();
    part.op = op;
    for (const Slots &some : slots) {
        part.slots.insert(part.slots.end(), some.begin(), some.end());
    }
    return part;
}

void RecipeBuilder::lut(const Slots &inputs, std::uint64_t table, Slot output)
{
    Part &part = add(Op::Lut, {inputs, {output}});
    part.inputs = static_cast<std::uint32_t>(inputs.size());
    part.table = table;
}

void RecipeBuilder::flipFlop(Slot clock, bool falls, Slot d, Slot q, char start)
{
    Part &part = add(Op::FlipFlop, {{clock, SLOT_ONE, SLOT_ZERO, SLOT_ZERO, d, q}});
    part.flags = falls ? PART_FALLING : 0;
    part.reset = "x";
    part.start = std::string(1, start);
}

} // namespace kvr::netlistdb::analysis::probe
