#include "Design.h"
#include "ModuleBuilder.h"
#include "Random.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace kvr::netlistdb::bench {
namespace {

// Indices into Design::types.
enum KvrCell : std::uint32_t {
    KVR_LUT2,
    KVR_LUT3,
    KVR_LUT4,
    KVR_LUT5,
    KVR_LUT6,
    KVR_FF,
    KVR_SRL16,
    KVR_RAMD16X4,
    KVR_RAM512X18,
    KVR_DSP48,
    KVR_MULT,
    KVR_GBUFCE,
    KVR_IBUF,
    KVR_OBUF,
    KVR_VCC,
    KVR_GND,
};

constexpr Direction IN = Direction::Input;
constexpr Direction OUT = Direction::Output;

std::vector<CellType> kvrLibrary()
{
    std::vector<CellType> types;
    const auto add = [&](const std::string &name, std::vector<PortType> ports, unsigned initWidth = 0,
                         std::vector<std::pair<std::string, std::string>> parameters = {}) {
        types.push_back({name, CellType::Kind::BlackBox, std::move(ports), std::move(parameters), 0, initWidth});
    };
    for (unsigned inputs = 2; inputs <= 6; ++inputs) {
        std::vector<PortType> ports;
        for (unsigned input = 0; input < inputs; ++input) {
            ports.push_back({"I" + std::to_string(input), IN, 1});
        }
        ports.push_back({"O", OUT, 1});
        add("KVR_LUT" + std::to_string(inputs), std::move(ports), 1U << inputs);
    }
    add("KVR_FF", {{"C", IN, 1, true}, {"D", IN, 1}, {"E", IN, 1}, {"R", IN, 1}, {"Q", OUT, 1}}, 0,
        {{"C_INVERTED", "0"}, {"INIT", "0"}, {"RESET_VALUE", "0"}, {"R_ASYNC", "1"}, {"R_INVERTED", "1"}});
    add("KVR_SRL16", {{"C", IN, 1, true}, {"D", IN, 1}, {"E", IN, 1}, {"A", IN, 4}, {"Q", OUT, 1}}, 16,
        {{"C_INVERTED", "0"}});
    add("KVR_RAMD16X4",
        {{"W_CLK", IN, 1, true},
         {"W_EN", IN, 1},
         {"W_ADDR", IN, 4},
         {"W_DATA", IN, 4},
         {"R_ADDR", IN, 4},
         {"R_DATA", OUT, 4}},
        64);
    add("KVR_RAM512X18",
        {{"W_CLK", IN, 1, true},
         {"W_EN", IN, 1},
         {"W_ADDR", IN, 9},
         {"W_DATA", IN, 18},
         {"R_CLK", IN, 1, true},
         {"R_EN", IN, 1},
         {"R_ADDR", IN, 9},
         {"R_DATA", OUT, 18}},
        9216);
    add("KVR_DSP48",
        {{"CLK", IN, 1, true}, {"CE", IN, 1}, {"A", IN, 18}, {"B", IN, 18}, {"C", IN, 48}, {"P", OUT, 48}});
    add("KVR_MULT", {{"CLK", IN, 1, true}, {"CE", IN, 1}, {"A", IN, 18}, {"B", IN, 18}, {"P", OUT, 36}});
    add("KVR_GBUFCE", {{"I", IN, 1}, {"CE", IN, 1}, {"O", OUT, 1}});
    add("KVR_IBUF", {{"I", IN, 1}, {"O", OUT, 1}});
    add("KVR_OBUF", {{"I", IN, 1}, {"O", OUT, 1}});
    add("KVR_VCC", {{"O", OUT, 1}});
    add("KVR_GND", {{"O", OUT, 1}});
    return types;
}

constexpr std::array CLUSTERS{"u_core", "u_dsp", "u_eth", "u_ddr", "u_dma", "u_video", "u_crypto", "u_noc"};
constexpr std::array BLOCKS{"u_alu",   "u_fifo",    "u_lsu",   "u_decode", "u_arbiter", "u_crc",
                            "u_timer", "u_regfile", "u_parse", "u_sched",  "u_align",   "u_tap"};
constexpr std::array REGISTERS{"data_q", "addr_q", "count_q", "state_q", "valid_q", "ready_q",   "shift_q", "acc_q",
                               "ptr_q",  "tag_q",  "lane_q",  "crc_q",   "mask_q",  "pending_q", "credit_q"};
constexpr std::array WIRES{"sum", "next", "hit", "grant", "select", "carry", "match", "wdata", "rdata", "error"};
constexpr std::array REGISTER_WIDTHS{1U, 1U, 1U, 2U, 3U, 4U, 8U, 8U, 16U, 32U};
constexpr std::array WIRE_WIDTHS{1U, 1U, 2U, 4U, 8U, 8U, 16U};
constexpr std::array CLOCKS{"sys", "eth", "ddr", "adc"};
constexpr unsigned PAD_WIDTH = 64;
constexpr unsigned MAX_LOGIC_LEVELS = 8;

class FlatMaker {
  public:
    explicit FlatMaker(std::size_t leafInstances) : m_target(leafInstances), m_random(20240607 + leafInstances)
    {
        m_design.files = {"", "rtl/top/soc_pads.v"};
        for (const char *block : BLOCKS) {
            m_design.files.push_back(std::string("rtl/blocks/") + (block + 2) + ".v");
        }
        m_design.types = kvrLibrary();
    }

    Design make()
    {
        Module &top = m_design.modules.front();
        top.name = "soc_top";
        top.position = {1, 1};
        top.top = true;
        top.signals.reserve(m_target);
        top.cells.reserve(m_target);
        top.pins.reserve(m_target * 5);

        makePads();
        makeClocks();
        while (remaining() > 0) {
            makeCluster();
        }
        connectOutputPads();

        DesignCounts &counts = m_design.counts;
        counts.leafInstances = top.cells.size();
        counts.modules = 1;
        counts.topNets = top.bitCount;
        counts.topItems = top.signals.size() - m_groupedBits + m_groupedBuses;
        counts.topUserItems = m_userSignals;
        // A clock counts before its buffer and behind it.
        counts.clockDomains = 2 * CLOCKS.size();
        counts.depth = 1;
        sortByName(m_design);
        return std::move(m_design);
    }

  private:
    struct Block {
        std::string path;
        SourcePosition position;
        unsigned clock = 0;
        std::vector<Bit> registers;
        std::vector<Bit> luts;
        std::vector<unsigned> levels; ///< of the luts
    };

    /// Output pads come last, when there is something to drive them.
    std::size_t remaining() const { return m_target - PAD_WIDTH - m_builder.module().cells.size(); }

    SourcePosition nextLine(SourcePosition &position)
    {
        position.line += m_random.between(1, 4);
        return position;
    }

    Bit userSignal(const std::string &name, unsigned width, SourcePosition position)
    {
        ++m_userSignals;
        return m_builder.addSignal(name, width, position);
    }

    /// One vector in ten comes out of optimisation as single bits.
    Bit userVector(const std::string &name, unsigned width, SourcePosition position)
    {
        if (width > 1 && m_random.chance(100)) {
            ++m_groupedBuses;
            m_groupedBits += width;
            return m_builder.addSplitSignal(name, width, position);
        }
        return userSignal(name, width, position);
    }

    std::string generatedName(const char *pass) { return pass + std::to_string(++m_serial); }

    std::string randomInit(unsigned width)
    {
        std::string init(width, '0');
        std::uint64_t bits = 0;
        for (unsigned index = 0; index < width; ++index) {
            if (index % 64 == 0) {
                bits = m_random.bits();
            }
            init[index] = static_cast<char>('0' + ((bits >> (index % 64)) & 1));
        }
        return init;
    }

    void addBuffer(std::uint32_t type, const std::string &name, Bit input, Bit output)
    {
        const std::size_t cell = m_builder.addCell(name, type, {1, 200});
        m_builder.connect(cell, "I", input);
        m_builder.connect(cell, "O", output);
    }

    void makePads()
    {
        SourcePosition position{1, 10};
        m_vcc = m_builder.addSignal("$auto$hilomap.cc:46:hilomap_worker$1", 1, {});
        m_builder.connect(m_builder.addCell("$auto$hilomap.cc:43:hilomap_worker$2", KVR_VCC, {}), "O", m_vcc);
        m_gnd = m_builder.addSignal("$auto$hilomap.cc:64:hilomap_worker$3", 1, {});
        m_builder.connect(m_builder.addCell("$auto$hilomap.cc:61:hilomap_worker$4", KVR_GND, {}), "O", m_gnd);

        for (const char *clock : CLOCKS) {
            m_clockPads.push_back(port(std::string("clk_") + clock + "_i", IN, 1, nextLine(position)));
        }
        const Bit resetPad = port("rst_ni", IN, 1, nextLine(position));
        const Bit inputPads = port("pad_i", IN, PAD_WIDTH, nextLine(position));
        m_outputPads = port("pad_o", OUT, PAD_WIDTH, nextLine(position));

        m_reset = userSignal("u_pads/rst_n", 1, nextLine(position));
        addBuffer(KVR_IBUF, "u_pads/u_rst_ibuf", resetPad, m_reset);
        m_inputs = userSignal("u_pads/pad_in", PAD_WIDTH, nextLine(position));
        for (unsigned bit = 0; bit < PAD_WIDTH; ++bit) {
            addBuffer(KVR_IBUF, "u_pads/u_in_" + std::to_string(bit), inputPads + bit, m_inputs + bit);
        }
    }

    Bit port(const std::string &name, Direction direction, unsigned width, SourcePosition position)
    {
        ++m_userSignals;
        return m_builder.addPort(name, direction, width, position);
    }

    /// Pad, input buffer, global buffer, and a reset that two flip-flops bring into step.
    void makeClocks()
    {
        SourcePosition position{1, 60};
        for (unsigned index = 0; index < CLOCKS.size(); ++index) {
            const std::string clock = CLOCKS[index];
            const Bit pad = userSignal("u_clocks/clk_" + clock + "_pad", 1, nextLine(position));
            addBuffer(KVR_IBUF, "u_clocks/u_" + clock + "_ibuf", m_clockPads[index], pad);
            m_design.clockNets.push_back("u_clocks/clk_" + clock + "_pad");
            const Bit net = userSignal("u_clocks/clk_" + clock, 1, nextLine(position));
            addBuffer(KVR_GBUFCE, "u_clocks/u_" + clock + "_gbuf", pad, net);
            m_builder.connect(m_builder.module().cells.size() - 1, "CE", m_vcc);
            m_clocks.push_back(net);

            const Bit meta = userSignal("u_clocks/rst_" + clock + "_meta_q", 1, nextLine(position));
            const Bit reset = userSignal("u_clocks/rst_" + clock + "_n", 1, nextLine(position));
            addFlipFlop("u_clocks/rst_" + clock + "_meta_q_reg", position, index, m_vcc, m_vcc, m_reset, meta);
            addFlipFlop("u_clocks/rst_" + clock + "_n_reg", position, index, meta, m_vcc, m_reset, reset);
            m_resets.push_back(reset);
        }
    }

    void addFlipFlop(const std::string &name, SourcePosition position, unsigned clock, Bit data, Bit enable, Bit reset,
                     Bit output)
    {
        const std::size_t cell = m_builder.addCell(name, KVR_FF, position);
        m_builder.connectPin(cell, 0, m_clocks[clock]);
        m_builder.connectPin(cell, 1, data);
        m_builder.connectPin(cell, 2, enable);
        m_builder.connectPin(cell, 3, reset);
        m_builder.connectPin(cell, 4, output);
        ++m_design.counts.registers;
        m_design.knownClocks.push_back({output, clock});
    }

    void makeCluster()
    {
        constexpr unsigned BLOCKS_PER_CLUSTER = 16;
        const unsigned share = m_random.between(0, 99);
        const unsigned clock = share < 60 ? 0 : share < 80 ? 1 : share < 93 ? 2 : 3;
        const std::string cluster =
            std::string(CLUSTERS[m_cluster % CLUSTERS.size()]) + "_" + std::to_string(m_cluster / CLUSTERS.size());
        ++m_cluster;
        for (unsigned index = 0; index < BLOCKS_PER_CLUSTER && remaining() > 0; ++index) {
            const std::size_t kind = m_random.below(BLOCKS.size());
            Block block;
            block.path = cluster + "/" + BLOCKS[kind] + "_" + std::to_string(index) + "/";
            block.position = {static_cast<std::uint32_t>(kind + 2), m_random.between(1, 40)};
            block.clock = clock;
            makeBlock(block, std::min<std::size_t>(remaining(), m_random.between(180, 320)));
            m_neighbour.swap(block.registers);
        }
    }

    void makeBlock(Block &block, std::size_t budget)
    {
        const std::size_t end = m_builder.module().cells.size() + budget;
        const std::size_t flipFlops = std::max<std::size_t>(1, budget * 42 / 100);

        // Registers first: logic reads them before their inputs are known.
        struct Register {
            Bit first;
            unsigned width;
            std::string name;
            SourcePosition position;
        };
        std::vector<Register> registers;
        for (std::size_t left = flipFlops; left > 0;) {
            const unsigned width = static_cast<unsigned>(std::min<std::size_t>(left, m_random.pick(REGISTER_WIDTHS)));
            left -= width;
            const std::string name = block.path + m_random.pick(REGISTERS) +
                                     (registers.empty() ? "" : "_" + std::to_string(registers.size()));
            const SourcePosition position = nextLine(block.position);
            const Bit first = userVector(name, width, position);
            registers.push_back({first, width, name, position});
            for (unsigned bit = 0; bit < width; ++bit) {
                block.registers.push_back(first + bit);
            }
        }

        std::vector<Bit> macroOutputs;
        makeMacros(block, budget, macroOutputs);
        const std::size_t luts = end - m_builder.module().cells.size() - flipFlops;
        makeLogic(block, luts, macroOutputs);

        for (const Register &reg : registers) {
            const Bit enable = block.luts.empty() || m_random.chance(300) ? m_vcc : m_random.pick(block.luts);
            const Bit reset = m_random.chance(850) ? m_resets[block.clock] : m_vcc;
            for (unsigned bit = 0; bit < reg.width; ++bit) {
                const bool shift = bit > 0 && m_random.chance(80);
                const Bit data = shift ? reg.first + bit - 1
                                       : (block.luts.empty() ? m_random.pick(block.registers)
                                                             : block.luts[m_random.below(block.luts.size())]);
                std::string name = reg.name + "_reg";
                if (reg.width > 1) {
                    name += "[" + std::to_string(bit) + "]";
                }
                addFlipFlop(name, reg.position, block.clock, data, enable, reset, reg.first + bit);
            }
        }
    }

    /// Memories, shift registers and arithmetic, a few in every thousand cells.
    void makeMacros(Block &block, std::size_t budget, std::vector<Bit> &outputs)
    {
        struct Kind {
            std::uint32_t type;
            unsigned perMille;
            const char *name;
        };
        constexpr std::array KINDS{Kind{KVR_SRL16, 8, "delay"}, Kind{KVR_RAMD16X4, 5, "lutram"},
                                   Kind{KVR_RAM512X18, 4, "ram"}, Kind{KVR_DSP48, 2, "mac"}, Kind{KVR_MULT, 1, "mul"}};
        unsigned count = 0;
        for (const Kind &kind : KINDS) {
            if (budget < 100) {
                return;
            }
            const std::size_t expected = budget * kind.perMille;
            std::size_t number = expected / 1000 + (m_random.below(1000) < expected % 1000 ? 1 : 0);
            for (; number > 0; --number) {
                addMacro(block, kind.type, std::string(kind.name) + "_" + std::to_string(count++), outputs);
            }
        }
    }

    void addMacro(Block &block, std::uint32_t type, const std::string &name, std::vector<Bit> &outputs)
    {
        std::string init;
        if (type == KVR_SRL16) {
            init = std::string(16, '0');
        } else if (type == KVR_RAMD16X4) {
            init = std::string(64, 'x');
        } else if (type == KVR_RAM512X18) {
            init = m_random.chance(250) ? randomInit(9216) : std::string(9216, 'x');
        }
        const SourcePosition position = nextLine(block.position);
        const std::size_t cell = m_builder.addCell(block.path + "u_" + name, type, position, std::move(init));
        std::size_t pin = 0;
        const std::size_t ports = m_design.types[type].ports.size();
        for (std::size_t index = 0; index < ports; ++index) {
            const PortType portType = m_design.types[type].ports[index];
            if (portType.direction == OUT) {
                const Bit first = userVector(block.path + name + "_" + portType.name, portType.width, position);
                for (unsigned bit = 0; bit < portType.width; ++bit) {
                    m_builder.connectPin(cell, pin + bit, first + bit);
                    outputs.push_back(first + bit);
                }
            } else {
                const bool tiedLow = type == KVR_DSP48 && portType.name == "C" && m_random.chance(500);
                for (unsigned bit = 0; bit < portType.width; ++bit) {
                    const Bit source = portType.clock        ? m_clocks[block.clock]
                                       : portType.width == 1 ? m_vcc
                                       : tiedLow             ? m_gnd
                                                             : m_random.pick(block.registers);
                    m_builder.connectPin(cell, pin + bit, source);
                }
            }
            pin += portType.width;
        }
        ++m_design.counts.registers;
    }

    void makeLogic(Block &block, std::size_t count, const std::vector<Bit> &macroOutputs)
    {
        while (count > 0) {
            const SourcePosition position = nextLine(block.position);
            unsigned width = 1;
            Bit first = 0;
            if (m_random.chance(60)) {
                width = static_cast<unsigned>(std::min<std::size_t>(count, m_random.pick(WIRE_WIDTHS)));
                first = userVector(block.path + m_random.pick(WIRES) + "_" + std::to_string(block.luts.size()), width,
                                   position);
            } else {
                first = m_builder.addSignal(generatedName("$abc$218047$new_n") + "_", 1, {});
            }
            for (unsigned bit = 0; bit < width; ++bit) {
                addLut(block, macroOutputs, position, first + bit);
            }
            count -= width;
        }
    }

    void addLut(Block &block, const std::vector<Bit> &macroOutputs, SourcePosition position, Bit output)
    {
        const unsigned inputs = m_random.between(2, 6);
        const std::size_t cell = m_builder.addCell(generatedName("$abc$218047$auto$blifparse.cc:525:parse_blif$"),
                                                   KVR_LUT2 + inputs - 2, position, randomInit(1U << inputs));
        unsigned level = 0;
        for (unsigned input = 0; input < inputs; ++input) {
            m_builder.connectPin(cell, input, pickInput(block, macroOutputs, level));
        }
        m_builder.connectPin(cell, inputs, output);
        block.luts.push_back(output);
        block.levels.push_back(level + 1);
    }

    Bit pickInput(const Block &block, const std::vector<Bit> &macroOutputs, unsigned &level)
    {
        constexpr std::size_t NEARBY = 24;
        const std::size_t choice = m_random.below(1000);
        if (choice < 400 && !block.luts.empty()) {
            const std::size_t index = block.luts.size() - 1 - m_random.below(std::min(NEARBY, block.luts.size()));
            if (block.levels[index] < MAX_LOGIC_LEVELS) {
                level = std::max(level, block.levels[index]);
                return block.luts[index];
            }
        }
        if (choice >= 900 && choice < 950 && !m_neighbour.empty()) {
            return m_random.pick(m_neighbour);
        }
        if (choice >= 950 && choice < 995 && !macroOutputs.empty()) {
            return m_random.pick(macroOutputs);
        }
        if (choice >= 995) {
            return m_inputs + static_cast<Bit>(m_random.below(PAD_WIDTH));
        }
        return m_random.pick(block.registers);
    }

    void connectOutputPads()
    {
        for (unsigned bit = 0; bit < PAD_WIDTH; ++bit) {
            addBuffer(KVR_OBUF, "u_pads/u_out_" + std::to_string(bit), m_random.pick(m_neighbour), m_outputPads + bit);
        }
    }

    std::size_t m_target;
    Random m_random;
    Design m_design;
    ModuleBuilder m_builder{m_design, m_design.modules.emplace_back()};
    Bit m_vcc = 0;
    Bit m_gnd = 0;
    Bit m_reset = 0;
    Bit m_inputs = 0;
    Bit m_outputPads = 0;
    std::vector<Bit> m_clockPads;
    std::vector<Bit> m_clocks;
    std::vector<Bit> m_resets;
    std::vector<Bit> m_neighbour; ///< registers of the block before
    std::size_t m_cluster = 0;
    std::size_t m_serial = 100;
    std::size_t m_userSignals = 0;
    std::size_t m_groupedBits = 0;
    std::size_t m_groupedBuses = 0;
};

} // namespace

Design makeFlatDesign(std::size_t leafInstances)
{
    if (leafInstances < 1000) {
        throw std::invalid_argument("a flat design has at least 1000 leaf instances");
    }
    return FlatMaker(leafInstances).make();
}

} // namespace kvr::netlistdb::bench
