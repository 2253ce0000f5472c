#pragma once

#include "analysis/probe/Recipe.h"

#include <cstdint>
#include <deque>
#include <unordered_map>

namespace Verific {
class Instance;
}

namespace kvr::netlistdb::analysis::probe {

/// The recipes of all leaf cells: one for each view and set of parameters.
class RecipeTable {
  public:
    /// The number of the recipe of @p instance, a leaf with a view, of kind @p kind as the clock model has it.
    std::uint32_t recipeOf(const Verific::Instance &instance, CellKind kind);
    const Recipe &operator[](std::uint32_t recipe) const { return m_recipes[recipe]; }
    std::size_t size() const { return m_recipes.size(); }

  private:
    std::deque<Recipe> m_recipes;
    std::unordered_map<std::uint64_t, std::uint32_t> m_known; ///< by hash of view and parameters
};

} // namespace kvr::netlistdb::analysis::probe
