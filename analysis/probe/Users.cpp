#include "analysis/probe/Users.h"

namespace kvr::netlistdb::analysis::probe {

Users::Users(const BitGraph &graph) : m_first(std::size_t{graph.signalCount} + 1, 0)
{
    for (const Node &node : graph.nodes) {
        for (const Signal input : graph.inputsOf(node)) {
            ++m_first[input + 1];
        }
    }
    for (std::size_t signal = 0; signal < graph.signalCount; ++signal) {
        m_first[signal + 1] += m_first[signal];
    }
    m_nodes.resize(m_first.back());
    std::vector<std::uint32_t> next(m_first.begin(), m_first.end() - 1);
    for (std::uint32_t number = 0; number < graph.nodes.size(); ++number) {
        for (const Signal input : graph.inputsOf(graph.nodes[number])) {
            m_nodes[next[input]++] = number;
        }
    }
}

} // namespace kvr::netlistdb::analysis::probe
