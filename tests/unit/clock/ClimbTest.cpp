#include "clock/Climb.h"

#include "ClockTest.h"

#include <random>

namespace clock_test {
namespace {

using kvr::netlistdb::Climb;
using kvr::netlistdb::InstanceNet;
using kvr::netlistdb::ItemLookup;

/// The nets of the owner that enter @p instance as @p net, by a look at all pins of the instance.
std::vector<InstanceNet> byWalking(const ItemLookup &items, const IVDBInstance *instance, const Verific::Net *net)
{
    std::vector<InstanceNet> above;
    Verific::MapIter pins;
    Verific::PortRef *pin = nullptr;
    FOREACH_PORTREF_OF_INST (items.find(instance), pins, pin) {
        if (pin->GetPort() != nullptr && !pin->GetPort()->IsOutput() && net->GetPorts()->Get(pin->GetPort())) {
            IVDBNet *const item = pin->GetNet() != nullptr ? items.find(pin->GetNet()) : nullptr;
            if (item == nullptr) {
                break;
            }
            above.emplace_back(instance->getOwnerInstance(), item);
        }
    }
    return above;
}

class ClimbTest : public ClockTest {};

TEST_F(ClimbTest, VisitsWhatAWalkOverAllPinsOfTheInstanceGives)
{
    std::mt19937 random(1);
    // Nets that meet none to four ports, of every direction, and pins that are open or stand in another order.
    std::string ports;
    std::string inside;
    std::string pins;
    unsigned port = 0;
    for (int net = 0; net < 300; ++net) {
        for (std::uint_fast32_t many = random() % 5; many != 0; --many, ++port) {
            static const char *const DIRECTIONS[] = {"in", "out", "inout", "none"};
            const std::string name = "p" + std::to_string(port);
            ports += (port == 0 ? "" : ", ") + std::string(DIRECTIONS[random() % 4]) + ' ' + name;
            inside += "connect " + name + "=n" + std::to_string(net) + '\n';
            if (random() % 5 != 0) {
                pins = random() % 2 == 0
                           ? pins + (pins.empty() ? "" : ", ") + name + "=w" + std::to_string(random() % 200)
                           : name + "=w" + std::to_string(random() % 200) + (pins.empty() ? "" : ", ") + pins;
            }
        }
    }
    elaborated(
        ("module sub(" + ports + ")\n" + inside + "end\nmodule top() u: sub(" + pins + ") v: sub(" + pins + ") end")
            .c_str());
    // A net that was added after the import has no item: the climb ends there.
    Verific::Netlist *const top = copyOf(ELABORATED);
    auto *const late = new Verific::Net("late");
    top->Add(late);
    Verific::Instance *const edited = top->GetInst("v");
    Verific::MapIter each;
    const Verific::Port *changed = nullptr;
    FOREACH_PORT_OF_NETLIST (edited->View(), each, changed) {
        if (edited->GetNet(changed) != nullptr && random() % 6 == 0) {
            edited->Disconnect(changed);
            edited->Connect(changed, late);
        }
    }
    const ItemLookup items(*database->objectPool(ELABORATED));
    Climb climb(items);
    std::size_t visited = 0;
    for (int round = 0; round < 3; ++round) { // the memo of the pins is made when an instance is met again
        for (const IVDBInstance *instance : database->getRoot(ELABORATED)->getSubInstances()) {
            for (const IVDBNet *item : netsOf(instance)) {
                const Verific::Net *const net = items.find(item);
                std::vector<InstanceNet> above;
                climb.above(instance, net, [&above](const InstanceNet &upper) { above.push_back(upper); });
                ASSERT_EQ(above, byWalking(items, instance, net)) << instance->getName() << ' ' << net->Name();
                visited += above.size();
            }
        }
    }
    EXPECT_GT(visited, 100U);
}

} // namespace
} // namespace clock_test
