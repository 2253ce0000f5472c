// Netlists of shapes in which a step that looks at all of something, once for each of something, would take hours.

#include "ClockTest.h"

namespace clock_test {
namespace {

using Verific::Instance;
using Verific::Net;
using Verific::Netlist;
using Verific::Port;

class LargeNetlists : public ClockTest {
  protected:
    Netlist *netlist(const char *library, const std::string &name)
    {
        Verific::Libset *const global = Verific::Libset::Global();
        Verific::Library *owner = global->GetLibrary(library);
        if (owner == nullptr) {
            owner = new Verific::Library(library);
            global->Add(owner);
        }
        auto *const cell = new Verific::Cell(name.c_str());
        owner->Add(cell);
        auto *const made = new Netlist("v");
        cell->Add(made);
        return made;
    }
    static Net *addNet(Netlist *in, const std::string &name)
    {
        auto *const net = new Net(name.c_str());
        in->Add(net);
        return net;
    }
    static Port *addPort(Netlist *in, const std::string &name, unsigned direction, Net *inside = nullptr)
    {
        auto *const port = new Port(name.c_str(), direction);
        in->Add(port);
        if (inside != nullptr) {
            port->Connect(inside);
        }
        return port;
    }
};

TEST_F(LargeNetlists, TheHighestNetOfAButterflyOfNetsThatEnterThroughTwoPorts)
{
    // Every net of a level enters through two ports, from two nets of the level above, which swap places there.
    constexpr int LEVELS = 14;
    constexpr int WIDTH = 1 << 13;
    Netlist *inner = nullptr;
    for (int level = 0; level < LEVELS; ++level) {
        Netlist *const module = netlist("work", "m" + std::to_string(level));
        std::vector<Net *> nets;
        for (int at = 0; at < WIDTH; ++at) {
            nets.push_back(addNet(module, "n" + std::to_string(at)));
            if (level + 1 < LEVELS) {
                addPort(module, "a" + std::to_string(at), Verific::DIR_IN, nets.back());
                addPort(module, "b" + std::to_string(at), Verific::DIR_IN, nets.back());
            }
        }
        if (inner != nullptr) {
            auto *const instance = new Instance("u", inner);
            module->Add(instance);
            for (int at = 0; at < WIDTH; ++at) {
                const std::string number = std::to_string(at);
                instance->Connect(inner->GetPort(("a" + number).c_str()), nets[static_cast<std::size_t>(at)]);
                const int partner = at ^ (1 << (level - 1));
                instance->Connect(inner->GetPort(("b" + number).c_str()), nets[static_cast<std::size_t>(partner)]);
            }
        }
        inner = module;
    }
    ASSERT_TRUE(database->parseElaboratedNetlist(inner));
    IVDBInstance *bottom = database->getRoot(ELABORATED);
    while (!bottom->getSubInstances().empty()) {
        bottom = bottom->getSubInstances().front();
    }
    ASSERT_EQ(bottom->getDepth(), LEVELS - 1U);
    const std::vector<IVDBNet *> nets = netsOf(bottom);
    const auto highest = database->getRootClk(bottom, nets.front(), nullptr);
    EXPECT_EQ(highest.first, database->getRoot(ELABORATED));
    // A query that climbs the same way meets each net many times.
    EXPECT_EQ(database->findDrivingClockDomains(bottom, nets.front(), ELABORATED), nullptr);
}

TEST_F(LargeNetlists, AllOutputsOfACellWithManyOutputs)
{
    constexpr int OUTPUTS = 100000;
    Netlist *const cell = netlist("cells", "KVR_DSP_WIDE");
    Netlist *const top = netlist("work", "top");
    auto *const instance = new Instance("wide", cell);
    instance->AddAtt(new Verific::Att("KVR_ATTRIBUTE_CELL_NAME", "KVR_DSP_WIDE"));
    top->Add(instance);
    for (int at = 0; at < OUTPUTS; ++at) {
        instance->Connect(addPort(cell, "Q" + std::to_string(at), Verific::DIR_OUT),
                          addNet(top, "n" + std::to_string(at)));
    }
    // The clock comes last among the pins.
    Port *const clock = addPort(cell, "CLK", Verific::DIR_IN);
    clock->AddAtt(new Verific::Att("KVR_ATTRIBUTE_PORT__IS_CLOCK", "TRUE"));
    instance->Connect(clock, addNet(top, "clk"));
    ASSERT_TRUE(database->parsePostMapNetlist(top));
    IVDBInstance *const root = database->getRoot(POST_MAP);
    unsigned clocked = 0;
    for (IVDBNet *net : netsOf(root)) {
        clocked += nameOf(database->findDrivingClockDomains(root, net, POST_MAP)) == "clk";
    }
    EXPECT_EQ(clocked, static_cast<unsigned>(OUTPUTS));
}

TEST_F(LargeNetlists, ARegisterOnEachOfManyLevels)
{
    constexpr int LEVELS = 20000;
    Netlist *const dff = netlist("Primitives", "DFF");
    Port *const clock = addPort(dff, "c", Verific::DIR_IN);
    addPort(dff, "q", Verific::DIR_OUT);
    dff->MakeRegister(clock);
    Netlist *inner = nullptr;
    for (int level = 0; level < LEVELS; ++level) {
        Netlist *const module = netlist("work", "m" + std::to_string(level));
        Net *const clk = addNet(module, "clk");
        addPort(module, "clk", Verific::DIR_IN, clk);
        auto *const reg = new Instance("r", dff);
        module->Add(reg);
        reg->Connect(clock, clk);
        if (inner != nullptr) {
            auto *const instance = new Instance("u", inner);
            module->Add(instance);
            instance->Connect(inner->GetPort("clk"), clk);
        }
        inner = module;
    }
    ASSERT_TRUE(database->parseElaboratedNetlist(inner));
    EXPECT_EQ(clocks(ELABORATED), Names{"clk"});
}

} // namespace
} // namespace clock_test
