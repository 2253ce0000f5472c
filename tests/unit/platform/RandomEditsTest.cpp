#include "Designs.h"
#include "SavedFileBytes.h"
#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistDump.h"

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <DataBase.h>
#include <gtest/gtest.h>

namespace {

using namespace Verific;
using namespace platformtest;

/// What a netlist should hold, in plain lists that are searched from end to end.
struct Model {
    struct Pin {
        Instance *inst;
        Port *port;
        Net *net;
    };

    std::vector<Net *> nets;
    std::vector<Instance *> insts;
    std::vector<Port *> ports;
    std::vector<Pin> pins;                              ///< in order of connection
    std::vector<std::pair<Port *, Net *>> portNets;     ///< in order of connection
    std::vector<std::pair<Net *, std::string>> netName; ///< of every net that lives

    template <typename Predicate> void dropPins(Predicate predicate)
    {
        pins.erase(std::remove_if(pins.begin(), pins.end(), predicate), pins.end());
    }
    template <typename Predicate> void dropPortNets(Predicate predicate)
    {
        portNets.erase(std::remove_if(portNets.begin(), portNets.end(), predicate), portNets.end());
    }
};

class RandomEdits {
  public:
    explicit RandomEdits(unsigned seed) : m_random(seed)
    {
        m_views.push_back(makeGate("gate"));
        Netlist *wide = makeNetlist("cells", "wide");
        for (int i = 0; i < 70; ++i) {
            addPort(wide, ("p" + std::to_string(i)).c_str(), static_cast<unsigned>(i % 4));
        }
        m_views.push_back(wide);
        m_views.push_back(makeGate("other"));
        m_top = makeNetlist("work", "top");
    }

    void step()
    {
        switch (below(14)) {
        case 0:
            addNetTo();
            break;
        case 1:
            addInstanceTo();
            break;
        case 2:
            addPortTo();
            break;
        case 3:
            deleteNet();
            break;
        case 4:
            deleteInstance();
            break;
        case 5:
            deletePort();
            break;
        case 6:
        case 7:
            connectPort();
            break;
        case 8:
            disconnect();
            break;
        case 9:
            deleteViewPort();
            break;
        default:
            connect();
            break;
        }
    }

    void check() const
    {
        checkTables();
        for (Instance *inst : m_model.insts) {
            std::string expected;
            for (const Model::Pin &pin : m_model.pins) {
                if (pin.inst == inst) {
                    expected += (expected.empty() ? "" : " ") + std::string(pin.port->Name());
                }
            }
            ASSERT_EQ(pinsOf(inst), expected);
            MapIter iter;
            Port *port = nullptr;
            FOREACH_PORT_OF_NETLIST (inst->View(), iter, port) {
                const auto pin = std::find_if(m_model.pins.begin(), m_model.pins.end(), [&](const Model::Pin &each) {
                    return each.inst == inst && each.port == port;
                });
                ASSERT_EQ(inst->GetNet(port), pin != m_model.pins.end() ? pin->net : nullptr);
            }
        }
        for (Net *net : m_model.nets) {
            checkNet(net);
        }
    }

    Netlist *top() const { return m_top; }

  private:
    std::size_t below(std::size_t bound) { return std::uniform_int_distribution<std::size_t>(0, bound - 1)(m_random); }
    template <typename Object> Object *pick(const std::vector<Object *> &objects)
    {
        return objects.empty() ? nullptr : objects[below(objects.size())];
    }
    std::string name() { return "x" + std::to_string(below(12)); }

    void addNetTo()
    {
        const std::string text = name();
        m_model.nets.push_back(addNet(m_top, text.c_str()));
        m_model.netName.emplace_back(m_model.nets.back(), text);
    }

    void addInstanceTo() { m_model.insts.push_back(addInstance(m_top, name().c_str(), pick(m_views))); }

    void addPortTo() { m_model.ports.push_back(addPort(m_top, name().c_str(), static_cast<unsigned>(below(4)))); }

    void deleteNet()
    {
        if (Net *net = pick(m_model.nets)) {
            m_model.dropPins([net](const Model::Pin &pin) { return pin.net == net; });
            m_model.dropPortNets([net](const auto &portNet) { return portNet.second == net; });
            m_model.nets.erase(std::find(m_model.nets.begin(), m_model.nets.end(), net));
            m_model.netName.erase(std::find_if(m_model.netName.begin(), m_model.netName.end(),
                                               [net](const auto &entry) { return entry.first == net; }));
            delete net;
        }
    }

    void deleteInstance()
    {
        if (Instance *inst = pick(m_model.insts)) {
            m_model.dropPins([inst](const Model::Pin &pin) { return pin.inst == inst; });
            m_model.insts.erase(std::find(m_model.insts.begin(), m_model.insts.end(), inst));
            delete inst;
        }
    }

    void deletePort()
    {
        if (Port *port = pick(m_model.ports)) {
            m_model.dropPortNets([port](const auto &portNet) { return portNet.first == port; });
            m_model.ports.erase(std::find(m_model.ports.begin(), m_model.ports.end(), port));
            delete port;
        }
    }

    /// A port of a view goes now and then, and a new one comes behind the others.
    void deleteViewPort()
    {
        if (below(10) != 0) {
            return;
        }
        Netlist *view = pick(m_views);
        Port *port = portOf(view);
        m_model.dropPins([port](const Model::Pin &pin) { return pin.port == port; });
        const std::string text = port->Name();
        const unsigned direction = port->GetDir();
        delete port;
        addPort(view, text.c_str(), direction);
    }

    Port *portOf(const Netlist *view)
    {
        std::size_t steps = below(view->GetPorts()->Size());
        MapIter iter;
        Port *port = nullptr;
        FOREACH_PORT_OF_NETLIST (view, iter, port) {
            if (steps-- == 0) {
                break;
            }
        }
        return port;
    }

    void connect()
    {
        Instance *inst = pick(m_model.insts);
        Net *net = pick(m_model.nets);
        if (inst == nullptr || net == nullptr) {
            return;
        }
        Port *port = portOf(inst->View());
        const bool stays = inst->GetNet(port) == net;
        ASSERT_EQ(inst->Connect(port, net), 1u);
        if (!stays) {
            m_model.dropPins([&](const Model::Pin &pin) { return pin.inst == inst && pin.port == port; });
            m_model.pins.push_back({inst, port, net});
        }
    }

    void disconnect()
    {
        if (m_model.pins.empty()) {
            return;
        }
        const Model::Pin pin = m_model.pins[below(m_model.pins.size())];
        ASSERT_EQ(pin.inst->Disconnect(pin.port), 1u);
        m_model.dropPins([&](const Model::Pin &each) { return each.inst == pin.inst && each.port == pin.port; });
    }

    void connectPort()
    {
        Port *port = pick(m_model.ports);
        Net *net = below(4) == 0 ? nullptr : pick(m_model.nets);
        if (port == nullptr || port->GetNet() == net) {
            return;
        }
        port->Connect(net);
        m_model.dropPortNets([port](const auto &portNet) { return portNet.first == port; });
        if (net != nullptr) {
            m_model.portNets.emplace_back(port, net);
        }
    }

    void checkTables() const
    {
        MapIter iter;
        std::size_t at = 0;
        Net *net = nullptr;
        FOREACH_NET_OF_NETLIST (m_top, iter, net) {
            ASSERT_EQ(net, m_model.nets.at(at++));
        }
        ASSERT_EQ(at, m_model.nets.size());
        at = 0;
        Instance *inst = nullptr;
        FOREACH_INSTANCE_OF_NETLIST (m_top, iter, inst) {
            ASSERT_EQ(inst, m_model.insts.at(at++));
        }
        ASSERT_EQ(at, m_model.insts.size());
        at = 0;
        Port *port = nullptr;
        FOREACH_PORT_OF_NETLIST (m_top, iter, port) {
            ASSERT_EQ(port, m_model.ports.at(at++));
        }
        ASSERT_EQ(at, m_model.ports.size());
        for (int i = 0; i < 12; ++i) {
            const std::string text = "x" + std::to_string(i);
            const auto first = std::find_if(m_model.netName.begin(), m_model.netName.end(),
                                            [&text](const auto &entry) { return entry.second == text; });
            ASSERT_EQ(m_top->GetNet(text.c_str()), first != m_model.netName.end() ? first->first : nullptr);
        }
    }

    void checkNet(const Net *net) const
    {
        std::string pins;
        std::string ports;
        Instance *driver = nullptr;
        unsigned drivers = 0;
        for (const Model::Pin &pin : m_model.pins) {
            if (pin.net == net) {
                pins += (pins.empty() ? "" : " ") + std::string(pin.inst->Name()) + "." + pin.port->Name();
                driver = driver == nullptr && pin.port->IsOutput() ? pin.inst : driver;
                drivers += pin.port->IsOutput();
            }
        }
        for (const auto &[port, portNet] : m_model.portNets) {
            if (portNet == net) {
                ports += (ports.empty() ? "" : " ") + std::string(port->Name());
                drivers += port->IsInput();
                ASSERT_EQ(port->GetNet(), net);
            }
        }
        ASSERT_EQ(loadsOf(net), pins);
        ASSERT_EQ(portsOf(net), ports);
        ASSERT_EQ(net->Driver(), driver);
        ASSERT_EQ(net->IsMultipleDriven() != 0, drivers > 1);
    }

    std::mt19937 m_random;
    std::vector<Netlist *> m_views;
    Netlist *m_top = nullptr;
    Model m_model;
};

class RandomEditsTest : public testing::TestWithParam<unsigned> {
  protected:
    testsupport::LibsetGuard m_guard;
    ScratchDirectory m_scratch;
};

TEST_P(RandomEditsTest, LeaveWhatAPlainModelHoldsAndWhatCopiesAndFilesKeep)
{
    RandomEdits edits(GetParam());
    for (int step = 0; step < 3000; ++step) {
        ASSERT_NO_FATAL_FAILURE(edits.step());
        if (step % 100 == 0) {
            ASSERT_NO_FATAL_FAILURE(edits.check()) << "seed " << GetParam() << " step " << step;
        }
    }
    ASSERT_NO_FATAL_FAILURE(edits.check());
    const Netlist *top = edits.top();
    {
        const std::unique_ptr<Netlist> copy(top->Copy(nullptr));
        ASSERT_EQ(testsupport::dumpNetlist(copy.get()), testsupport::dumpNetlist(top));
    }
    const std::string before = testsupport::dumpHierarchy(top);
    const std::string file = m_scratch.file("edited.nl");
    ASSERT_EQ(top->SaveToFile(file.c_str()), 1u);
    Libset::Reset();
    ASSERT_EQ(testsupport::dumpHierarchy(Netlist::RestoreFromFile(file.c_str())), before);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomEditsTest, testing::Range(1u, 41u));

} // namespace
