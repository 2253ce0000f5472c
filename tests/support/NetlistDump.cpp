#include "tests/support/NetlistDump.h"

#include <cstdint>
#include <sstream>
#include <unordered_map>

#include <DataBase.h>
#include <LineFile.h>

namespace testsupport {

namespace {

using namespace Verific;

std::string quoted(const char *text)
{
    if (text == nullptr) {
        return "null";
    }
    std::string answer = "\"";
    for (; *text != '\0'; ++text) {
        if (*text == '"' || *text == '\\') {
            answer += '\\';
        }
        answer += *text;
    }
    return answer + "\"";
}

std::string pathOf(const Netlist *netlist)
{
    if (netlist == nullptr) {
        return "none";
    }
    const Cell *cell = netlist->Owner();
    if (cell == nullptr) {
        return "loose " + quoted(netlist->Name());
    }
    const Library *library = cell->Owner();
    return (library != nullptr ? quoted(library->Name()) : std::string("loose")) + "/" + quoted(cell->Name()) + "/" +
           quoted(netlist->Name());
}

/// Numbers objects in order of addition, for naming them in the dump.
class Numbers {
  public:
    explicit Numbers(const char *kind) : m_kind(kind) {}

    void add(const DesignObj *object) { m_numbers.emplace(object, m_numbers.size()); }
    std::string of(const DesignObj *object) const
    {
        if (object == nullptr) {
            return "none";
        }
        const auto found = m_numbers.find(object);
        return found != m_numbers.end() ? m_kind + std::to_string(found->second) : m_kind + "?";
    }

  private:
    std::string m_kind;
    std::unordered_map<const DesignObj *, std::size_t> m_numbers;
};

class Dumper {
  public:
    explicit Dumper(const Netlist *netlist) : m_netlist(netlist)
    {
        MapIter iter;
        Port *port = nullptr;
        FOREACH_PORT_OF_NETLIST (netlist, iter, port) {
            m_ports.add(port);
        }
        PortBus *portBus = nullptr;
        FOREACH_PORTBUS_OF_NETLIST (netlist, iter, portBus) {
            m_portBuses.add(portBus);
        }
        Net *net = nullptr;
        FOREACH_NET_OF_NETLIST (netlist, iter, net) {
            m_nets.add(net);
        }
        NetBus *netBus = nullptr;
        FOREACH_NETBUS_OF_NETLIST (netlist, iter, netBus) {
            m_netBuses.add(netBus);
        }
        Instance *inst = nullptr;
        FOREACH_INSTANCE_OF_NETLIST (netlist, iter, inst) {
            m_insts.add(inst);
        }
    }

    std::string run()
    {
        dumpTop();
        dumpPorts();
        dumpPortBuses();
        dumpNets();
        dumpNetBuses();
        dumpInstances();
        return m_out.str();
    }

  private:
    /// Ends the line and adds the attributes.
    void finish(const DesignObj *object)
    {
        if (object->Linefile()) {
            m_out << " at " << quoted(LineFile::GetFileName(object->Linefile())) << " ("
                  << quoted(LineFile::GetAbsFileName(object->Linefile()))
                  << "):" << LineFile::GetLineNo(object->Linefile());
        }
        m_out << (object->IsProtected() ? " protected" : "") << (object->IsUserDeclared() ? " declared" : "") << '\n';
        MapIter iter;
        Att *att = nullptr;
        FOREACH_ATTRIBUTE (object, iter, att) {
            m_out << "    @" << quoted(att->Key()) << "=" << quoted(att->Value()) << '\n';
        }
    }

    void dumpTop()
    {
        m_out << "netlist " << quoted(m_netlist->Name()) << " type " << m_netlist->Type()
              << (m_netlist->IsBlackBox() ? " blackbox" : "") << (m_netlist->IsRegister() ? " register" : "")
              << (m_netlist->IsOperator() ? " operator" : "") << (m_netlist->IsPrimitive() ? " primitive" : "")
              << " clock " << m_ports.of(m_netlist->GetClock()) << " input " << m_ports.of(m_netlist->GetInput());
        finish(m_netlist);
    }

    void dumpPorts()
    {
        MapIter iter;
        Port *port = nullptr;
        FOREACH_PORT_OF_NETLIST (m_netlist, iter, port) {
            m_out << "  " << m_ports.of(port) << " " << quoted(port->Name()) << " dir " << port->GetDir() << " net "
                  << m_nets.of(port->GetNet()) << " bus " << m_portBuses.of(port->Bus());
            finish(port);
        }
    }

    void dumpPortBuses()
    {
        MapIter iter;
        PortBus *bus = nullptr;
        FOREACH_PORTBUS_OF_NETLIST (m_netlist, iter, bus) {
            m_out << "  " << m_portBuses.of(bus) << " " << quoted(bus->Name()) << " dir " << bus->GetDir() << " ["
                  << bus->LeftIndex() << ":" << bus->RightIndex() << "] size " << bus->Size();
            dumpElements(bus, m_ports);
            SetIter portIter;
            Port *port = nullptr;
            FOREACH_PORT_OF_PORTBUS (bus, portIter, port) {
                m_out << " " << m_ports.of(port);
            }
            finish(bus);
        }
    }

    void dumpNets()
    {
        MapIter iter;
        Net *net = nullptr;
        FOREACH_NET_OF_NETLIST (m_netlist, iter, net) {
            m_out << "  " << m_nets.of(net) << " " << quoted(net->Name());
            if (net->IsRamNet()) {
                m_out << " memory " << net->Size();
            }
            m_out << " bus " << m_netBuses.of(net->Bus()) << " driver " << m_insts.of(net->Driver())
                  << (net->IsPwr() ? " pwr" : "") << (net->IsGnd() ? " gnd" : "")
                  << (net->IsMultipleDriven() ? " multiple" : "") << " ports";
            SetIter setIter;
            Port *port = nullptr;
            FOREACH_PORT_OF_NET (net, setIter, port) {
                m_out << " " << m_ports.of(port);
            }
            m_out << " pins";
            PortRef *ref = nullptr;
            FOREACH_PORTREF_OF_NET (net, setIter, ref) {
                m_out << " " << m_insts.of(ref->GetInst()) << "." << quoted(ref->GetPort()->Name());
            }
            finish(net);
        }
    }

    void dumpNetBuses()
    {
        MapIter iter;
        NetBus *bus = nullptr;
        FOREACH_NETBUS_OF_NETLIST (m_netlist, iter, bus) {
            m_out << "  " << m_netBuses.of(bus) << " " << quoted(bus->Name()) << " [" << bus->LeftIndex() << ":"
                  << bus->RightIndex() << "] size " << bus->Size();
            dumpElements(bus, m_nets);
            MapIter netIter;
            Net *net = nullptr;
            FOREACH_NET_OF_NETBUS (bus, netIter, net) {
                m_out << " " << m_nets.of(net);
            }
            finish(bus);
        }
    }

    template <typename Bus> void dumpElements(const Bus *bus, const Numbers &bits)
    {
        constexpr std::int64_t MOST = 512; // of wider buses the set bits say enough
        const std::int64_t step = bus->LeftIndex() <= bus->RightIndex() ? 1 : -1;
        const std::int64_t size = bus->Size();
        for (std::int64_t at = 0; at < size && at < MOST; ++at) {
            const int index = static_cast<int>(bus->LeftIndex() + step * at);
            m_out << " " << index << "=" << bits.of(bus->ElementAtIndex(index));
        }
        m_out << " set";
    }

    void dumpInstances()
    {
        MapIter iter;
        Instance *inst = nullptr;
        FOREACH_INSTANCE_OF_NETLIST (m_netlist, iter, inst) {
            m_out << "  " << m_insts.of(inst) << " " << quoted(inst->Name()) << " view " << pathOf(inst->View())
                  << " type " << inst->Type() << (inst->IsOperator() ? " operator" : "")
                  << (inst->IsPrimitive() ? " primitive" : "");
            MapIter other;
            PortRef *ref = nullptr;
            FOREACH_PORTREF_OF_INST (inst, other, ref) {
                m_out << " " << quoted(ref->GetPort()->Name()) << "=" << m_nets.of(ref->GetNet());
                if (inst->GetNet(ref->GetPort()) != ref->GetNet()) {
                    m_out << "(looked up as " << m_nets.of(inst->GetNet(ref->GetPort())) << ")";
                }
            }
            finish(inst);
            const char *key = nullptr;
            const char *value = nullptr;
            FOREACH_PARAMETER_OF_INST (inst, other, key, value) {
                m_out << "    #" << quoted(key) << "=" << quoted(value) << '\n';
            }
        }
    }

    const Netlist *m_netlist;
    Numbers m_ports{"port"};
    Numbers m_portBuses{"portbus"};
    Numbers m_nets{"net"};
    Numbers m_netBuses{"netbus"};
    Numbers m_insts{"inst"};
    std::ostringstream m_out;
};

} // namespace

std::string dumpNetlist(const Netlist *netlist)
{
    return netlist != nullptr ? Dumper(netlist).run() : "null";
}

std::string dumpHierarchy(const Netlist *top)
{
    if (top == nullptr) {
        return "null";
    }
    Set netlists(POINTER_HASH);
    top->Hierarchy(netlists, 1);
    Numbers insts("inst");
    std::string answer;
    SetIter iter;
    Netlist *netlist = nullptr;
    FOREACH_SET_ITEM (&netlists, iter, &netlist) {
        MapIter instIter;
        Instance *inst = nullptr;
        FOREACH_INSTANCE_OF_NETLIST (netlist, instIter, inst) {
            insts.add(inst);
        }
    }
    FOREACH_SET_ITEM (&netlists, iter, &netlist) {
        answer += "== " + pathOf(netlist) + "\n" + dumpNetlist(netlist) + "  references";
        SetIter refIter;
        Instance *inst = nullptr;
        FOREACH_REFERENCE_OF_NETLIST (netlist, refIter, inst) {
            if (inst->Owner() != nullptr && netlists.Get(inst->Owner()) != nullptr) {
                answer += " " + insts.of(inst);
            }
        }
        answer += "\n";
    }
    return answer;
}

} // namespace testsupport
