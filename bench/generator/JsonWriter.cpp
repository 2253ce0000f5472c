#include "JsonWriter.h"

#include "OutputFile.h"

#include <algorithm>
#include <functional>

namespace kvr::netlistdb::bench {
namespace {

using Texts = std::vector<std::pair<std::string, std::string>>;

const char *name(Direction direction)
{
    return direction == Direction::Input ? "input" : "output";
}

int isGenerated(const std::string &text)
{
    return !text.empty() && text.front() == '$' ? 1 : 0;
}

class JsonWriter {
  public:
    JsonWriter(const Design &design, const std::string &path) : m_design(design), m_out(path) {}

    void write()
    {
        m_out.print("{{\n  \"creator\": \"netlist_generator\",\n  \"modules\": {{\n");
        std::vector<std::pair<std::string, std::function<void()>>> modules;
        for (const CellType &type : m_design.types) {
            if (type.kind == CellType::Kind::BlackBox) {
                modules.emplace_back(type.name, [&] { writeBlackBox(type); });
            }
        }
        for (const Module &module : m_design.modules) {
            modules.emplace_back(module.name, [&] { writeModule(module); });
        }
        std::sort(modules.begin(), modules.end(),
                  [](const auto &left, const auto &right) { return left.first < right.first; });
        for (std::size_t index = 0; index < modules.size(); ++index) {
            m_out.print("    \"{}\": {{\n", modules[index].first);
            modules[index].second();
            m_out.print("    }}{}\n", index + 1 < modules.size() ? "," : "");
        }
        m_out.print("  }}\n}}\n");
        m_out.close();
    }

  private:
    const char *comma(bool first) { return first ? "" : ","; }

    void texts(const Texts &entries, unsigned indent)
    {
        bool first = true;
        for (const auto &[key, value] : entries) {
            m_out.print("{}\n{:{}}\"{}\": \"{}\"", comma(first), "", indent, key, value);
            first = false;
        }
    }

    std::string source(SourcePosition position) const
    {
        return fmt::format("{}:{}.5-{}.48", m_design.files[position.file], position.line, position.line);
    }

    Texts attributes(SourcePosition position) const
    {
        return position.file == 0 ? Texts() : Texts{{"src", source(position)}};
    }

    /// The number that stands for a bit in the file: counted from 2 by first appearance.
    unsigned number(Bit bit)
    {
        unsigned &result = m_numbers[bit];
        if (result == 0) {
            result = m_next++;
        }
        return result;
    }

    void bits(const Bit *first, const Bit *last)
    {
        m_out.print("[ ");
        for (const Bit *bit = first; bit != last; ++bit) {
            m_out.print("{}{}", bit == first ? "" : ", ", number(*bit));
        }
        m_out.print(" ]");
    }

    void bits(Bit first, unsigned width)
    {
        m_vector.resize(width);
        for (unsigned index = 0; index < width; ++index) {
            m_vector[index] = first + index;
        }
        bits(m_vector.data(), m_vector.data() + width);
    }

    void startNumbers(std::size_t count)
    {
        m_numbers.assign(count, 0);
        m_next = 2;
    }

    void writeBlackBox(const CellType &type)
    {
        startNumbers(type.pinCount());
        m_out.print("      \"attributes\": {{\n        \"blackbox\": \"{:032b}\",\n"
                    "        \"src\": \"cells.v:1.1-9.10\"\n      }},\n",
                    1);
        Texts defaults = type.parameters;
        if (type.initWidth > 0) {
            defaults.emplace_back("INIT", std::string(type.initWidth, '0'));
            std::sort(defaults.begin(), defaults.end());
        }
        if (!defaults.empty()) {
            m_out.print("      \"parameter_default_values\": {{");
            texts(defaults, 8);
            m_out.print("\n      }},\n");
        }
        m_out.print("      \"ports\": {{");
        Bit bit = 0;
        std::vector<std::pair<const PortType *, Bit>> nets;
        for (const PortType &port : type.ports) {
            m_out.print("{}\n        \"{}\": {{\n          \"direction\": \"{}\",\n          \"bits\": ",
                        comma(bit == 0), port.name, name(port.direction));
            bits(bit, port.width);
            m_out.print("\n        }}");
            nets.emplace_back(&port, bit);
            bit += port.width;
        }
        m_out.print("\n      }},\n      \"cells\": {{\n      }},\n      \"netnames\": {{");
        std::sort(nets.begin(), nets.end(),
                  [](const auto &left, const auto &right) { return left.first->name < right.first->name; });
        bool first = true;
        for (const auto &[port, firstBit] : nets) {
            m_out.print("{}\n        \"{}\": {{\n          \"hide_name\": 0,\n          \"bits\": ", comma(first),
                        port->name);
            bits(firstBit, port->width);
            Texts entries;
            if (port->clock) {
                entries.emplace_back("KVR_ATTRIBUTE_PORT__IS_CLOCK", "TRUE");
                entries.emplace_back("clkbuf_sink", fmt::format("{:032b}", 1));
            }
            entries.emplace_back("src", "cells.v:2.5-2.20");
            m_out.print(",\n          \"attributes\": {{");
            texts(entries, 12);
            m_out.print("\n          }}\n        }}");
            first = false;
        }
        m_out.print("\n      }}\n");
    }

    void writeModule(const Module &module)
    {
        startNumbers(module.bitCount);
        Texts entries = attributes(module.position);
        if (module.top) {
            entries.emplace_back("top", fmt::format("{:032b}", 1));
        }
        m_out.print("      \"attributes\": {{");
        texts(entries, 8);
        m_out.print("\n      }},\n      \"ports\": {{");
        bool first = true;
        for (const auto &[portName, direction] : module.ports) {
            const auto signal =
                std::find_if(module.signals.begin(), module.signals.end(),
                             [&name = portName](const Signal &candidate) { return candidate.name == name; });
            m_out.print("{}\n        \"{}\": {{\n          \"direction\": \"{}\",\n          \"bits\": ", comma(first),
                        portName, name(direction));
            bits(signal->firstBit, signal->width);
            m_out.print("\n        }}");
            first = false;
        }
        m_out.print("\n      }},\n      \"cells\": {{");
        first = true;
        for (const Cell &cell : module.cells) {
            m_out.print("{}", comma(first));
            writeCell(module, cell);
            first = false;
        }
        m_out.print("\n      }},\n      \"netnames\": {{");
        first = true;
        for (const Signal &signal : module.signals) {
            m_out.print("{}\n        \"{}\": {{\n          \"hide_name\": {},\n          \"bits\": ", comma(first),
                        signal.name, isGenerated(signal.name));
            bits(signal.firstBit, signal.width);
            m_out.print(",\n          \"attributes\": {{");
            texts(attributes(signal.position), 12);
            m_out.print("\n          }}\n        }}");
            first = false;
        }
        m_out.print("\n      }}\n");
    }

    void writeCell(const Module &module, const Cell &cell)
    {
        const CellType &type = m_design.types[cell.type];
        m_out.print("\n        \"{}\": {{\n          \"hide_name\": {},\n          \"type\": \"{}\",\n"
                    "          \"parameters\": {{",
                    cell.name, isGenerated(cell.name), type.name);
        Texts entries = type.parameters;
        if (!cell.init.empty()) {
            entries.emplace_back("INIT", cell.init);
            std::sort(entries.begin(), entries.end());
        }
        texts(entries, 12);
        m_out.print("\n          }},\n          \"attributes\": {{");
        entries.clear();
        if (type.kind == CellType::Kind::BlackBox) {
            entries.emplace_back("KVR_ATTRIBUTE_CELL_NAME", type.name);
        }
        if (cell.position.file != 0) {
            entries.emplace_back("src", source(cell.position));
        }
        texts(entries, 12);
        m_out.print("\n          }},\n          \"port_directions\": {{");
        // Ports of a cell are written in byte order of their names.
        struct Pin {
            const PortType *port;
            std::size_t first;
        };
        std::vector<Pin> pins;
        std::size_t pin = cell.firstPin;
        for (const PortType &port : type.ports) {
            pins.push_back({&port, pin});
            pin += port.width;
        }
        std::sort(pins.begin(), pins.end(),
                  [](const Pin &left, const Pin &right) { return left.port->name < right.port->name; });
        bool first = true;
        for (const Pin &entry : pins) {
            m_out.print("{}\n            \"{}\": \"{}\"", comma(first), entry.port->name, name(entry.port->direction));
            first = false;
        }
        m_out.print("\n          }},\n          \"connections\": {{");
        first = true;
        for (const Pin &entry : pins) {
            m_out.print("{}\n            \"{}\": ", comma(first), entry.port->name);
            bits(&module.pins[entry.first], &module.pins[entry.first] + entry.port->width);
            first = false;
        }
        m_out.print("\n          }}\n        }}");
    }

    const Design &m_design;
    OutputFile m_out;
    std::vector<unsigned> m_numbers;
    unsigned m_next = 2;
    std::vector<Bit> m_vector;
};

} // namespace

void writeJson(const Design &design, const std::string &path)
{
    JsonWriter(design, path).write();
}

void writeNames(const Design &design, const std::string &path)
{
    OutputFile out(path);
    for (const Signal &signal : design.top().signals) {
        out.print("{}\n", signal.name);
    }
    out.close();
}

} // namespace kvr::netlistdb::bench
