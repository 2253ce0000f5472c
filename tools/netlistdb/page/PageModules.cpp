#include "page/PageModules.h"

#include "design/ItemFacts.h"
#include "page/PageDesign.h"
#include "page/PageModuleHeads.h"
#include "page/PagePart.h"

#include <DataBase.h>
#include <fmt/format.h>
#include <netlistdb/netlistdb.h>
#include <unordered_map>
#include <utility>

namespace kvr::netlistdb::tool {

namespace {

using analysis::ModuleGraph;
using analysis::NONE;
using analysis::SetTable;

/// Writes the contents of one module.
class ModuleWriter {
  public:
    ModuleWriter(PageDesign &page, std::uint32_t module, PagePart &part)
        : m_page(page), m_number(module), m_module(page.modules()[module]), m_part(part)
    {
    }

    void write()
    {
        m_part.write("{");
        writePorts();
        writeNets();
        writeSignals();
        writeCells();
        m_part.write("}");
    }

  private:
    /// Writes a member whose value is the list of what @p valueOf returns for 0 to @p count - 1.
    template <typename ValueOf> void writeList(const char *key, std::size_t count, ValueOf valueOf)
    {
        m_part.write(fmt::format("{}\"{}\":[", m_isFirst ? "" : ",", key));
        m_isFirst = false;
        std::string text;
        for (std::size_t at = 0; at < count; ++at) {
            text.clear();
            append(text, valueOf(at), at == 0);
            m_part.write(text);
        }
        m_part.write("]");
    }
    template <typename Value> static void append(std::string &text, const Value &value, bool isFirst)
    {
        text += isFirst ? "" : ",";
        if constexpr (std::is_arithmetic_v<Value>) {
            fmt::format_to(std::back_inserter(text), "{}", value);
        } else {
            text += jsonText(Json(value));
        }
    }

    void writePorts()
    {
        writeList("ports", m_module.ports.size(), [&](std::size_t at) {
            const ModuleGraph::ModulePort &port = m_module.ports[at];
            return Json::array({netlistNameOf(port.port), (port.isInput ? 1 : 0) + (port.isOutput ? 2 : 0),
                                port.net == NONE ? Json(-1) : Json(port.net)});
        });
    }

    void writeNets()
    {
        const analysis::ModuleSets &sets = m_page.model().sets[m_number];
        const analysis::ModuleClocks &clocks = m_page.model().clocks[m_number];
        const std::size_t count = m_module.netCount();
        writeList("nets", count, [&](std::size_t net) {
            const IVDBNet *const item = m_page.model().hierarchy.items[m_module.firstNet + net];
            return item != nullptr ? std::string(nameText(*item)) : std::string();
        });
        writeList("launch", count, [&](std::size_t net) { return sets.launch[net].set; });
        writeList("distance", count, [&](std::size_t net) { return sets.launch[net].distance; });
        writeList("capture", count, [&](std::size_t net) { return sets.capture[net]; });
        writeList("electrical", count, [&](std::size_t net) { return pageCode(clocks.nets[net]); });
        writeSets("launchSets", sets.launchTable);
        writeSets("captureSets", sets.captureTable);
    }

    void writeSets(const char *key, const SetTable &table)
    {
        writeList(key, table.size(), [&](std::size_t set) {
            const auto number = static_cast<std::uint32_t>(set);
            Json list = Json::array({table.flags(number)});
            for (const SetTable::Entry &entry : table[number]) {
                list.push_back(static_cast<std::uint32_t>(entry.atom.kind()));
                list.push_back(entry.atom.number());
                list.push_back(entry.distance);
            }
            return list;
        });
    }

    void writeSignals()
    {
        std::unordered_map<const IVDBNet *, std::int64_t> numbers;
        for (std::uint32_t net = 0; net < m_module.netCount(); ++net) {
            numbers.emplace(m_page.model().hierarchy.items[m_module.firstNet + net], net);
        }
        const std::vector<Probe> &probes = m_page.probesOf(m_number);
        const auto numberOf = [&](const IVDBNet *net) {
            const auto found = numbers.find(net);
            return net != nullptr && found != numbers.end() ? found->second : -1;
        };
        // A net of its own name needs no second copy of it.
        writeList("signals", probes.size(), [&](std::size_t at) {
            const Probe &probe = probes[at];
            const bool isNet = probe.bits.size() == 1 && probe.bits.front() != nullptr &&
                               numberOf(probe.bits.front()) >= 0 && nameText(*probe.bits.front()) == probe.name;
            return isNet ? Json(0) : Json(probe.name);
        });
        writeList("bits", probes.size(), [&](std::size_t at) {
            const std::vector<IVDBNet *> &bits = probes[at].bits;
            return bits.size() == 1 ? Json(numberOf(bits.front())) : runsOf(bits, numberOf);
        });
        writeList("flags", probes.size(),
                  [&](std::size_t at) { return (probes[at].declared ? 1 : 0) + (probes[at].isBus ? 2 : 0); });
        writeList("places", probes.size() * 2, [&](std::size_t at) {
            const IVDBLineInfo *const source = probes[at / 2].source;
            if (at % 2 == 0) {
                return source != nullptr ? m_page.fileNumber(source->getFilePath()) : PageDesign::NO_FILE;
            }
            return source != nullptr ? static_cast<std::int64_t>(source->getLineNumber()) : 0;
        });
        std::vector<std::size_t> withAliases;
        std::vector<std::size_t> withRange;
        for (std::size_t at = 0; at < probes.size(); ++at) {
            if (!probes[at].aliases.empty()) {
                withAliases.push_back(at);
            }
            if (busOf(probes[at]) != nullptr) {
                withRange.push_back(at);
            }
        }
        writeList("aliases", withAliases.size(), [&](std::size_t at) {
            return Json::array({withAliases[at], Json(probes[withAliases[at]].aliases)});
        });
        writeList("ranges", withRange.size(), [&](std::size_t at) {
            const IVDBNetBus &bus = *busOf(probes[withRange[at]]);
            return Json::array({withRange[at], bus.getLeftIndex(), bus.getRightIndex()});
        });
    }

    static const IVDBNetBus *busOf(const Probe &probe)
    {
        return probe.isBus && probe.item != nullptr ? dynamic_cast<const IVDBNetBus *>(probe.item) : nullptr;
    }

    /// The numbers of @p bits in runs: the first number, how many, and the step from one to the next.
    template <typename NumberOf> static Json runsOf(const std::vector<IVDBNet *> &bits, NumberOf numberOf)
    {
        Json runs = Json::array();
        for (std::size_t at = 0; at < bits.size();) {
            const std::int64_t first = numberOf(bits[at]);
            std::size_t end = at + 1;
            std::int64_t step = 0;
            if (end < bits.size()) {
                step = numberOf(bits[end]) - first;
                step = first < 0 || step < -1 || step > 1 ? 0 : step;
            }
            while (end < bits.size() && numberOf(bits[end]) == first + step * static_cast<std::int64_t>(end - at)) {
                ++end;
            }
            runs.insert(runs.end(), {first, end - at, step});
            at = end;
        }
        return runs;
    }

    void writeCells()
    {
        std::vector<const Verific::Instance *> cells;
        cells.reserve(m_module.cellCount());
        Verific::MapIter instances;
        const Verific::Instance *instance = nullptr;
        FOREACH_INSTANCE_OF_NETLIST (m_module.netlist, instances, instance) {
            cells.push_back(instance);
        }
        writeList("cells", cells.size(), [&](std::size_t cell) { return netlistNameOf(cells[cell]); });
        // Instances of modules are told apart by a negative number.
        writeList("kinds", m_module.cellCount(), [&](std::size_t at) {
            const auto cell = static_cast<std::uint32_t>(at);
            return m_module.isSub(cell) ? -1 - static_cast<std::int64_t>(m_module.subOf(cell))
                                        : static_cast<std::int64_t>(m_module.modelOf(cell));
        });
        std::vector<std::uint32_t> pins;
        for (std::uint32_t cell = 0; cell < m_module.cellCount(); ++cell) {
            const analysis::Span<std::uint32_t> nets = m_module.netsOf(cell);
            pins.insert(pins.end(), nets.begin(), nets.end());
        }
        writeList("pins", pins.size(),
                  [&](std::size_t pin) { return pins[pin] == NONE ? -1 : static_cast<std::int64_t>(pins[pin]); });
        std::vector<std::int64_t> places;
        for (const Verific::Instance *cell : cells) {
            const ItemFacts facts = factsOf(cell);
            places.push_back(m_page.fileNumber(facts.file));
            places.push_back(static_cast<std::int64_t>(facts.line));
        }
        writeList("cellPlaces", places.size(), [&](std::size_t at) { return places[at]; });
    }

    PageDesign &m_page;
    std::uint32_t m_number;
    const ModuleGraph &m_module;
    PagePart &m_part;
    bool m_isFirst = true;
};

} // namespace

Json writeModules(PageDesign &page, PagePart &part)
{
    Json heads = Json::array();
    for (std::uint32_t module = 0; module < page.modules().size(); ++module) {
        Json head = moduleHeadOf(page, module);
        head["at"] = part.size();
        ModuleWriter(page, module, part).write();
        head["bytes"] = part.size() - head["at"].get<std::uint64_t>();
        heads.push_back(std::move(head));
    }
    return heads;
}

} // namespace kvr::netlistdb::tool
