#include "CellType.h"

namespace kvr::netlistdb::yosys {

namespace {

/// False for a text that is its own name.
bool hasEscapes(std::string_view raw)
{
    return raw.find('\\') != std::string_view::npos;
}

} // namespace

CellType::Group *CellType::declare(std::string_view raw, std::string_view name, unsigned direction)
{
    if (!m_byName.emplace(name, static_cast<unsigned>(m_groups.size())).second) {
        return nullptr;
    }
    Group group;
    group.raw = raw;
    group.name = name;
    group.direction = direction;
    if (hasEscapes(raw)) {
        m_byEscapedText.emplace(raw, static_cast<unsigned>(m_groups.size()));
    }
    m_groups.push_back(group);
    return &m_groups.back();
}

void CellType::define(Group &group, const VectorRange &range, CText &scratch)
{
    group.range = range;
    group.widthKnown = true;
    group.firstPin = static_cast<unsigned>(m_pins.size());
    if (range.width == 0) {
        return;
    }
    if (!range.isVector()) {
        m_pins.push_back(addPort(*m_netlist, scratch.of(group.name), group.direction));
        return;
    }
    Verific::PortBus *bus =
        addPortBus(*m_netlist, scratch.of(group.name), range.left(), range.right(), group.direction);
    for (unsigned position = 0; position < range.width; ++position) {
        const int index = range.indexOf(position);
        m_pins.push_back(addPort(*m_netlist, scratch.indexed(group.name, index), group.direction));
        putInBus(*bus, index, m_pins.back());
    }
}

CellType::Group *CellType::findByName(std::string_view name)
{
    const auto found = m_byName.find(name);
    return found != m_byName.end() ? &m_groups[found->second] : nullptr;
}

CellType::Group *CellType::search(std::string_view raw, unsigned position)
{
    Group *group = nullptr;
    if (hasEscapes(raw)) {
        // A name may be written in several ways; the caller looks for the others by name.
        const auto found = m_byEscapedText.find(raw);
        group = found != m_byEscapedText.end() ? &m_groups[found->second] : nullptr;
    } else {
        group = findByName(raw);
    }
    if (group != nullptr) {
        if (m_usual.size() <= position) {
            m_usual.resize(position + 1, 0);
        }
        m_usual[position] = static_cast<unsigned>(group - m_groups.data());
    }
    return group;
}

} // namespace kvr::netlistdb::yosys
