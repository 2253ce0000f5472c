#include "search/ItemCast.h"

#include "tests/support/MockItems.h"

#include <netlistdb/VDBInstance.h>
#include <netlistdb/VDBNet.h>
#include <netlistdb/VDBNetBus.h>

#include <gtest/gtest.h>

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

/// A caller's class that has a bus of ours elsewhere than at its beginning.
class PortAndBus : public MockPort, public VDBNetBus {
  public:
    PortAndBus() : MockPort("both"), VDBNetBus("both", 2) {}
    // Both bases declare these of items.
    const std::string &getName() const override { return VDBNetBus::getName(); }
    std::uint32_t getItemType() const override { return VDBNetBus::getItemType(); }
};

TEST(ItemCast, AgreesWithADynamicCast)
{
    MockNet net({"n", true, 1, ITEM_NET});
    MockNetBus bus({"b", true, 2, ITEM_NET_BUS});
    MockPort port("p");
    MockInstance instance("i", nullptr, nullptr);
    VDBNetBus ownBus("own", 4);
    VDBInstance ownInstance(nullptr, nullptr);
    NetAndPort netAndPort;
    PortAndBus portAndBus;
    const std::vector<IVDBItem *> items = {&net,
                                           &bus,
                                           &port,
                                           &instance,
                                           &ownBus,
                                           &ownInstance,
                                           static_cast<MockNet *>(&netAndPort),
                                           static_cast<MockPort *>(&netAndPort),
                                           static_cast<MockPort *>(&portAndBus),
                                           static_cast<VDBNetBus *>(&portAndBus),
                                           nullptr};
    for (IVDBItem *const item : items) {
        EXPECT_EQ((itemCast<IVDBNetBase, VDBNet, VDBNetBus>(item)), dynamic_cast<IVDBNetBase *>(item));
        EXPECT_EQ((itemCast<IVDBInstance, VDBInstance>(item)), dynamic_cast<IVDBInstance *>(item));
    }
}

} // namespace
} // namespace kvr::netlistdb
