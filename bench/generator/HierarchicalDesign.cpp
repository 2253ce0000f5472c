#include "Design.h"
#include "ModuleBuilder.h"
#include "Random.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <cmath>
#include <map>
#include <stdexcept>

namespace kvr::netlistdb::bench {
namespace {

constexpr Direction IN = Direction::Input;
constexpr Direction OUT = Direction::Output;

constexpr unsigned WORD = 16;
constexpr std::array CLOCKS{"sys", "eth", "ddr", "adc"};
constexpr std::array BLOCKS{"alu", "fifo", "lsu", "decode", "arbiter", "crc", "timer", "regfile", "parse", "sched"};
constexpr std::array UNITS{"core", "mac", "router", "cache", "filter", "bridge"};
constexpr std::array CLUSTERS{"compute", "network", "memory", "video"};

std::string number32(unsigned value)
{
    return std::bitset<32>(value).to_string();
}

/// Nets of a module that further logic may read.
struct Sources {
    std::vector<Bit> words; ///< lowest bits of WORD-wide signals
    std::vector<Bit> bits;
};

class HierarchicalMaker {
  public:
    explicit HierarchicalMaker(std::size_t leafInstances) : m_target(leafInstances), m_random(977 + leafInstances)
    {
        m_design.files = {""};
    }

    Design make()
    {
        // About as many blocks in a unit as units in a cluster as clusters in the top.
        const double leavesPerBlock = 60;
        const auto side = static_cast<unsigned>(std::lround(std::cbrt(static_cast<double>(m_target) / leavesPerBlock)));
        m_fanOut = std::max(2U, side);
        const auto instances = static_cast<unsigned>(static_cast<double>(m_target) / leavesPerBlock);
        const unsigned distinct = std::max(4U, instances / 100);
        const unsigned clusterTypes = std::clamp(distinct / 40, 1U, 4U);
        const unsigned unitTypes = std::clamp(distinct / 6, 1U, 16U);
        const unsigned blockTypes = std::max(2U, distinct - clusterTypes - unitTypes - 1);

        std::vector<std::uint32_t> blocks;
        for (unsigned index = 0; index < blockTypes; ++index) {
            blocks.push_back(makeBlock(index));
        }
        std::vector<std::uint32_t> units;
        for (unsigned index = 0; index < unitTypes; ++index) {
            units.push_back(makeParent("unit", UNITS, index, blocks, index == 0));
        }
        std::vector<std::uint32_t> clusters;
        for (unsigned index = 0; index < clusterTypes; ++index) {
            clusters.push_back(makeParent("cluster", CLUSTERS, index, units, false));
        }
        makeTop(clusters, blocks);
        sortByName(m_design);
        return std::move(m_design);
    }

  private:
    /// What an instance of a module unfolds into.
    struct Unfolded {
        std::size_t leaves = 0;
        std::size_t modules = 1; ///< itself included
        std::size_t registers = 0;
        std::size_t ownClocks = 0; ///< clocks that are made inside
        std::size_t depth = 1;     ///< levels of leaves below

        void add(const Unfolded &child)
        {
            leaves += child.leaves;
            modules += child.modules;
            registers += child.registers;
            ownClocks += child.ownClocks;
            depth = std::max(depth, child.depth + 1);
        }
    };

    struct Frame {
        ModuleBuilder builder;
        SourcePosition position;
        Sources sources;
        Unfolded unfolded;
        Bit clock = 0;
        Bit reset = 0;
    };

    // ---- cell types, one for each set of parameters

    std::uint32_t cellType(const std::string &name, CellType::Kind kind, std::vector<PortType> ports,
                           std::vector<std::pair<std::string, std::string>> parameters)
    {
        std::string key = name;
        for (const PortType &port : ports) {
            key += "," + port.name + std::to_string(port.width);
        }
        const auto [found, isNew] = m_types.emplace(key, static_cast<std::uint32_t>(m_design.types.size()));
        if (isNew) {
            m_design.types.push_back({name, kind, std::move(ports), std::move(parameters), 0});
        }
        return found->second;
    }

    std::uint32_t unaryType(const std::string &name, unsigned a, unsigned y)
    {
        return cellType(name, CellType::Kind::Operator, {{"A", IN, a}, {"Y", OUT, y}},
                        {{"A_SIGNED", number32(0)}, {"A_WIDTH", number32(a)}, {"Y_WIDTH", number32(y)}});
    }

    std::uint32_t binaryType(const std::string &name, unsigned a, unsigned b, unsigned y)
    {
        return cellType(name, CellType::Kind::Operator, {{"A", IN, a}, {"B", IN, b}, {"Y", OUT, y}},
                        {{"A_SIGNED", number32(0)},
                         {"A_WIDTH", number32(a)},
                         {"B_SIGNED", number32(0)},
                         {"B_WIDTH", number32(b)},
                         {"Y_WIDTH", number32(y)}});
    }

    std::uint32_t muxType(unsigned width)
    {
        return cellType("$mux", CellType::Kind::Operator,
                        {{"A", IN, width}, {"B", IN, width}, {"S", IN, 1}, {"Y", OUT, width}},
                        {{"WIDTH", number32(width)}});
    }

    std::uint32_t registerType(unsigned width, bool reset)
    {
        if (!reset) {
            return cellType("$dff", CellType::Kind::Register,
                            {{"CLK", IN, 1, true}, {"D", IN, width}, {"Q", OUT, width}},
                            {{"CLK_POLARITY", "1"}, {"WIDTH", number32(width)}});
        }
        return cellType("$adff", CellType::Kind::Register,
                        {{"ARST", IN, 1}, {"CLK", IN, 1, true}, {"D", IN, width}, {"Q", OUT, width}},
                        {{"ARST_POLARITY", "0"},
                         {"ARST_VALUE", std::string(width, '0')},
                         {"CLK_POLARITY", "1"},
                         {"WIDTH", number32(width)}});
    }

    // ---- logic

    SourcePosition nextLine(Frame &frame)
    {
        frame.position.line += m_random.between(1, 3);
        return frame.position;
    }

    std::string place(const Frame &frame) const
    {
        return m_design.files[frame.position.file] + ":" + std::to_string(frame.position.line) + "$" +
               std::to_string(m_serial);
    }

    /// A register of one or WORD bits whose input is connected by feedRegisters.
    void addRegister(Frame &frame, const std::string &name, unsigned width)
    {
        const SourcePosition position = nextLine(frame);
        const bool reset = m_random.chance(700);
        const Bit output = frame.builder.addSignal(name, width, position);
        const std::size_t cell =
            frame.builder.addCell("$procdff$" + std::to_string(++m_serial), registerType(width, reset), position);
        frame.builder.connect(cell, "CLK", frame.clock);
        if (reset) {
            frame.builder.connect(cell, "ARST", frame.reset);
        }
        frame.builder.connect(cell, "Q", output);
        (width == 1 ? frame.sources.bits : frame.sources.words).push_back(output);
        m_openRegisters.push_back(cell);
        ++frame.unfolded.leaves;
        ++frame.unfolded.registers;
    }

    void feedRegisters(Frame &frame)
    {
        for (const std::size_t cell : m_openRegisters) {
            const CellType &type = m_design.types[frame.builder.module().cells[cell].type];
            const bool word = type.ports.back().width == WORD;
            frame.builder.connect(cell, "D", pickLate(word ? frame.sources.words : frame.sources.bits));
        }
        m_openRegisters.clear();
    }

    /// One of the last few: keeps cones deep.
    Bit pickLate(const std::vector<Bit> &from)
    {
        return from[from.size() - 1 - m_random.below(std::min<std::size_t>(from.size(), 8))];
    }

    void addOperator(Frame &frame, std::size_t count)
    {
        for (; count > 0; --count) {
            ++m_serial;
            ++frame.unfolded.leaves;
            const SourcePosition position = nextLine(frame);
            ModuleBuilder &builder = frame.builder;
            const std::size_t choice = m_random.below(100);
            const auto finish = [&](std::size_t cell, const std::string &generated, const char *port, unsigned width) {
                // Half of the results are wires that the RTL names.
                const bool named = m_random.chance(500);
                const Bit output = named ? builder.addSignal("w_" + std::to_string(m_serial), width, position)
                                         : builder.addSignal(generated + "_" + port, width, {});
                builder.connect(cell, port, output);
                (width == 1 ? frame.sources.bits : frame.sources.words).push_back(output);
            };
            if (choice < 45) {
                constexpr std::array WORD_OPERATORS{"$add", "$sub", "$and", "$or", "$xor", "$add", "$shl"};
                const std::string type = m_random.pick(WORD_OPERATORS);
                const std::string name = type + "$" + place(frame);
                const std::size_t cell = builder.addCell(name, binaryType(type, WORD, WORD, WORD), position);
                builder.connect(cell, "A", pickLate(frame.sources.words));
                builder.connect(cell, "B", m_random.pick(frame.sources.words));
                finish(cell, name, "Y", WORD);
            } else if (choice < 70) {
                const bool word = m_random.chance(800);
                const unsigned width = word ? WORD : 1;
                const auto &inputs = word ? frame.sources.words : frame.sources.bits;
                const std::string name = "$procmux$" + std::to_string(m_serial);
                const std::size_t cell = builder.addCell(name, muxType(width), position);
                builder.connect(cell, "A", pickLate(inputs));
                builder.connect(cell, "B", m_random.pick(inputs));
                builder.connect(cell, "S", m_random.pick(frame.sources.bits));
                finish(cell, name, "Y", width);
            } else if (choice < 85) {
                constexpr std::array COMPARISONS{"$eq", "$lt", "$ne", "$ge"};
                const std::string type = m_random.pick(COMPARISONS);
                const std::string name = type + "$" + place(frame);
                const std::size_t cell = builder.addCell(name, binaryType(type, WORD, WORD, 1), position);
                builder.connect(cell, "A", pickLate(frame.sources.words));
                builder.connect(cell, "B", m_random.pick(frame.sources.words));
                finish(cell, name, "Y", 1);
            } else if (choice < 95) {
                constexpr std::array BIT_OPERATORS{"$and", "$or", "$logic_and", "$logic_or"};
                const std::string type = m_random.pick(BIT_OPERATORS);
                const std::string name = type + "$" + place(frame);
                const std::size_t cell = builder.addCell(name, binaryType(type, 1, 1, 1), position);
                builder.connect(cell, "A", pickLate(frame.sources.bits));
                builder.connect(cell, "B", m_random.pick(frame.sources.bits));
                finish(cell, name, "Y", 1);
            } else {
                constexpr std::array UNARY{"$reduce_or", "$logic_not"};
                const std::string type = m_random.pick(UNARY);
                const std::string name = type + "$" + place(frame);
                const std::size_t cell = builder.addCell(name, unaryType(type, WORD, 1), position);
                builder.connect(cell, "A", pickLate(frame.sources.words));
                finish(cell, name, "Y", 1);
            }
        }
    }

    // ---- modules

    static std::vector<PortType> modulePorts()
    {
        return {{"clk_i", IN, 1},  {"rst_ni", IN, 1},  {"en_i", IN, 1},    {"a_i", IN, WORD},
                {"b_i", IN, WORD}, {"y_o", OUT, WORD}, {"valid_o", OUT, 1}};
    }

    Frame openModule(const std::string &name)
    {
        m_design.files.push_back("rtl/" + name + ".v");
        const auto file = static_cast<std::uint32_t>(m_design.files.size() - 1);
        Module &module = m_module = Module();
        module.name = name;
        module.position = {file, 1};
        return Frame{ModuleBuilder(m_design, module), {file, 2}, {}, {}, 0, 0};
    }

    std::uint32_t closeModule(Frame &frame, std::vector<PortType> ports)
    {
        const auto type = static_cast<std::uint32_t>(m_design.types.size());
        m_design.types.push_back(
            {m_module.name, CellType::Kind::Module, std::move(ports), {}, m_design.modules.size()});
        m_unfolded[type] = frame.unfolded;
        m_design.modules.push_back(std::move(m_module));
        return type;
    }

    void addModulePorts(Frame &frame)
    {
        frame.clock = frame.builder.addPort("clk_i", IN, 1, nextLine(frame));
        frame.reset = frame.builder.addPort("rst_ni", IN, 1, nextLine(frame));
        frame.sources.bits.push_back(frame.builder.addPort("en_i", IN, 1, nextLine(frame)));
        frame.sources.words.push_back(frame.builder.addPort("a_i", IN, WORD, nextLine(frame)));
        frame.sources.words.push_back(frame.builder.addPort("b_i", IN, WORD, nextLine(frame)));
    }

    /// The outputs of a module are registers.
    void addModuleOutputs(Frame &frame)
    {
        frame.builder.module().ports.emplace_back("y_o", OUT);
        frame.builder.module().ports.emplace_back("valid_o", OUT);
        addRegister(frame, "y_o", WORD);
        frame.builder.module().signals.back().port = true;
        addRegister(frame, "valid_o", 1);
        frame.builder.module().signals.back().port = true;
    }

    std::uint32_t makeBlock(unsigned index)
    {
        Frame frame =
            openModule(std::string(BLOCKS[index % BLOCKS.size()]) + "_" + std::to_string(index / BLOCKS.size()));
        addModulePorts(frame);
        addModuleOutputs(frame);
        const unsigned leaves = m_random.between(45, 75);
        const unsigned registers = leaves * 3 / 10;
        for (unsigned count = 2; count < registers; ++count) {
            addRegister(frame, "stage_" + std::to_string(count) + "_q", m_random.chance(650) ? WORD : 1);
        }
        addOperator(frame, leaves - frame.unfolded.leaves);
        feedRegisters(frame);
        return closeModule(frame, modulePorts());
    }

    /// An instance whose inputs are picked from what the parent has; its outputs join that.
    void addChild(Frame &frame, std::uint32_t type, const std::string &name, Bit clock, Bit reset)
    {
        const SourcePosition position = nextLine(frame);
        ModuleBuilder &builder = frame.builder;
        const std::size_t cell = builder.addCell(name, type, position);
        builder.connect(cell, "clk_i", clock);
        builder.connect(cell, "rst_ni", reset);
        builder.connect(cell, "en_i", m_random.pick(frame.sources.bits));
        builder.connect(cell, "a_i", pickLate(frame.sources.words));
        builder.connect(cell, "b_i", m_random.pick(frame.sources.words));
        const Bit result = builder.addSignal(name + "_y", WORD, position);
        const Bit valid = builder.addSignal(name + "_valid", 1, position);
        builder.connect(cell, "y_o", result);
        builder.connect(cell, "valid_o", valid);
        frame.sources.words.push_back(result);
        frame.sources.bits.push_back(valid);
        frame.unfolded.add(m_unfolded[type]);
    }

    template <typename Names> std::uint32_t makeParent(const char *level, const Names &names, unsigned index,
                                                       const std::vector<std::uint32_t> &children, bool dividesClock)
    {
        const std::string kind = names[index % names.size()];
        Frame frame = openModule(kind + "_" + level + "_" + std::to_string(index / names.size()));
        addModulePorts(frame);
        addModuleOutputs(frame);
        for (unsigned count = 0; count < 4; ++count) {
            addRegister(frame, "ctrl_" + std::to_string(count) + "_q", m_random.chance(500) ? WORD : 1);
        }
        Bit childClock = frame.clock;
        if (dividesClock) {
            addRegister(frame, "clk_div_q", 1);
            childClock = frame.sources.bits.back();
            frame.sources.bits.pop_back();
            ++frame.unfolded.ownClocks;
        }
        addOperator(frame, 8);
        for (unsigned child = 0; child < m_fanOut; ++child) {
            const std::uint32_t type = children[m_random.below(children.size())];
            const std::string name = "u_" + m_design.types[type].name + "_" + std::to_string(child);
            const bool divided = child % 2 == 0;
            addChild(frame, type, name, divided ? childClock : frame.clock, frame.reset);
        }
        addOperator(frame, 4);
        feedRegisters(frame);
        return closeModule(frame, modulePorts());
    }

    void makeTop(const std::vector<std::uint32_t> &clusters, const std::vector<std::uint32_t> &blocks)
    {
        Frame frame = openModule("soc_top");
        std::vector<Bit> clocks;
        for (const char *clock : CLOCKS) {
            const std::string name = std::string("clk_") + clock + "_i";
            clocks.push_back(frame.builder.addPort(name, IN, 1, nextLine(frame)));
            m_design.clockNets.push_back(name);
        }
        frame.clock = clocks.front();
        frame.reset = frame.builder.addPort("rst_ni", IN, 1, nextLine(frame));
        frame.sources.bits.push_back(frame.builder.addPort("en_i", IN, 1, nextLine(frame)));
        frame.sources.words.push_back(frame.builder.addPort("a_i", IN, WORD, nextLine(frame)));
        frame.sources.words.push_back(frame.builder.addPort("b_i", IN, WORD, nextLine(frame)));
        addModuleOutputs(frame);

        unsigned child = 0;
        const auto fill = [&](const std::vector<std::uint32_t> &types, const char *prefix) {
            for (;;) {
                const std::uint32_t type = types[child % types.size()];
                if (frame.unfolded.leaves + m_unfolded[type].leaves > m_target) {
                    return;
                }
                const std::string name = prefix + m_design.types[type].name + "_" + std::to_string(child);
                addChild(frame, type, name, clocks[child % clocks.size()], frame.reset);
                // Outputs of every module are registers on its clock.
                for (unsigned bit = 0; bit < WORD; ++bit) {
                    m_design.knownClocks.push_back(
                        {frame.sources.words.back() + bit, child % static_cast<unsigned>(clocks.size())});
                }
                ++child;
            }
        };
        fill(clusters, "u_");
        fill(blocks, "u_glue_");
        addOperator(frame, m_target - frame.unfolded.leaves);
        feedRegisters(frame);
        m_module.top = true;

        DesignCounts &counts = m_design.counts;
        counts.leafInstances = frame.unfolded.leaves;
        counts.moduleInstances = frame.unfolded.modules - 1;
        counts.registers = frame.unfolded.registers;
        counts.depth = frame.unfolded.depth;
        counts.clockDomains = clocks.size() + frame.unfolded.ownClocks;
        counts.topNets = m_module.bitCount;
        counts.topItems = m_module.signals.size();
        for (const Signal &signal : m_module.signals) {
            counts.topUserItems += signal.position.file != 0 ? 1 : 0;
        }
        m_design.modules.push_back(std::move(m_module));
        counts.modules = m_design.modules.size();
    }

    std::size_t m_target;
    Random m_random;
    Design m_design;
    Module m_module; ///< being built
    unsigned m_fanOut = 0;
    std::size_t m_serial = 0;
    std::map<std::string, std::uint32_t> m_types;
    std::map<std::uint32_t, Unfolded> m_unfolded;
    std::vector<std::size_t> m_openRegisters; ///< cells without input
};

} // namespace

Design makeHierarchicalDesign(std::size_t leafInstances)
{
    if (leafInstances < 1000) {
        throw std::invalid_argument("a hierarchical design has at least 1000 leaf instances");
    }
    return HierarchicalMaker(leafInstances).make();
}

} // namespace kvr::netlistdb::bench
