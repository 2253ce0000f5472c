#include "Designs.h"
#include "tests/support/LibsetGuard.h"

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

class InstanceTest : public testing::Test {
  protected:
    testsupport::LibsetGuard m_guard;
    Netlist *m_gate = makeGate();
    Port *m_a = m_gate->GetPort("a");
    Port *m_b = m_gate->GetPort("b");
    Port *m_y = m_gate->GetPort("y");
    Netlist *m_top = makeNetlist("work", "top");
    Net *m_n1 = addNet(m_top, "n1");
    Net *m_n2 = addNet(m_top, "n2");
    Instance *m_inst = addInstance(m_top, "u", m_gate);
};

std::string parametersOf(const Instance *inst)
{
    std::string text;
    MapIter iter;
    const char *key = nullptr;
    const char *value = nullptr;
    FOREACH_PARAMETER_OF_INST (inst, iter, key, value) {
        text += std::string(key) + "=" + (value != nullptr ? value : "null") + " ";
    }
    return text;
}

TEST_F(InstanceTest, HoldsItsPinsInOrderOfConnection)
{
    m_inst->Connect(m_y, m_n1);
    m_inst->Connect(m_a, m_n2);
    m_inst->Connect(m_b, m_n1);
    EXPECT_EQ(pinsOf(m_inst), "y a b");
    EXPECT_EQ(m_inst->GetNet(m_a), m_n2);
    EXPECT_EQ(m_inst->GetNet(m_y), m_n1);
    EXPECT_EQ(m_inst->GetNet(m_gate->GetPort("z")), nullptr);
    EXPECT_EQ(m_inst->NumOfPortRefs(), 3u);
}

TEST_F(InstanceTest, ConnectMovesAPinToTheEnd)
{
    m_inst->Connect(m_a, m_n1);
    m_inst->Connect(m_b, m_n1);
    EXPECT_EQ(m_inst->Connect(m_a, m_n2), 1u);
    EXPECT_EQ(pinsOf(m_inst), "b a");
    EXPECT_EQ(loadsOf(m_n1), "u.b");
    EXPECT_EQ(loadsOf(m_n2), "u.a");
}

TEST_F(InstanceTest, ConnectToTheSameNetChangesNothing)
{
    m_inst->Connect(m_a, m_n1);
    m_inst->Connect(m_b, m_n1);
    EXPECT_EQ(m_inst->Connect(m_a, m_n1), 1u);
    EXPECT_EQ(pinsOf(m_inst), "a b");
    EXPECT_EQ(loadsOf(m_n1), "u.a u.b");
}

TEST_F(InstanceTest, ConnectToNoNetDisconnects)
{
    m_inst->Connect(m_a, m_n1);
    EXPECT_EQ(m_inst->Connect(m_a, nullptr), 0u);
    EXPECT_EQ(pinsOf(m_inst), "");
    EXPECT_EQ(m_n1->NumOfRefs(), 0u);
}

TEST_F(InstanceTest, DisconnectAnswersWhetherThePinWasConnected)
{
    m_inst->Connect(m_a, m_n1);
    EXPECT_EQ(m_inst->Disconnect(m_b), 0u);
    EXPECT_EQ(m_inst->Disconnect(m_a), 1u);
    EXPECT_EQ(m_inst->Disconnect(m_a), 0u);
    EXPECT_EQ(m_inst->Disconnect(nullptr), 0u);
}

TEST_F(InstanceTest, RefusesWhatDoesNotBelongThere)
{
    Netlist *other = makeGate("other");
    Net *elsewhere = addNet(other, "n");
    m_inst->Connect(m_a, m_n1);
    EXPECT_EQ(m_inst->Connect(other->GetPort("a"), m_n1), 0u);
    EXPECT_EQ(m_inst->Connect(nullptr, m_n1), 0u);
    EXPECT_EQ(m_inst->Connect(m_a, elsewhere), 0u);
    EXPECT_EQ(m_inst->GetNet(m_a), m_n1);
    Net loose("loose");
    EXPECT_EQ(m_inst->Connect(m_b, &loose), 0u);
    Instance unowned("unowned", m_gate);
    EXPECT_EQ(unowned.Connect(m_a, m_n1), 0u);
    Instance *viewless = addInstance(m_top, "viewless", nullptr);
    EXPECT_EQ(viewless->Connect(m_a, m_n1), 0u);
    EXPECT_EQ(loadsOf(m_n1), "u.a");
}

TEST_F(InstanceTest, PinsStayWhereTheyAre)
{
    Netlist *wide = makeNetlist("cells", "wide");
    std::vector<Port *> ports;
    for (int i = 0; i < 1000; ++i) {
        ports.push_back(addPort(wide, std::to_string(i).c_str(), DIR_IN));
    }
    Instance *inst = addInstance(m_top, "w", wide);
    inst->Connect(ports[500], m_n1);
    inst->Connect(ports[7], m_n1);
    std::vector<PortRef *> before;
    SetIter iter;
    PortRef *ref = nullptr;
    FOREACH_PORTREF_OF_NET (m_n1, iter, ref) {
        before.push_back(ref);
    }
    for (Port *port : ports) {
        if (inst->GetNet(port) == nullptr) {
            inst->Connect(port, m_n2);
        }
    }
    for (std::size_t i = 8; i < 400; ++i) {
        inst->Disconnect(ports[i]);
    }
    std::size_t at = 0;
    FOREACH_PORTREF_OF_NET (m_n1, iter, ref) {
        EXPECT_EQ(ref, before[at++]);
    }
    EXPECT_EQ(before[0]->GetPort(), ports[500]);
}

TEST_F(InstanceTest, LetsTheVisitedPinBeDisconnected)
{
    m_inst->Connect(m_a, m_n1);
    m_inst->Connect(m_b, m_n1);
    m_inst->Connect(m_y, m_n2);
    unsigned met = 0;
    MapIter iter;
    PortRef *ref = nullptr;
    FOREACH_PORTREF_OF_INST (m_inst, iter, ref) {
        m_inst->Disconnect(ref->GetPort());
        ++met;
    }
    EXPECT_EQ(met, 3u);
    EXPECT_EQ(m_inst->NumOfPortRefs(), 0u);
    FOREACH_PORTREF_OF_INST (static_cast<Instance *>(nullptr), iter, ref) {
        ADD_FAILURE();
    }
}

TEST_F(InstanceTest, SurvivesPinsThatMoveAboutForEver)
{
    const std::vector<Port *> ports = {m_a, m_b, m_gate->GetPort("z"), m_y};
    for (Port *port : ports) {
        m_inst->Connect(port, m_n1);
    }
    for (int round = 0; round < 100000; ++round) {
        Port *port = ports[static_cast<std::size_t>(round % 4)];
        m_inst->Connect(port, m_inst->GetNet(port) == m_n1 ? m_n2 : m_n1);
    }
    EXPECT_EQ(pinsOf(m_inst), "a b z y");
    EXPECT_EQ(m_inst->NumOfPortRefs(), 4u);
    EXPECT_EQ(m_n1->NumOfRefs() + m_n2->NumOfRefs(), 4u);
}

TEST_F(InstanceTest, ReservedPinsAreFilledInOrder)
{
    m_inst->reservePins(2);
    m_inst->Connect(m_b, m_n1);
    m_inst->Connect(m_a, m_n1);
    m_inst->reservePins(4);
    m_inst->Connect(m_y, m_n1);
    EXPECT_EQ(pinsOf(m_inst), "b a y");
}

TEST_F(InstanceTest, HandlesAHundredThousandPortsInEveryOrder)
{
    constexpr std::size_t COUNT = 100000;
    Netlist *wide = makeNetlist("cells", "wide");
    std::vector<Port *> ports;
    for (std::size_t i = 0; i < COUNT; ++i) {
        ports.push_back(addPort(wide, nullptr, i % 10 == 0 ? DIR_OUT : DIR_IN));
    }
    std::vector<std::vector<Port *>> orders(3, ports);
    std::reverse(orders[1].begin(), orders[1].end());
    std::shuffle(orders[2].begin(), orders[2].end(), std::mt19937(7));
    for (const std::vector<Port *> &order : orders) {
        Instance *inst = addInstance(m_top, nullptr, wide);
        for (Port *port : order) {
            ASSERT_EQ(inst->Connect(port, m_n1), 1u);
        }
        for (Port *port : order) {
            ASSERT_EQ(inst->GetNet(port), m_n1);
        }
        MapIter iter;
        PortRef *ref = nullptr;
        std::size_t at = 0;
        FOREACH_PORTREF_OF_INST (inst, iter, ref) {
            ASSERT_EQ(ref->GetPort(), order[at++]);
        }
        for (std::size_t i = 0; i < COUNT; i += 2) {
            ASSERT_EQ(inst->Disconnect(ports[i]), 1u);
        }
        for (std::size_t i = 0; i < COUNT; ++i) {
            ASSERT_EQ(inst->GetNet(ports[i]), i % 2 == 0 ? nullptr : m_n1);
        }
    }
    for (Port *port : orders[2]) {
        delete port;
    }
    EXPECT_EQ(m_n1->NumOfRefs(), 0u);
}

TEST_F(InstanceTest, JoinsAndLeavesTheReferencesOfItsView)
{
    Instance *second = addInstance(m_top, "v", m_gate);
    EXPECT_EQ(referencesOf(m_gate), "u v");
    EXPECT_EQ(m_gate->NumOfRefs(), 2u);
    EXPECT_EQ(m_gate->GetReferences()->Get(second), second);
    delete m_inst;
    EXPECT_EQ(referencesOf(m_gate), "v");
    EXPECT_EQ(m_gate->GetReferences()->Get(second), second);
    const Instance unowned("unowned", m_gate);
    EXPECT_EQ(referencesOf(m_gate), "v unowned");
}

TEST_F(InstanceTest, DeletionDisconnectsItsPins)
{
    m_inst->Connect(m_a, m_n1);
    m_inst->Connect(m_y, m_n1);
    addInstance(m_top, "other", m_gate)->Connect(m_a, m_n1);
    delete m_inst;
    EXPECT_EQ(loadsOf(m_n1), "other.a");
    EXPECT_EQ(m_n1->Driver(), nullptr);
    EXPECT_EQ(m_top->GetInst("u"), nullptr);
}

TEST_F(InstanceTest, HasTheTypeOfItsView)
{
    EXPECT_EQ(m_inst->Type(), 0u);
    EXPECT_FALSE(m_inst->IsPrimitive());
    m_gate->MakePrimitive(PRIM_AND, nullptr);
    EXPECT_EQ(m_inst->Type(), unsigned{PRIM_AND});
    EXPECT_TRUE(m_inst->IsPrimitive());
    EXPECT_FALSE(m_inst->IsOperator());
    m_gate->MakeOperator();
    EXPECT_TRUE(m_inst->IsOperator());
    const Instance viewless("x", nullptr);
    EXPECT_EQ(viewless.Type(), 0u);
    EXPECT_FALSE(viewless.IsPrimitive() || viewless.IsOperator());
    EXPECT_EQ(viewless.View(), nullptr);
}

TEST_F(InstanceTest, HasNoParametersUntilOneIsAdded)
{
    EXPECT_EQ(m_inst->GetParameters(), nullptr);
    EXPECT_EQ(parametersOf(m_inst), "");
    m_inst->AddParam("W", "8");
    m_inst->AddParam("INIT", "");
    m_inst->AddParam("NONE", nullptr);
    m_inst->AddParam(nullptr, "x");
    EXPECT_EQ(parametersOf(m_inst), "W=8 INIT= NONE=null ");
    EXPECT_STREQ(static_cast<const char *>(m_inst->GetParameters()->GetValue("W")), "8");
}

TEST_F(InstanceTest, AParameterTakesTheNewValueInItsOldPlace)
{
    for (const char *key : {"A", "B", "C"}) {
        m_inst->AddParam(key, nullptr);
    }
    m_inst->AddParam("B", "2");
    m_inst->AddParam("B", "3");
    EXPECT_EQ(parametersOf(m_inst), "A=null B=3 C=null ");
}

TEST_F(InstanceTest, TakesTheParametersOfAnotherUntilEitherChangesOne)
{
    Instance *const other = addInstance(m_top, "other", m_gate);
    other->AddParam("OLD", "1");
    m_inst->AddParam("W", "8");
    other->ShareParams(*m_inst);
    EXPECT_EQ(other->GetParameters(), m_inst->GetParameters());
    EXPECT_EQ(parametersOf(other), "W=8 ");
    other->ShareParams(*other);
    EXPECT_EQ(parametersOf(other), "W=8 ");

    m_inst->AddParam("W", "9");
    EXPECT_EQ(parametersOf(other), "W=8 ");
    EXPECT_EQ(parametersOf(m_inst), "W=9 ");
    m_inst->ShareParams(*other);
    other->AddParam("INIT", "0");
    EXPECT_EQ(parametersOf(m_inst), "W=8 ");
    EXPECT_EQ(parametersOf(other), "W=8 INIT=0 ");

    m_inst->ShareParams(*addInstance(m_top, "without", m_gate));
    EXPECT_EQ(m_inst->GetParameters(), nullptr);
}

TEST_F(InstanceTest, SharesParametersWithACopyUntilOneSideChangesOne)
{
    m_inst->AddParam("A", "1");
    const std::unique_ptr<Netlist> copy(m_top->Copy(nullptr));
    Instance *copied = copy->GetInst("u");
    EXPECT_EQ(copied->GetParameters(), m_inst->GetParameters());
    copied->AddParam("A", "2");
    m_inst->AddParam("B", "3");
    EXPECT_EQ(parametersOf(m_inst), "A=1 B=3 ");
    EXPECT_EQ(parametersOf(copied), "A=2 ");
}

} // namespace
