// The checked-in designs: what is read agrees with the figures that yosys itself counted, kept beside them, and with a
// plain count over the JSON text.

#include "ReaderTest.h"

#include <simdjson.h>

#include <map>
#include <set>
#include <string>

namespace yosystest {
namespace {

namespace dom = simdjson::dom;

class YosysDesigns : public testing::TestWithParam<const char *> {
  protected:
    static std::string file(const char *suffix) { return std::string(DESIGNS_DIR "/") + GetParam() + suffix; }
    /// Names in statistics are escaped as yosys keeps them: a user's name has a backslash in front.
    static std::string plainName(std::string_view name)
    {
        return std::string(name.substr(0, 1) == "\\" ? name.substr(1) : name);
    }
    static bool isConstantDriver(const Verific::Instance &inst)
    {
        return inst.Type() >= Verific::PRIM_PWR && inst.Type() <= Verific::PRIM_Z;
    }

    dom::parser m_parser;

  private:
    testsupport::LibsetGuard m_guard;
};

TEST_P(YosysDesigns, HaveTheCellsAndMemoriesThatYosysCounted)
{
    const Verific::Netlist *top = kvr::netlistdb::yosys::readJson(file(".json"));
    EXPECT_STREQ(top->CellBaseName(), "soc_top");
    dom::element statistics = m_parser.load(file(".stat.json"));
    std::size_t modules = 0;
    for (const auto [key, module] : dom::object(statistics["modules"])) {
        const std::string name = plainName(key);
        SCOPED_TRACE(name);
        const Verific::Netlist *netlist = netlistOf("work", name.c_str());
        ++modules;

        std::map<std::string, std::uint64_t> cells;
        std::uint64_t all = 0;
        Verific::MapIter iter;
        Verific::Instance *inst = nullptr;
        FOREACH_INSTANCE_OF_NETLIST (netlist, iter, inst) {
            if (!isConstantDriver(*inst)) {
                ++cells[inst->View()->CellBaseName()];
                ++all;
            }
        }
        std::map<std::string, std::uint64_t> counted;
        for (const auto [type, count] : dom::object(module["num_cells_by_type"])) {
            counted[plainName(type)] += std::uint64_t(count);
        }
        EXPECT_EQ(cells, counted);
        EXPECT_EQ(all, std::uint64_t(module["num_cells"]));

        std::uint64_t memories = 0;
        std::uint64_t memoryBits = 0;
        Verific::Net *net = nullptr;
        FOREACH_NET_OF_NETLIST (netlist, iter, net) {
            memories += net->IsRamNet() != 0 ? 1 : 0;
            memoryBits += net->IsRamNet() != 0 ? net->Size() : 0;
        }
        EXPECT_EQ(memories, std::uint64_t(module["num_memories"]));
        EXPECT_EQ(memoryBits, std::uint64_t(module["num_memory_bits"]));
    }
    EXPECT_GT(modules, 0u);
}

TEST_P(YosysDesigns, HaveOneNetPerBitAndOnePinPerConnectedBit)
{
    kvr::netlistdb::yosys::readJson(file(".json"));
    dom::element text = m_parser.load(file(".json"));
    for (const auto [key, module] : dom::object(text["modules"])) {
        SCOPED_TRACE(key);
        std::set<std::int64_t> bits;
        std::set<std::string_view> constants;
        std::set<std::string> names;
        std::size_t portBits = 0;
        std::size_t wireBits = 0;
        std::size_t pins = 0;
        const auto take = [&](dom::element list, bool isUse) {
            for (const dom::element bit : dom::array(list)) {
                if (bit.is_string()) {
                    if (isUse) {
                        constants.insert(std::string_view(bit));
                    }
                } else {
                    bits.insert(std::int64_t(bit));
                }
            }
            return dom::array(list).size();
        };
        for (const auto [port, fields] : dom::object(module["ports"])) {
            portBits += take(fields["bits"], true);
        }
        for (const auto [net, fields] : dom::object(module["netnames"])) {
            wireBits += take(fields["bits"], false);
        }
        for (const auto [cell, fields] : dom::object(module["cells"])) {
            for (const auto [port, list] : dom::object(fields["connections"])) {
                pins += take(list, true);
            }
        }

        const Verific::Netlist *netlist = netlistOf("work", std::string(key).c_str());
        std::size_t nets = 0;
        Verific::MapIter iter;
        Verific::Net *net = nullptr;
        FOREACH_NET_OF_NETLIST (netlist, iter, net) {
            nets += net->IsRamNet() != 0 ? 0 : 1;
            EXPECT_TRUE(names.insert(net->Name()).second) << net->Name();
        }
        EXPECT_EQ(nets, bits.size() + constants.size());
        EXPECT_GE(wireBits, bits.size());
        EXPECT_EQ(netlist->GetPorts()->Size(), portBits);
        std::size_t connected = 0;
        Verific::Instance *inst = nullptr;
        FOREACH_INSTANCE_OF_NETLIST (netlist, iter, inst) {
            connected += inst->NumOfPortRefs();
        }
        EXPECT_EQ(connected, pins + constants.size());
    }
}

INSTANTIATE_TEST_SUITE_P(All, YosysDesigns, testing::Values("soc_elaborated", "soc_postmap"),
                         [](const testing::TestParamInfo<const char *> &test) { return std::string(test.param); });

class YosysPostMap : public ReaderTest {};

TEST_F(YosysPostMap, CellsCarryTheirCellNameAndTheirClockPinsAreMarked)
{
    const Verific::Netlist *top = kvr::netlistdb::yosys::readJson(DESIGNS_DIR "/soc_postmap.json");
    Verific::MapIter iter;
    Verific::Instance *inst = nullptr;
    std::size_t cells = 0;
    FOREACH_INSTANCE_OF_NETLIST (top, iter, inst) {
        const std::string type = inst->View()->CellBaseName();
        if (type.compare(0, 4, "KVR_") == 0) {
            ++cells;
            EXPECT_NE(inst->GetAttValue("KVR_ATTRIBUTE_CELL_NAME"), nullptr) << inst->Name();
            EXPECT_NE(inst->View()->IsBlackBox(), 0u) << type;
        }
    }
    EXPECT_GT(cells, 1000u);
    const Verific::Netlist *flipFlop = netlistOf("work", "KVR_FF");
    std::string clocks;
    Verific::Port *port = nullptr;
    FOREACH_PORT_OF_NETLIST (flipFlop, iter, port) {
        const char *value = port->GetAttValue("KVR_ATTRIBUTE_PORT__IS_CLOCK");
        clocks += value != nullptr ? std::string(port->Name()) + "=" + value : "";
    }
    EXPECT_EQ(clocks, "C=TRUE");
}

} // namespace
} // namespace yosystest
