#include "ModuleBuilder.h"

namespace kvr::netlistdb::bench {

Bit ModuleBuilder::addSignal(std::string name, unsigned width, SourcePosition position)
{
    const Bit first = m_module.bitCount;
    m_module.signals.push_back({std::move(name), first, width, position, false});
    m_module.bitCount += width;
    return first;
}

Bit ModuleBuilder::addSplitSignal(const std::string &name, unsigned width, SourcePosition position)
{
    const Bit first = m_module.bitCount;
    for (unsigned index = 0; index < width; ++index) {
        addSignal(name + "[" + std::to_string(index) + "]", 1, position);
    }
    return first;
}

Bit ModuleBuilder::addPort(const std::string &name, Direction direction, unsigned width, SourcePosition position)
{
    m_module.ports.emplace_back(name, direction);
    const Bit first = addSignal(name, width, position);
    m_module.signals.back().port = true;
    return first;
}

std::size_t ModuleBuilder::addCell(std::string name, std::uint32_t type, SourcePosition position, std::string init)
{
    m_module.cells.push_back({std::move(name), type, m_module.pins.size(), std::move(init), position});
    m_module.pins.resize(m_module.pins.size() + m_design.types[type].pinCount());
    return m_module.cells.size() - 1;
}

void ModuleBuilder::connect(std::size_t cell, const std::string &port, Bit firstBit)
{
    const Cell &target = m_module.cells[cell];
    const CellType &type = m_design.types[target.type];
    const std::size_t pin = target.firstPin + type.pinOf(port);
    for (const PortType &candidate : type.ports) {
        if (candidate.name == port) {
            for (unsigned bit = 0; bit < candidate.width; ++bit) {
                m_module.pins[pin + bit] = firstBit + bit;
            }
            return;
        }
    }
}

void ModuleBuilder::connectPin(std::size_t cell, std::size_t pin, Bit bit)
{
    m_module.pins[m_module.cells[cell].firstPin + pin] = bit;
}

} // namespace kvr::netlistdb::bench
