#include "clock/DrivingPin.h"

#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistText.h"

#include <DataBase.h>

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace kvr::netlistdb {
namespace {

/// The first output among the instance's own pins that is on the net.
const Verific::PortRef *byWalking(const Verific::Net *net, const Verific::Instance *driver)
{
    Verific::MapIter pins;
    Verific::PortRef *pin = nullptr;
    FOREACH_PORTREF_OF_INST (driver, pins, pin) {
        if (pin->GetNet() == net && pin->IsOutput()) {
            return pin;
        }
    }
    return nullptr;
}

/// A cell with @p outputs outputs and as many inputs, an instance of it with pins on nets "n0" and so on drawn at
/// random, and @p loads more pins on each of these nets.
std::string wideCell(std::mt19937 &random, unsigned outputs, unsigned nets, unsigned loads)
{
    std::string ports;
    std::string pins;
    for (unsigned at = 0; at < outputs; ++at) {
        const std::string number = std::to_string(at);
        ports += (at == 0 ? "" : ", ") + ("in a" + number) + ", out q" + number;
        for (const char *kind : {"a", "q"}) {
            if (random() % 4 != 0) {
                pins += (pins.empty() ? "" : ", ") + (kind + number) + "=n" + std::to_string(random() % nets);
            }
        }
    }
    std::string text = "blackbox wide(" + ports + ") end blackbox load(in a) end module top()\n";
    text += "w: wide(" + pins + ")\n";
    for (unsigned net = 0; net < nets; ++net) {
        for (unsigned at = 0; at < loads; ++at) {
            text += "l" + std::to_string(net) + "_" + std::to_string(at) + ": load(a=n" + std::to_string(net) + ")\n";
        }
    }
    return text + "end";
}

TEST(DrivingPin, IsTheOneThatWalkingThePinsOfTheInstanceFinds)
{
    std::mt19937 random(1);
    struct Shape {
        unsigned outputs;
        unsigned nets;
        unsigned loads;
    };
    // Few pins on both sides; many on the instance; many on the net; many on both.
    for (const Shape shape : {Shape{4, 3, 2}, Shape{200, 150, 0}, Shape{2, 2, 200}, Shape{300, 4, 60}}) {
        for (int round = 0; round < 10; ++round) {
            const testsupport::LibsetGuard guard;
            const Verific::Netlist *const top =
                testsupport::netlistFromText(wideCell(random, shape.outputs, shape.nets, shape.loads));
            const Verific::Instance *const driver = top->GetInst("w");
            unsigned driven = 0;
            for (unsigned at = 0; at < shape.nets; ++at) {
                const Verific::Net *const net = top->GetNet(("n" + std::to_string(at)).c_str());
                if (net == nullptr) {
                    continue;
                }
                const Verific::PortRef *const expected = byWalking(net, driver);
                driven += expected != nullptr ? 1 : 0;
                ASSERT_EQ(drivingPin(net, driver), expected) << at << " of " << shape.outputs << " outputs";
            }
            EXPECT_TRUE(driven != 0 || shape.outputs < 10);
        }
    }
}

} // namespace
} // namespace kvr::netlistdb
