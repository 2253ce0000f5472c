#include "analysis/plan/NearHashes.h"

#include "analysis/probe/NetNames.h"

#include <utility>

namespace kvr::netlistdb::analysis::plan {

using namespace probe;

namespace {

/// Wires behind one register that are looked at: more make it too long for designs of many registers.
constexpr std::size_t MOST_WIRES = 256;

constexpr std::uint64_t OWN = 0x6F776E;
constexpr std::uint64_t CONSTANT = 0x636F6E;

} // namespace

NearHashes::NearHashes(const BitGraph &graph)
    : m_graph(graph), m_names(graph.signalCount), m_places(graph.signalCount), m_shapes(graph.signalCount)
{
    for (std::uint32_t number = 0; number < graph.nodes.size(); ++number) {
        const Node &node = graph.nodes[number];
        const Span<Signal> outputs = graph.outputsOf(node);
        for (std::uint32_t at = 0; at < outputs.size(); ++at) {
            if (graph.drivers[outputs[at]] == number) {
                m_places[outputs[at]] = at;
                m_shapes[outputs[at]] = shapeOf(graph, node, at, true);
            }
        }
    }
    // Names far down come and go with the modules that a signal is led into.
    std::vector<std::uint32_t> depths(graph.occurrences.size());
    for (std::uint32_t at = 0; at < depths.size(); ++at) {
        const std::uint32_t parent = graph.occurrences[at].parent;
        depths[at] = parent == NONE ? 0 : depths[parent] + 1;
    }
    std::vector<std::uint32_t> nameDepths(graph.signalCount, NONE);
    forEachName(graph, [&](std::uint32_t occurrence, std::uint32_t net, std::uint64_t name) {
        const Signal signal = m_graph.signalOf(occurrence, net);
        if (std::pair(depths[occurrence], name) < std::pair(nameDepths[signal], m_names[signal])) {
            nameDepths[signal] = depths[occurrence];
            m_names[signal] = name;
        }
    });
}

bool NearHashes::isLeaf(Signal signal) const
{
    const std::uint32_t driver = m_graph.drivers[signal];
    return signal < FIRST_SIGNAL || driver == NONE || isState(m_graph.partOf(m_graph.nodes[driver]));
}

std::uint64_t NearHashes::leafOf(Signal signal) const
{
    return signal < FIRST_SIGNAL ? mixed(CONSTANT + signal) : m_names[signal];
}

/// The hash over what @p signal is made from; 0 when one of these has none.
std::uint64_t NearHashes::joinedInputs(Signal signal, const Memo &memo) const
{
    std::uint64_t hash = m_shapes[signal];
    bool isWhole = true;
    forEachInputOf(signal, [&](Signal input) {
        isWhole = isWhole && memo.states[input] == Memo::Done && memo.hashes[input] != 0;
        hash = joined(hash, memo.hashes[input]);
    });
    return isWhole ? hash : 0;
}

/// The hash of @p start. The outputs of the node @p root count by their distance from the bit that is worked out. 0
/// when the way back is too long, a loop, or ends at something without a name.
std::uint64_t NearHashes::hashOfCone(Signal start, std::uint32_t root, Memo &memo)
{
    m_waiting.assign(1, start);
    const auto finish = [&memo](Signal signal, std::uint64_t hash) {
        memo.states[signal] = Memo::Done;
        memo.hashes[signal] = hash;
    };
    while (!m_waiting.empty()) {
        const Signal signal = m_waiting.back();
        if (memo.states[signal] == Memo::Done) {
            m_waiting.pop_back();
            continue;
        }
        if (memo.states[signal] == Memo::New) {
            memo.touched.push_back(signal);
            if (root != NONE && memo.touched.size() > MOST_WIRES) {
                return 0;
            }
        }
        const std::uint32_t driver = m_graph.drivers[signal];
        if (isLeaf(signal)) {
            const bool isOwn = signal >= FIRST_SIGNAL && root != NONE && driver == root;
            finish(signal, isOwn ? mixed(OWN + m_places[signal] - m_rootOutput) : leafOf(signal));
            continue;
        }
        if (memo.states[signal] == Memo::Open) {
            finish(signal, joinedInputs(signal, memo));
            continue;
        }
        memo.states[signal] = Memo::Open;
        forEachInputOf(signal, [&](Signal input) {
            if (memo.states[input] == Memo::New) {
                m_waiting.push_back(input);
            }
        });
    }
    return memo.hashes[start];
}

std::uint64_t NearHashes::registerHash(Signal signal, Memo &memo)
{
    const std::uint32_t root = m_graph.drivers[signal];
    m_rootOutput = m_places[signal];
    bool isWhole = true;
    forEachInputOf(signal, [&](Signal input) {
        if (isWhole && memo.states[input] != Memo::Done) {
            isWhole = hashOfCone(input, root, memo) != 0;
        }
    });
    const std::uint64_t hash = isWhole ? joinedInputs(signal, memo) : 0;
    for (const Signal each : memo.touched) {
        memo.states[each] = Memo::New;
    }
    memo.touched.clear();
    return hash;
}

std::vector<std::uint64_t> NearHashes::take()
{
    std::vector<std::uint64_t> result(m_graph.signalCount);
    const auto emptyMemo = [this] {
        return Memo{std::vector<Memo::State>(m_graph.signalCount), std::vector<std::uint64_t>(m_graph.signalCount), {}};
    };
    Memo logic = emptyMemo();
    Memo ofRegister = emptyMemo();
    for (Signal signal = FIRST_SIGNAL; signal < m_graph.signalCount; ++signal) {
        if (!isLeaf(signal)) {
            result[signal] = hashOfCone(signal, NONE, logic);
        } else if (m_graph.drivers[signal] != NONE) {
            result[signal] = registerHash(signal, ofRegister);
        }
    }
    for (const auto &[signal, value] : m_graph.starts) {
        result[signal] = result[signal] != 0 ? mixed(result[signal] + (value ? 2 : 1)) : 0;
    }
    return result;
}

} // namespace kvr::netlistdb::analysis::plan
