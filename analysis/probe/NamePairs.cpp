#include "analysis/probe/NamePairs.h"

#include "analysis/Texts.h"
#include "analysis/probe/NetNames.h"

#include <DataBase.h>

#include <algorithm>
#include <map>
#include <string>
#include <unordered_map>

namespace kvr::netlistdb::analysis::probe {

namespace {

/// Wires by name; a name that several wires have is of no use.
class WiresByName {
  public:
    explicit WiresByName(const BitGraph &graph)
    {
        forEachName(graph, [&](std::uint32_t occurrence, std::uint32_t net, std::uint64_t name) {
            m_names.push_back({name, graph.signalOf(occurrence, net)});
        });
        std::sort(m_names.begin(), m_names.end());
    }

    Signal find(std::uint64_t name) const
    {
        const auto first = std::lower_bound(m_names.begin(), m_names.end(), Named{name, 0});
        if (first == m_names.end() || first->name != name) {
            return NONE;
        }
        for (auto other = first + 1; other != m_names.end() && other->name == name; ++other) {
            if (other->signal != first->signal) {
                return NONE;
            }
        }
        return first->signal;
    }

  private:
    struct Named {
        std::uint64_t name;
        Signal signal;
        bool operator<(const Named &other) const
        {
            return name != other.name ? name < other.name : signal < other.signal;
        }
    };
    std::vector<Named> m_names;
};

/// Wires on the outputs of an opaque cell, by the name of the pin.
std::map<std::string, Signal> outputsOf(const BitGraph &graph, const OpaqueCell &cell)
{
    std::map<std::string, Signal> outputs;
    const Verific::Netlist &view = *graph.instanceOf(cell.occurrence, cell.cell).View();
    const Span<std::uint32_t> nets = graph.moduleOf(cell.occurrence).netsOf(cell.cell);
    std::size_t pin = 0;
    Verific::MapIter ports;
    const Verific::Port *port = nullptr;
    FOREACH_PORT_OF_NETLIST (&view, ports, port) {
        if (port->IsOutput() != 0 && port->Name() != nullptr && pin < nets.size() && nets[pin] != NONE) {
            outputs.emplace(port->Name(), graph.signalOf(cell.occurrence, nets[pin]));
        }
        ++pin;
    }
    return outputs;
}

using CellsByKey = std::map<std::string, std::vector<const OpaqueCell *>>;

CellsByKey cellsBy(const BitGraph &graph, bool byPath)
{
    CellsByKey cells;
    for (const OpaqueCell &cell : graph.opaque) {
        std::string key(typeOf(graph.instanceOf(cell.occurrence, cell.cell).View()));
        if (!key.empty() && key.front() != '$') {
            if (byPath) {
                key += ' ' + std::to_string(hashOfPath(graph.pathOf(cell.occurrence, cell.cell)));
            }
            cells[key].push_back(&cell);
        }
    }
    return cells;
}

} // namespace

NamePairs::NamePairs(const BitGraph &elaborated, const BitGraph &postMap)
{
    const WiresByName wiresByName(postMap);
    forEachName(elaborated, [&](std::uint32_t occurrence, std::uint32_t net, std::uint64_t name) {
        const Signal found = wiresByName.find(name);
        const Signal own = elaborated.signalOf(occurrence, net);
        if (found != NONE && own >= FIRST_SIGNAL && found >= FIRST_SIGNAL) {
            wires.push_back({own, found});
        }
    });
    std::sort(wires.begin(), wires.end());
    wires.erase(std::unique(wires.begin(), wires.end()), wires.end());
}

std::vector<WirePair> pairOpaqueCells(const BitGraph &elaborated, const BitGraph &postMap)
{
    std::vector<WirePair> pairs;
    for (const bool byPath : {true, false}) {
        const CellsByKey left = cellsBy(elaborated, byPath);
        const CellsByKey right = cellsBy(postMap, byPath);
        for (const auto &[key, cells] : left) {
            const auto other = right.find(key);
            if (cells.size() != 1 || other == right.end() || other->second.size() != 1) {
                continue;
            }
            const std::map<std::string, Signal> outputs = outputsOf(postMap, *other->second.front());
            for (const auto &[pin, signal] : outputsOf(elaborated, *cells.front())) {
                const auto same = outputs.find(pin);
                if (same != outputs.end() && signal >= FIRST_SIGNAL && same->second >= FIRST_SIGNAL) {
                    pairs.push_back({signal, same->second});
                }
            }
        }
    }
    std::sort(pairs.begin(), pairs.end());
    pairs.erase(std::unique(pairs.begin(), pairs.end()), pairs.end());
    return pairs;
}

} // namespace kvr::netlistdb::analysis::probe
