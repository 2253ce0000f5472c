#include "analysis/crossings/CrossingEnds.h"

#include "analysis/ModelBuilder.h"
#include "analysis/SourcePlaces.h"
#include "analysis/Texts.h"

#include <DataBase.h>

#include <netlistdb/DesignDatabase.h>
#include <netlistdb/IVDBNet.h>
#include <netlistdb/NameText.h>

#include <algorithm>
#include <charconv>

namespace kvr::netlistdb::analysis {

namespace {

/// Takes a name that ends in a subscript apart; false for any other.
bool splitSubscript(const std::string &name, std::string &vector, int &bit)
{
    const std::size_t open = name.rfind('[');
    if (open == std::string::npos || open == 0 || name.back() != ']') {
        return false;
    }
    const char *const end = name.data() + name.size() - 1;
    const auto [stop, fault] = std::from_chars(name.data() + open + 1, end, bit);
    if (fault != std::errc() || stop != end) {
        return false;
    }
    vector = name.substr(0, open);
    return true;
}

std::string below(const std::string &path, std::string_view name)
{
    return std::string(path).append(path.empty() ? "" : "/").append(name);
}

} // namespace

const std::string &CrossingEnds::pathOf(std::uint32_t context)
{
    while (m_paths.size() <= context) {
        const Context way = m_design.pathTo(static_cast<std::uint32_t>(m_paths.size()));
        m_paths.push_back(m_design.design().pathOf(way));
        m_instances.push_back(m_design.design().itemOf(way));
    }
    return m_paths[context];
}

std::string CrossingEnds::nameOf(Node node)
{
    const std::uint32_t context = m_design.contextOf(node);
    const IVDBNet *const item = m_design.itemOf(node);
    return below(pathOf(context), item != nullptr ? nameText(*item) : textOf(m_design.netAt(node).Name()));
}

void CrossingEnds::nameAfter(CrossingEnd &end, Node node)
{
    end.name = nameOf(node);
    end.net = m_design.itemOf(node);
    if (!splitSubscript(end.name, end.bus, end.bit)) {
        end.bus.clear();
        end.bit = 0;
    }
}

CrossingEnd CrossingEnds::cellEnd(const PinPlace &pin)
{
    const CellModel &model = m_design.model(pin);
    CrossingEnd end{};
    const std::string &path = pathOf(pin.context);
    end.instance = m_instances[pin.context];
    end.cell = below(path, textOf(m_design.instanceAt(pin.context, pin.cell).Name()));
    end.cellType = typeOf(model.view);
    end.pin = pin.pin != NONE ? textOf(model.pins[pin.pin].port->Name()) : std::string_view();
    return end;
}

/// A port of a memory that is a cell of its own goes by the name of the memory.
std::string CrossingEnds::memoryName(const PinPlace &pin, const std::string &cell)
{
    std::string_view name = parameterOf(m_design.instanceAt(pin.context, pin.cell), "MEMID");
    name.remove_prefix(startsWith(name, "\\") ? 1 : 0);
    return m_design.graphOf(pin.context).writesOf(pin.cell).empty() ? cell : below(pathOf(pin.context), name);
}

CrossingEnd CrossingEnds::source(const PinPlace &pin, Node node)
{
    CrossingEnd end = cellEnd(pin);
    const CellModel &model = m_design.model(pin);
    if (model.kind == CellKind::Memory) {
        end.name = memoryName(pin, end.cell);
        end.net = m_design.itemOf(node);
    } else {
        nameAfter(end, node);
    }
    return end;
}

CrossingEnd CrossingEnds::port(std::uint32_t, Node node)
{
    CrossingEnd end{};
    pathOf(Unfolding::TOP);
    end.instance = m_instances[Unfolding::TOP];
    nameAfter(end, node);
    return end;
}

CrossingEnd CrossingEnds::target(const PinPlace &pin)
{
    CrossingEnd end = cellEnd(pin);
    const Node shown = pin.pin != NONE ? m_registers.shownBy(pin) : NONE;
    if (shown == NONE) {
        end.name = end.cell;
        const Node node = pin.pin != NONE ? m_design.nodeAt(pin) : NONE;
        end.net = node != NONE ? m_design.itemOf(node) : nullptr;
        return end;
    }
    nameAfter(end, shown);
    const CellModel &model = m_design.model(pin);
    const auto outputs =
        std::count_if(model.pins.begin(), model.pins.end(), [](const CellModel::Pin &each) { return each.isOutput; });
    if (model.pins[pin.pin].role != PinRole::Data && outputs > 1 && !end.bus.empty()) {
        // A control pin acts on the whole register.
        end.name = end.bus;
        end.bus.clear();
        end.bit = 0;
    }
    return end;
}

SourcePlace CrossingEnds::placeOf(const PinPlace &pin, const IVDBNet *shown)
{
    const DesignModel &design = m_design.design();
    const Verific::Net *const net = shown != nullptr ? design.database.sourceNet(shown, design.source) : nullptr;
    const SourcePlace place = net != nullptr ? kvr::netlistdb::analysis::placeOf(*net) : SourcePlace();
    return place.file.empty() ? kvr::netlistdb::analysis::placeOf(m_design.instanceAt(pin.context, pin.cell)) : place;
}

} // namespace kvr::netlistdb::analysis
