#pragma once

#include "analysis/probe/BitGraph.h"
#include "analysis/probe/Lanes.h"

#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis::probe {

/// Logic laid out for being evaluated again and again. Look-up tables, and gates that are taken for such, stand in
/// batches of one number of inputs that do not depend on each other. Batches hold what is close together in the
/// netlist, so that its values stay in the cache.
class LogicProgram {
  public:
    LogicProgram() = default;
    /// @p order holds logic, each node behind those that it depends on. Nodes whose outputs are in @p special
    /// (by signal; may be empty) are left to the caller.
    LogicProgram(const BitGraph &graph, const std::vector<std::uint32_t> &order, const std::vector<bool> &special);

    /// Evaluates all nodes; calls @p other with those that are no tables when their inputs are there.
    template <typename Other> void run(std::vector<Lanes> &values, Other other) const
    {
        const std::uint64_t *table = m_tables.data();
        const Signal *pins = m_pins.data();
        const Step *step = m_others.data();
        for (const Batch &batch : m_batches) {
            if (batch.inputs != OTHERS) {
                lookUp(batch, table, pins, values.data());
                table += batch.count;
                pins += std::size_t{batch.count} * (batch.inputs + 1);
                continue;
            }
            for (const Step *const end = step + batch.count; step != end; ++step) {
                other(*step);
            }
        }
    }

  private:
    static constexpr std::uint32_t OTHERS = 0;
    struct Batch {
        std::uint32_t inputs; ///< of each table, or OTHERS
        std::uint32_t count;
    };

    static void lookUp(const Batch &batch, const std::uint64_t *table, const Signal *pins, Lanes *values);
    void addBatch(const BitGraph &graph, const std::vector<std::uint32_t> &nodes, std::uint32_t inputs);

    std::vector<Batch> m_batches;
    std::vector<std::uint64_t> m_tables;
    std::vector<Signal> m_pins; ///< of each table its output, then its inputs
    std::vector<Step> m_others;
};

} // namespace kvr::netlistdb::analysis::probe
