#include "tests/support/Throws.h"

#include <netlistdb/VDBPort.h>

#include <DataBase.h>

#include <gtest/gtest.h>

#include <stdexcept>

namespace kvr::netlistdb {
namespace {

using testsupport::messageOf;

class OddPortBus : public Verific::PortBus {
  public:
    explicit OddPortBus(unsigned bits) : PortBus("odd", 0, 0, Verific::DIR_IN), m_bits(bits) {}
    unsigned Size() const override { return m_bits; }

  private:
    unsigned m_bits;
};

TEST(VDBPort, RefusesANullPortAndANullPortBus)
{
    const auto port = [] { VDBPort item(static_cast<Verific::Port *>(nullptr)); };
    const auto portBus = [] { VDBPort item(static_cast<Verific::PortBus *>(nullptr)); };
    EXPECT_EQ(messageOf<std::invalid_argument>(port), "port is nullptr");
    EXPECT_EQ(messageOf<std::invalid_argument>(portBus), "portBus is nullptr");
}

TEST(VDBPort, FromOneBitIsOneBitWide)
{
    const Verific::Port source("clk", Verific::DIR_IN);
    const VDBPort port(&source);
    EXPECT_EQ(port.getName(), "clk");
    EXPECT_EQ(port.getWidth(), 1u);
    EXPECT_FALSE(port.isBus());
}

TEST(VDBPort, HasAnEmptyNameWhenTheSourceHasNone)
{
    const Verific::Port bit(nullptr, Verific::DIR_IN);
    const Verific::PortBus vector(nullptr, 1, 0, Verific::DIR_IN);
    EXPECT_EQ(VDBPort(&bit).getName(), "");
    EXPECT_EQ(VDBPort(&vector).getName(), "");
}

TEST(VDBPort, FromAPortBusIsAsWideAsTheBus)
{
    const Verific::PortBus source("data", 7, 0, Verific::DIR_OUT);
    const VDBPort port(&source);
    EXPECT_EQ(port.getName(), "data");
    EXPECT_EQ(port.getWidth(), 8u);
    EXPECT_TRUE(port.isBus());
    EXPECT_EQ(port.direction(), PORT_DIR_OUTPUT);
    const OddPortBus largest(4294967295u);
    EXPECT_EQ(VDBPort(&largest).getWidth(), 4294967295ull);
}

TEST(VDBPort, IsABusFromTwoBitsOn)
{
    const Verific::PortBus one("data", 3, 3, Verific::DIR_IN);
    const Verific::PortBus two("data", 1, 0, Verific::DIR_IN);
    EXPECT_FALSE(VDBPort(&one).isBus());
    EXPECT_EQ(VDBPort(&one).getWidth(), 1u);
    EXPECT_TRUE(VDBPort(&two).isBus());
}

TEST(VDBPort, HasThreeDirections)
{
    const auto ofBit = [](unsigned direction) {
        const Verific::Port source("p", direction);
        return VDBPort(&source).direction();
    };
    const auto ofVector = [](unsigned direction) {
        const Verific::PortBus source("p", 1, 0, direction);
        return VDBPort(&source).direction();
    };
    EXPECT_EQ(ofBit(Verific::DIR_IN), 0);
    EXPECT_EQ(ofBit(Verific::DIR_OUT), 1);
    EXPECT_EQ(ofBit(Verific::DIR_NONE), 2);
    EXPECT_EQ(ofBit(Verific::DIR_INOUT), 2);
    EXPECT_EQ(ofVector(Verific::DIR_IN), 0);
    EXPECT_EQ(ofVector(Verific::DIR_OUT), 1);
    EXPECT_EQ(ofVector(Verific::DIR_NONE), 2);
    EXPECT_EQ(ofVector(Verific::DIR_INOUT), 2);
}

} // namespace
} // namespace kvr::netlistdb
