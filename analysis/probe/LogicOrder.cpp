#include "analysis/probe/LogicOrder.h"

#include "analysis/probe/Users.h"

namespace kvr::netlistdb::analysis::probe {

namespace {

/// Kahn's algorithm.
class LogicSort {
  public:
    explicit LogicSort(const BitGraph &graph)
        : m_graph(graph), m_users(graph), m_waitsFor(graph.nodes.size(), 0), m_isDone(graph.nodes.size(), false)
    {
    }

    std::vector<std::uint32_t> run()
    {
        for (std::uint32_t node = 0; node < m_graph.nodes.size(); ++node) {
            if (isLogic(node)) {
                eachDriver(node, [&](std::uint32_t) { ++m_waitsFor[node]; });
                if (m_waitsFor[node] == 0) {
                    m_open.push_back(node);
                }
            }
        }
        drain();
        breakLoops();
        drain();
        return std::move(m_order);
    }

  private:
    bool isLogic(std::uint32_t node) const { return m_graph.partOf(m_graph.nodes[node]).isLogic(); }

    /// Visits the logic that drives an input of @p node and has no place yet, once for each such input.
    template <typename Visit> void eachDriver(std::uint32_t node, Visit visit) const
    {
        for (const Signal input : m_graph.inputsOf(m_graph.nodes[node])) {
            const std::uint32_t driver = m_graph.drivers[input];
            if (driver != NONE && isLogic(driver) && !m_isDone[driver]) {
                visit(driver);
            }
        }
    }

    void finish(std::uint32_t node)
    {
        m_isDone[node] = true;
        for (const Signal output : m_graph.outputsOf(m_graph.nodes[node])) {
            if (m_graph.drivers[output] != node) {
                continue;
            }
            for (const std::uint32_t user : m_users[output]) {
                if (isLogic(user) && --m_waitsFor[user] == 0 && !m_isDone[user]) {
                    m_open.push_back(user);
                }
            }
        }
    }

    void drain()
    {
        while (!m_open.empty()) {
            const std::uint32_t node = m_open.back();
            m_open.pop_back();
            if (!m_isDone[node]) {
                m_order.push_back(node);
                finish(node);
            }
        }
    }

    /// What is left hangs on loops. Without those nodes that no other one needs, the loops remain, and what lies
    /// between them.
    void breakLoops()
    {
        std::vector<std::uint32_t> left;
        std::vector<std::uint32_t> neededBy(m_graph.nodes.size(), 0);
        for (std::uint32_t node = 0; node < m_graph.nodes.size(); ++node) {
            if (isLogic(node) && !m_isDone[node]) {
                left.push_back(node);
                eachDriver(node, [&](std::uint32_t driver) { ++neededBy[driver]; });
            }
        }
        std::vector<bool> isBehind(m_graph.nodes.size(), false);
        std::vector<std::uint32_t> open;
        for (const std::uint32_t node : left) {
            if (neededBy[node] == 0) {
                isBehind[node] = true;
                open.push_back(node);
            }
        }
        while (!open.empty()) {
            const std::uint32_t node = open.back();
            open.pop_back();
            eachDriver(node, [&](std::uint32_t driver) {
                if (--neededBy[driver] == 0) {
                    isBehind[driver] = true;
                    open.push_back(driver);
                }
            });
        }
        for (const std::uint32_t node : left) {
            if (!isBehind[node]) {
                finish(node);
            }
        }
    }

    const BitGraph &m_graph;
    Users m_users;
    std::vector<std::uint32_t> m_waitsFor; ///< by node: inputs from logic that has no place yet
    std::vector<bool> m_isDone;
    std::vector<std::uint32_t> m_open;
    std::vector<std::uint32_t> m_order;
};

} // namespace

std::vector<std::uint32_t> logicOrderOf(const BitGraph &graph)
{
    return LogicSort(graph).run();
}

} // namespace kvr::netlistdb::analysis::probe
