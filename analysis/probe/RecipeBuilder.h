#pragma once

#include "analysis/ModelBuilder.h"
#include "analysis/probe/Recipe.h"

#include <string_view>

namespace kvr::netlistdb::analysis::probe {

using Slots = std::vector<Slot>;

/// Puts a recipe together from the pins and parameters of a cell.
class RecipeBuilder {
  public:
    RecipeBuilder(const ModelBuilder &cell, Recipe &recipe) : m_cell(cell), m_recipe(recipe) {}

    const ModelBuilder &cell() const { return m_cell; }
    std::string_view type() const { return m_cell.type(); }
    std::string_view parameter(const char *name) const { return m_cell.parameter(name); }
    bool flag(const char *name) const { return isNonZero(m_cell.parameter(name)); }
    std::uint32_t number(const char *name) const
    {
        return static_cast<std::uint32_t>(numberOf(m_cell.parameter(name)));
    }

    /// The bits of a port, the lowest first.
    Slots port(std::string_view name) const;
    /// A port of one bit, or @p missing.
    Slot pin(std::string_view name, Slot missing) const;
    /// The bits of a port, extended or cut to @p width.
    Slots extended(std::string_view name, std::size_t width, bool isSigned) const;
    Slot inner() { return innerSlot(static_cast<std::int32_t>(m_recipe.innerNets++)); }

    Part &add(Op op, std::initializer_list<Slots> slots);
    void join(Slot output, Slot input) { m_recipe.joins.emplace_back(output, input); }
    void lut(const Slots &inputs, std::uint64_t table, Slot output);
    Slot lut(const Slots &inputs, std::uint64_t table)
    {
        const Slot output = inner();
        lut(inputs, table, output);
        return output;
    }
    Slot inverted(Slot slot) { return lut({slot}, 1); }
    Slot invertedIf(bool inverts, Slot slot) { return inverts ? inverted(slot) : slot; }
    /// A flip-flop of one clock without any control.
    void flipFlop(Slot clock, bool falls, Slot d, Slot q, char start);
    Recipe &recipe() { return m_recipe; }

  private:
    const ModelBuilder &m_cell;
    Recipe &m_recipe;
};

/// Tables of look-up tables: the first input is the lowest bit of the place.
constexpr std::uint64_t TABLE_AND = 8;
constexpr std::uint64_t TABLE_OR = 14;
constexpr std::uint64_t TABLE_XOR = 6;
constexpr std::uint64_t TABLE_CHOOSE = 0xCA; ///< third input ? second : first
constexpr std::uint64_t TABLE_MAJORITY = 0xE8;
constexpr std::uint64_t TABLE_XOR3 = 0x96;

/// Builds the recipe of a word-level operator of yosys; false when it is none that is known.
bool addWordOperator(RecipeBuilder &cell);
/// Of a flip-flop or latch of yosys, at word level.
bool addWordRegister(RecipeBuilder &cell);
/// Of a memory of yosys, or one of its ports.
bool addWordMemory(RecipeBuilder &cell);
/// Of a gate of yosys: `$_AND_`, `$_DFF_P_`, and so on.
bool addGate(RecipeBuilder &cell);
/// Of a cell of the KVR library.
bool addKvrCell(RecipeBuilder &cell);
/// Of a cell of another device.
bool addDeviceCell(RecipeBuilder &cell);

} // namespace kvr::netlistdb::analysis::probe
