#include "database/BitNetGroups.h"
#include "database/DatabaseState.h"
#include "database/ImportGuard.h"
#include "model/NetWalk.h"
#include "model/SourcePosition.h"

#include <netlistdb/VDBNet.h>
#include <netlistdb/VDBNetBus.h>
#include <netlistdb/VDBNetlist.h>
#include <netlistdb/VDBPort.h>

#include <DataBase.h>

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace kvr::netlistdb {

/// Builds one module. What is not released at the end is deleted and leaves no entry in the pool.
class ModuleBuilder {
  public:
    ModuleBuilder(VDBObjectPool &pool, const Verific::Netlist *netlist, const std::string &cellName,
                  const std::string &libraryName)
        : m_pool(pool), m_netlist(netlist), m_module(std::make_unique<VDBNetlist>(netlist, cellName, libraryName))
    {
    }
    ModuleBuilder(const ModuleBuilder &) = delete;
    ModuleBuilder &operator=(const ModuleBuilder &) = delete;

    ~ModuleBuilder()
    {
        if (m_module != nullptr) {
            forgetInPool();
        }
    }

    void build()
    {
        m_pool.registerNetlist(m_netlist, m_module.get());
        addDeclaredBuses();
        addRemainingNets();
        addPorts();
        m_module->shrinkToFit();
    }

    /// Hands over the module that was built.
    std::unique_ptr<VDBNetlist> release() { return std::move(m_module); }

  private:
    void addDeclaredBuses()
    {
        Verific::MapIter buses;
        const Verific::NetBus *netBus = nullptr;
        FOREACH_NETBUS_OF_NETLIST (m_netlist, buses, netBus) {
            m_bus.reset(new VDBNetBus(netBus, &m_paths));
            m_members.clear();
            Verific::MapIter nets;
            Verific::Net *net = nullptr;
            FOREACH_NET_OF_NETBUS (netBus, nets, net) {
                if (net != nullptr) {
                    m_members.push_back(net);
                }
            }
            m_bus->reserveNets(m_members.size());
            for (const Verific::Net *member : m_members) {
                addMember(member);
            }
            finishBus();
        }
    }

    void addRemainingNets()
    {
        BitNetGroups groups;
        Verific::MapIter nets;
        const Verific::Net *net = nullptr;
        FOREACH_NET_OF_NETLIST (m_netlist, nets, net) {
            if (net->Bus() != nullptr) {
                continue;
            }
            const std::string_view name = net->Name() != nullptr ? net->Name() : "";
            if (const auto subscript = bitSubscript(name)) {
                groups.add(name, *subscript, net);
            } else {
                addPlain(net);
            }
        }
        groups.forEach([this](const BitNetGroups::Group &group) { addGroup(group); });
    }

    void addGroup(const BitNetGroups::Group &group)
    {
        if (group.busWidth != 0) {
            m_bus = std::make_unique<VDBNetBus>(std::string(group.baseName), group.busWidth);
            m_bus->reserveNets(group.members);
            for (std::size_t at = 0; at < group.members; ++at) {
                addMember(group.bits[at].net);
            }
            finishBus();
        }
        for (std::size_t at = group.members; at < group.bits.size(); ++at) {
            addPlain(group.bits[at].net);
        }
    }

    void addPorts()
    {
        Verific::MapIter ports;
        const Verific::Port *port = nullptr;
        FOREACH_PORT_OF_NETLIST (m_netlist, ports, port) {
            auto item = std::make_unique<VDBPort>(port);
            m_module->addPort(item.get());
            m_pool.registerPort(port, item.release());
        }
    }

    // An item is owned by its module or bus before it enters the pool, so that a failure finds it there.

    void addMember(const Verific::Net *net)
    {
        std::unique_ptr<VDBNet> item(new VDBNet(m_bus.get(), net, &m_paths));
        m_bus->addNet(item.get());
        m_pool.registerNet(net, item.release());
    }

    void addPlain(const Verific::Net *net)
    {
        std::unique_ptr<VDBNet> item(new VDBNet(nullptr, net, &m_paths));
        m_module->addNet(item.get());
        m_pool.registerNet(net, item.release());
    }

    void finishBus()
    {
        m_module->addNetBus(m_bus.get());
        static_cast<void>(m_bus.release());
    }

    void forgetInPool()
    {
        if (m_bus != nullptr) {
            for (const IVDBNet *net : m_bus->getNets()) {
                m_pool.eraseNet(net);
            }
        }
        forEachNet(*m_module, [this](const IVDBNet *net) { m_pool.eraseNet(net); });
        auto item = m_module->getPorts().begin();
        Verific::MapIter ports;
        const Verific::Port *port = nullptr;
        FOREACH_PORT_OF_NETLIST (m_netlist, ports, port) {
            if (item == m_module->getPorts().end()) {
                break;
            }
            m_pool.erasePort(port, *item++);
        }
        m_pool.eraseNetlist(m_module.get());
    }

    VDBObjectPool &m_pool;
    const Verific::Netlist *m_netlist;
    std::unique_ptr<VDBNetlist> m_module;
    SourcePaths m_paths;
    std::unique_ptr<VDBNetBus> m_bus;            ///< the one being filled
    std::vector<const Verific::Net *> m_members; ///< of that bus
};

IVDBNetlist *DesignDatabase::buildNetlist(Verific::Netlist *netlist, bool elaborated, const std::string &cellName,
                                          const std::string &libraryName)
{
    const ImportGuard guard(m_state->clocks, m_state->importDepth);
    Source &source = elaborated ? m_state->elaborated : m_state->postMap;
    ++source.generation;
    ModuleBuilder builder(source.pool, netlist, cellName, libraryName);
    builder.build();
    std::unique_ptr<IVDBNetlist> &place = source.netlists.emplace_back();
    std::unique_ptr<VDBNetlist> module = builder.release();
    m_state->clocks.itemMade(*module);
    place = std::move(module);
    return place.get();
}

} // namespace kvr::netlistdb
