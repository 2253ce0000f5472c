#pragma once

#include "analysis/CellModel.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Verific {
class Instance;
class Netlist;
class Port;
} // namespace Verific

namespace kvr::netlistdb::analysis {

/// The models of all leaf cells, one for each view and each set of parameters that makes a difference.
class CellModels {
  public:
    /// The place of the model of @p instance, a leaf.
    std::uint32_t modelOf(const Verific::Instance &instance);
    const CellModel &operator[](std::uint32_t model) const { return m_models[model]; }
    std::size_t size() const { return m_models.size(); }
    /// Whether instances of @p view are leaves: nothing is known of their inside, or nothing needs to be.
    static bool isLeaf(const Verific::Netlist *view);
    /// A cell that was read as several instances, one for each of its clocks: the first of them, which has the cell's
    /// name, parameters and inputs, when @p instance is one of the others. Otherwise null.
    static const Verific::Instance *firstPartOf(const Verific::Instance &instance);
    /// Forgets what only modelOf() needs.
    void finish();
    std::size_t memory() const;

  private:
    struct View {
        std::vector<std::string> parameters; ///< that make a difference
        bool mayBorrow = false;              ///< the first part of the cell makes a difference
        bool shifts = false;                 ///< the value on the pins B makes a difference
        std::uint32_t latest = NONE;         ///< the model of the latest instance
        std::string_view latestCellName;     ///< its device cell
        std::string latestKey;               ///< all that made a difference
        std::unordered_map<std::string, std::uint32_t> variants;
    };

    std::deque<CellModel> m_models;
    std::unordered_map<const Verific::Netlist *, View> m_views;
    std::string m_key;
};

} // namespace kvr::netlistdb::analysis
