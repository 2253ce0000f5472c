// Memories: what they begin with, reading and writing.

#include "analysis/probe/Addresses.h"
#include "analysis/probe/Simulator.h"

#include <algorithm>

namespace kvr::netlistdb::analysis::probe {

void Simulator::startMemories()
{
    std::fill(m_contents.begin(), m_contents.end(), ZERO);
    for (std::size_t number = 0; number < m_graph.memories.size(); ++number) {
        const std::string &start = m_graph.memories[number].shape->start;
        const std::size_t size = m_graph.memories[number].words() * m_graph.memories[number].width;
        for (std::size_t bit = 0; bit < start.size() && bit < size; ++bit) {
            m_contents[m_firstContent[number] + bit] = start[bit] == '1' ? ONE : ZERO;
        }
    }
    for (const Node &node : m_graph.nodes) {
        const Part &part = m_graph.partOf(node);
        if (part.op != Op::MemoryStart) {
            continue;
        }
        const Span<Signal> in = m_graph.inputsOf(node);
        Numbers first;
        const Span<Signal> address(in.begin(), in.begin() + part.inputs);
        if (numbersOf(m_values, address, first) != ALL_LANES) {
            continue;
        }
        const Memory &memory = m_graph.memories[node.state];
        const std::size_t size = memory.words() * memory.width;
        for (std::size_t bit = 0; bit < part.width && first[0] * memory.width + bit < size; ++bit) {
            const Lanes value = m_values[in[part.inputs + bit]];
            m_contents[m_firstContent[node.state] + first[0] * memory.width + bit] = value == ONE ? ONE : ZERO;
        }
    }
}

/// Leaves what stands at @p address, @p width bits wide, in m_read.
void Simulator::readMemory(const Node &node, Span<Signal> address, std::size_t width)
{
    const Memory &memory = m_graph.memories[node.state];
    const std::size_t shown = std::min<std::size_t>(width, memory.width);
    const Lanes *const contents = m_contents.data() + m_firstContent[node.state];
    m_read.assign(width, UNKNOWN);
    if (address.size() <= FEW_ADDRESS_BITS && address.size() <= memory.addressBits) {
        readFew(m_values, address, contents, memory.width, m_read.data(), shown);
        return;
    }
    const auto fetch = [&](std::size_t place) { fetchWord(contents + place * memory.width, shown); };
    forEachAddress(m_values, address, memory.words(), ALL_LANES, fetch, [&](std::size_t place, std::uint64_t lanes) {
        const Lanes *const word = contents + place * memory.width;
        for (std::size_t bit = 0; bit < shown; ++bit) {
            m_read[bit].zero &= word[bit].zero | ~lanes;
            m_read[bit].one &= word[bit].one | ~lanes;
        }
    });
}

/// Runs in which it is not known whether or where is written keep what they have: both netlists are looked at the same
/// way, and contents that are not known would spread over the whole memory.
void Simulator::writeMemory(const Step &step, std::uint64_t edge)
{
    const Node &node = *step.node;
    const Part &part = *step.part;
    const Span<Signal> in = step.in;
    const Memory &memory = m_graph.memories[node.state];
    const Span<Signal> address(in.begin() + 1, in.begin() + 1 + part.inputs);
    const Signal *const data = address.end();
    const Signal *const enables = data + part.width;
    const std::size_t width = std::min<std::size_t>(part.width, memory.width);
    std::uint64_t written = 0;
    m_written.resize(width);
    for (std::size_t bit = 0; bit < width; ++bit) {
        const Lanes enable = m_values[enables[bit]];
        m_written[bit] = {m_values[data[bit]], enable.one & ~enable.zero};
        written |= m_written[bit].lanes;
    }
    Lanes *const contents = m_contents.data() + m_firstContent[node.state];
    const auto fetch = [&](std::size_t place) { fetchWord(contents + place * memory.width, width); };
    forEachAddress(m_values, address, memory.words(), written & edge, fetch,
                   [&](std::size_t place, std::uint64_t lanes) {
                       Lanes *const word = contents + place * memory.width;
                       for (std::size_t bit = 0; bit < width; ++bit) {
                           word[bit] = inLanes(lanes & m_written[bit].lanes, m_written[bit].value, word[bit]);
                       }
                   });
}

} // namespace kvr::netlistdb::analysis::probe
