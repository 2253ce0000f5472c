// How CrossingFinder tells classes of crossings apart.

#include "analysis/ClockTable.h"
#include "analysis/crossings/Controls.h"
#include "analysis/crossings/CrossingFinder.h"
#include "analysis/crossings/ForwardCones.h"
#include "analysis/crossings/GrayCodes.h"

#include <algorithm>
#include <iterator>
#include <tuple>

namespace kvr::netlistdb::analysis {

namespace {

/// The vector that an end belongs to, or itself.
const std::string &busOf(const CrossingEnd &end)
{
    return end.bus.empty() ? end.name : end.bus;
}

using Paths = std::vector<CrossingPath *>;

bool isByBit(const CrossingPath *a, const CrossingPath *b)
{
    return std::tie(a->to.bit, a->to.name) < std::tie(b->to.bit, b->to.name);
}

} // namespace

/// True for an output of a memory that shows at once what is written.
bool CrossingFinder::isUnclockedRead(const PinPlace &source) const
{
    const CellModel &model = m_design.model(source);
    return model.kind == CellKind::Memory && model.pins[source.pin].group != NONE;
}

bool CrossingFinder::related(std::uint32_t a, std::uint32_t b)
{
    return a != UNCLOCKED && m_relations.related(m_table.idOf(a), m_table.idOf(b));
}

/// Clocks that are in step with one another count as one, and those in step with the target do not count.
bool CrossingFinder::hasSeveralClocks(const CrossingPath &path)
{
    const std::vector<std::uint32_t> &clocks = m_design.sets().clocks(path.launched);
    std::uint32_t first = NONE;
    for (const std::uint32_t clock : clocks) {
        if (isExcluded(clock, path.capture) || related(clock, path.capture)) {
            continue;
        }
        if (first != NONE && !related(first, clock)) {
            return true;
        }
        first = clock;
    }
    return false;
}

void CrossingFinder::classifyReset(std::uint32_t launch, CrossingPath &path)
{
    if (m_design.model(path.pin).kind == CellKind::FlipFlop) {
        path.chain = m_synchronizers.ofReset(path.pin, path.capture);
    }
    if (path.isSynchronized()) {
        path.is(path.chain.isKept ? CrossingClass::SynchronizedReset : CrossingClass::SynchronizedResetUnkept);
    } else if (related(launch, path.capture)) {
        path.is(CrossingClass::RelatedClocks);
    } else {
        path.is(CrossingClass::UnsynchronizedReset);
    }
}

void CrossingFinder::classifyPair(std::uint32_t launch, std::uint32_t capture, const Cones &cones, const Paths &paths)
{
    std::unordered_set<Node> synchronized;
    Paths direct;
    for (CrossingPath *const path : paths) {
        path->chain = m_synchronizers.behind(path->pin, capture);
        if (path->isDirect() && !isUnclockedRead(path->source)) {
            direct.push_back(path);
            const std::vector<Node> outputs = m_registers.nodesOf(path->chain.stages.back());
            synchronized.insert(outputs.begin(), outputs.end());
        }
    }
    Controls controls(m_design, m_registers, m_functions, cones, launch, capture, std::move(synchronized));
    classifyDirect(launch, direct);
    for (CrossingPath *const path : paths) {
        if (path->kinds == 0) {
            classifyTarget(launch, *path, controls);
        }
    }
    classifyBuses(paths);
}

void CrossingFinder::classifyTarget(std::uint32_t launch, CrossingPath &path, Controls &controls)
{
    if (isUnclockedRead(path.source)) {
        path.is(CrossingClass::Memory);
    }
    path.control = controls.enableOf(path.pin);
    if (path.control != NONE) {
        path.is(CrossingClass::EnableControlled);
    } else {
        path.control = controls.controlOf(m_design.nodeAt(path.pin));
        if (path.control != NONE) {
            path.is(controls.holds(path.pin) ? CrossingClass::HoldingMultiplexer
                                             : CrossingClass::MultiplexerControlled);
        }
    }
    const bool isRelated = related(launch, path.capture);
    if (isRelated) {
        path.is(CrossingClass::RelatedClocks);
    } else if (hasSeveralClocks(path)) {
        path.is(CrossingClass::SeveralClocks);
    }
    if (path.isSynchronized()) {
        path.is(CrossingClass::LogicBeforeSynchronizer);
        return;
    }
    if (m_design.model(path.pin).kind != CellKind::FlipFlop) {
        path.is(CrossingClass::NoFlipFlop);
    }
    path.is(CrossingClass::UnsynchronizedBit);
}

void CrossingFinder::classifyDirect(std::uint32_t launch, const Paths &paths)
{
    // A vector that is synchronized bit by bit counts as one when its bits meet others.
    std::map<std::string, Paths> vectors;
    for (CrossingPath *const path : paths) {
        vectors[busOf(path->to)].push_back(path);
    }
    std::vector<Paths> words;
    for (auto &[name, bits] : vectors) {
        std::sort(bits.begin(), bits.end(), isByBit);
        if (bits.size() > 1 && isGray(bits)) {
            for (CrossingPath *const path : bits) {
                path->is(path->chain.isKept ? CrossingClass::GrayBus : CrossingClass::GrayBusUnkept);
            }
            words.push_back(bits);
            continue;
        }
        std::map<std::string, Paths> bySource;
        for (CrossingPath *const path : bits) {
            bySource[busOf(path->from)].push_back(path);
        }
        for (const auto &[source, word] : bySource) {
            for (CrossingPath *const path : word) {
                if (word.size() > 1) {
                    path->is(path->chain.isKept ? CrossingClass::SynchronizedBus
                                                : CrossingClass::SynchronizedBusUnkept);
                } else {
                    path->is(path->chain.isKept ? CrossingClass::SynchronizedBit
                                                : CrossingClass::SynchronizedBitUnkept);
                }
            }
            words.push_back(word);
        }
    }
    std::vector<std::vector<Node>> outputs;
    for (const Paths &word : words) {
        outputs.emplace_back();
        for (const CrossingPath *const path : word) {
            const std::vector<Node> nodes = m_registers.nodesOf(path->chain.stages.back());
            outputs.back().insert(outputs.back().end(), nodes.begin(), nodes.end());
        }
    }
    const std::vector<Meeting> meetings =
        words.size() > 1 ? findMeetings(m_design, outputs) : std::vector<Meeting>(words.size());
    for (std::size_t word = 0; word < words.size(); ++word) {
        for (CrossingPath *const path : words[word]) {
            if (meetings[word].meets) {
                path->meets = meetings[word].node;
                path->is(CrossingClass::Reconvergence);
            }
            if (!related(launch, path->capture) &&
                reachesAnother(m_design, {path->sourceNode}, path->capture, path->pin)) {
                path->is(CrossingClass::FanOut);
            }
        }
    }
}

bool CrossingFinder::isGray(const Paths &bits)
{
    std::vector<PinPlace> data;
    for (const CrossingPath *const path : bits) {
        const std::uint32_t pin = m_registers.dataOf(path->source);
        if (pin == NONE) {
            return false;
        }
        data.push_back({path->source.context, path->source.cell, pin});
    }
    return GrayCodes(m_design, m_registers, m_functions).isGray(data);
}

/// Bits of one register that go into bits of another, none of them synchronized.
void CrossingFinder::classifyBuses(const Paths &paths)
{
    std::map<std::pair<std::string, std::string>, Paths> buses;
    const auto bit = 1U << static_cast<unsigned>(CrossingClass::UnsynchronizedBit);
    for (CrossingPath *const path : paths) {
        if ((path->kinds & bit) != 0 && !path->from.bus.empty()) {
            buses[{busOf(path->from), busOf(path->to)}].push_back(path);
        }
    }
    for (const auto &[names, bus] : buses) {
        for (CrossingPath *const path : bus) {
            if (bus.size() > 1) {
                path->kinds &= ~bit;
                path->is(CrossingClass::UnsynchronizedBus);
            }
        }
    }
}

} // namespace kvr::netlistdb::analysis
