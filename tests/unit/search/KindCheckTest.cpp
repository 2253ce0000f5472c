#include "search/KindCheck.h"

#include "tests/support/MockItems.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace kvr::netlistdb {
namespace {

using testsupport::MockInstance;
using testsupport::MockNet;
using testsupport::MockNetBus;
using testsupport::MockPort;

/// An item in two ways: as a net, and behind that as a port.
class NetAndPort : public MockNet, public MockPort {
  public:
    NetAndPort() : MockNet({"both", true, 1, ITEM_NET}), MockPort("both") {}
};

TEST(KindCheck, AgreesWithACastOfEachItem)
{
    MockNet net({"n", true, 1, ITEM_NET});
    MockNet other({"o", true, 1, ITEM_NET});
    MockNetBus bus({"b", true, 2, ITEM_NET_BUS});
    MockPort port("p");
    MockInstance instance("i", nullptr, nullptr);
    NetAndPort both;
    const std::vector<IVDBItem *> items = {
        &net, &other, &bus, &port, &instance, static_cast<MockNet *>(&both), static_cast<MockPort *>(&both), nullptr};
    std::mt19937 random(1);
    KindCheck<IVDBNetBase> asNet;
    KindCheck<IVDBPort> asPort;
    for (int round = 0; round < 10'000; ++round) {
        IVDBItem *item = items[random() % items.size()];
        ASSERT_EQ(asNet(item), dynamic_cast<IVDBNetBase *>(item));
        ASSERT_EQ(asPort(item), dynamic_cast<IVDBPort *>(item));
    }
}

} // namespace
} // namespace kvr::netlistdb
