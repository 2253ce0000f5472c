#include "tests/property/ImportReference.h"

#include "netlist/VDBObjectPool.h"

#include <netlistdb/IVDBLineInfo.h>
#include <netlistdb/IVDBNet.h>
#include <netlistdb/IVDBNetBus.h>
#include <netlistdb/IVDBPort.h>

#include <DataBase.h>
#include <LineFile.h>

#include <algorithm>
#include <deque>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <stdexcept>
#include <utility>
#include <vector>

namespace property_test {

using namespace kvr::netlistdb;

namespace {

std::string textOf(const char *name)
{
    return name != nullptr ? name : "";
}

std::string flag(bool on, const char *name)
{
    return on ? std::string(" ") + name : "";
}

// The expected side.

std::string expectedPosition(const Verific::DesignObj &object)
{
    const char *file = object.Linefile() ? Verific::LineFile::GetAbsFileName(object.Linefile()) : nullptr;
    return file == nullptr
               ? ""
               : " at " + std::string(file) + ":" + std::to_string(Verific::LineFile::GetLineNo(object.Linefile()));
}

class Reference {
  public:
    Reference(const Verific::Netlist *source, const Verific::Netlist *top, bool showObjects)
        : m_source(source), m_top(top), m_showObjects(showObjects)
    {
    }

    TreeDescription describe(bool unfold)
    {
        TreeDescription description;
        try {
            describeModule(m_top);
            for (const Verific::Netlist *netlist : hierarchy()) {
                describeModule(netlist);
            }
        } catch (const std::out_of_range &) {
            description.throws = true;
            return description;
        }
        m_out << "root of " << moduleName(m_top) << "\n" << m_modules[m_top];
        description.complete = unfoldFrom(unfold);
        description.text = m_out.str();
        return description;
    }

  private:
    struct Node {
        std::string prefix; ///< of the paths below it
        unsigned depth;
        const Verific::Netlist *netlist;
    };

    std::string object(const void *address) const
    {
        if (!m_showObjects) {
            return "";
        }
        std::ostringstream text;
        text << " <" << address << ">";
        return text.str();
    }

    std::vector<const Verific::Netlist *> hierarchy() const
    {
        std::vector<const Verific::Netlist *> found;
        std::set<const Verific::Netlist *> seen{m_top};
        std::deque<const Verific::Netlist *> queue{m_top};
        while (!queue.empty()) {
            const Verific::Netlist *netlist = queue.front();
            queue.pop_front();
            Verific::MapIter instances;
            const Verific::Instance *instance = nullptr;
            FOREACH_INSTANCE_OF_NETLIST (netlist, instances, instance) {
                if (instance->View() != nullptr && seen.insert(instance->View()).second) {
                    found.push_back(instance->View());
                    queue.push_back(instance->View());
                }
            }
        }
        return found;
    }

    std::string moduleName(const Verific::Netlist *netlist) const
    {
        // The copy has no cell: its module is named after that of the original.
        const Verific::Cell *cell = (netlist == m_top ? m_source : netlist)->Owner();
        return cell != nullptr ? textOf(cell->Name()) + " in " + textOf(cell->Owner()->Name()) : " in ";
    }

    std::string netLine(const Verific::Net *net, bool inBus) const
    {
        const bool isHidden = net->IsProtected() || net->IsRamNet();
        return std::string(inBus ? "    member " : "  net ") + textOf(net->Name()) + " width " +
               std::to_string(net->Size()) + flag(net->Size() > 1, "bus") + flag(net->IsPwr(), "power") +
               flag(net->IsGnd(), "ground") + flag(net->IsMultipleDriven(), "multiple") +
               flag(net->IsProtected(), "protected") + flag(!isHidden, "selectable") + expectedPosition(*net) +
               object(net) + "\n";
    }

    static std::string alignment(const std::string &busName, const std::vector<const Verific::Net *> &members)
    {
        const bool aligned = std::all_of(members.begin(), members.end(), [&](const Verific::Net *net) {
            return textOf(net->Name()).rfind(busName) == 0;
        });
        return flag(aligned, "aligned");
    }

    void describeModule(const Verific::Netlist *netlist)
    {
        std::string text = "  module " + moduleName(netlist) + expectedPosition(*netlist) + object(netlist) + "\n";
        std::set<const Verific::Net *> inBuses;
        Verific::MapIter buses;
        const Verific::NetBus *bus = nullptr;
        FOREACH_NETBUS_OF_NETLIST (netlist, buses, bus) {
            std::vector<const Verific::Net *> members;
            Verific::MapIter bits;
            Verific::Net *net = nullptr;
            FOREACH_NET_OF_NETBUS (bus, bits, net) {
                members.push_back(net);
                inBuses.insert(net);
            }
            const int low = std::min(bus->LeftIndex(), bus->RightIndex());
            const int high = std::max(bus->LeftIndex(), bus->RightIndex());
            text += "  bus " + textOf(bus->Name()) + "[" + std::to_string(bus->LeftIndex()) + ":" +
                    std::to_string(bus->RightIndex()) + "] width " + std::to_string(high - low + 1) +
                    flag(bus->IsProtected(), "protected") + flag(!bus->IsProtected(), "selectable") +
                    alignment(textOf(bus->Name()), members) + expectedPosition(*bus) + "\n";
            for (const Verific::Net *member : members) {
                text += netLine(member, true);
            }
        }
        describeOtherNets(netlist, inBuses, text);
        Verific::MapIter ports;
        const Verific::Port *port = nullptr;
        FOREACH_PORT_OF_NETLIST (netlist, ports, port) {
            const int direction = port->IsInput() ? 0 : port->IsOutput() ? 1 : 2;
            text += "  port " + textOf(port->Name()) + " " + std::to_string(direction) + "\n";
        }
        m_modules[netlist] = text;
    }

    void describeOtherNets(const Verific::Netlist *netlist, const std::set<const Verific::Net *> &inBuses,
                           std::string &text)
    {
        static const std::regex SUBSCRIPT(R"(\[([0-9]+)\]$)");
        std::string plain;
        std::map<std::string, std::vector<std::pair<int, const Verific::Net *>>> groups;
        Verific::MapIter nets;
        const Verific::Net *net = nullptr;
        FOREACH_NET_OF_NETLIST (netlist, nets, net) {
            const std::string name = textOf(net->Name());
            std::smatch match;
            if (inBuses.count(net) != 0) {
                continue;
            }
            if (std::regex_search(name, match, SUBSCRIPT)) {
                groups[match.prefix().str()].emplace_back(std::stoi(match[1].str()), net);
            } else {
                plain += netLine(net, false);
            }
        }
        std::string buses;
        for (auto &[base, bits] : groups) {
            std::stable_sort(bits.begin(), bits.end(), [](const auto &a, const auto &b) { return a.first < b.first; });
            int last = -99;
            std::size_t count = 0;
            for (std::size_t at = 0; at < bits.size(); ++at) {
                if (at == 0) {
                    if (bits[0].first != 0) {
                        break;
                    }
                    last = 0;
                    count = 1;
                } else if (bits[at].first == last + 1) {
                    last = bits[at].first;
                    ++count;
                }
            }
            std::vector<const Verific::Net *> members;
            for (std::size_t at = 0; at < bits.size(); ++at) {
                if (last > 0 && at < count) {
                    members.push_back(bits[at].second);
                } else {
                    plain += netLine(bits[at].second, false);
                }
            }
            if (last > 0) {
                buses += "  auto " + base + "[" + std::to_string(last) + ":0] width " + std::to_string(last + 1) +
                         " selectable" + alignment(base, members) + "\n";
                for (const Verific::Net *member : members) {
                    buses += netLine(member, true);
                }
            }
        }
        text += buses + plain;
    }

    static std::string prefixBelow(const std::string &prefix, const std::string &name)
    {
        return name.empty() ? prefix : prefix + name + "/";
    }

    bool unfoldFrom(bool unfold)
    {
        bool complete = true;
        std::deque<Node> queue;
        Verific::MapIter instances;
        const Verific::Instance *instance = nullptr;
        FOREACH_INSTANCE_OF_NETLIST (m_top, instances, instance) {
            if (instance->View() == nullptr) {
                complete = false;
                break;
            }
            const std::string name = textOf(instance->Name());
            writeInstance(instance, name, 1);
            queue.push_back({prefixBelow("", name), 1, instance->View()});
        }
        for (; unfold && !queue.empty(); queue.pop_front()) {
            const Node node = queue.front();
            FOREACH_INSTANCE_OF_NETLIST (node.netlist, instances, instance) {
                if (instance->View() == nullptr) {
                    complete = false;
                    break;
                }
                const std::string name = textOf(instance->Name());
                writeInstance(instance, node.prefix + name, node.depth + 1);
                if (!instance->View()->IsBlackBox()) {
                    queue.push_back({prefixBelow(node.prefix, name), node.depth + 1, instance->View()});
                }
            }
        }
        return complete;
    }

    void writeInstance(const Verific::Instance *instance, const std::string &path, unsigned depth)
    {
        const unsigned parameters = instance->GetParameters() != nullptr ? instance->GetParameters()->Size() : 0;
        m_out << "instance " << path << " depth " << depth << " parameters " << parameters << object(instance) << "\n"
              << m_modules[instance->View()];
    }

    const Verific::Netlist *m_source;
    const Verific::Netlist *m_top;
    bool m_showObjects;
    std::ostringstream m_out;
    std::map<const Verific::Netlist *, std::string> m_modules;
};

// The side of the items.

class Actual {
  public:
    explicit Actual(const VDBObjectPool *pool) : m_pool(pool) {}

    std::string describe(const IVDBInstance &root)
    {
        m_out << "root of " << root.getModule()->getName() << " in " << root.getModule()->GetLibName() << "\n";
        describeModule(root.getModule());
        std::deque<const IVDBInstance *> queue{&root};
        for (; !queue.empty(); queue.pop_front()) {
            for (const IVDBInstance *child : queue.front()->getSubInstances()) {
                m_out << "instance " << child->getPath() << " depth " << child->getDepth() << " parameters "
                      << child->getParameterCount() << object(child) << "\n";
                if (child->getOwnerInstance() != queue.front()) {
                    m_out << "WRONG OWNER\n";
                }
                describeModule(child->getModule());
                queue.push_back(child);
            }
        }
        return m_out.str();
    }

  private:
    template <typename Item> std::string object(const Item *item) const
    {
        if (m_pool == nullptr) {
            return "";
        }
        std::ostringstream text;
        text << " <" << static_cast<const void *>(m_pool->find(item)) << ">";
        return text.str();
    }

    static std::string position(IVDBLineInfo *info, bool isUserDeclared)
    {
        if ((info != nullptr) != isUserDeclared) {
            return " WRONG USER FLAG";
        }
        return info == nullptr ? "" : " at " + info->getFilePath() + ":" + std::to_string(info->getLineNumber());
    }

    std::string netLine(IVDBNet *net, const IVDBNetBus *bus) const
    {
        return (bus != nullptr ? "    member " : "  net ") + net->getName() + " width " +
               std::to_string(net->getWidth()) + flag(net->isBus(), "bus") + flag(net->isPwr(), "power") +
               flag(net->isGnd(), "ground") + flag(net->isMultipleDriven(), "multiple") +
               flag(net->isProtected(), "protected") + flag(net->isSelectableForDebugger(), "selectable") +
               position(net->getLineInfo(), net->isUserDeclared()) + flag(net->getOwnerBus() != bus, "WRONG BUS") +
               object(net) + "\n";
    }

    void describeModule(IVDBNetlist *module)
    {
        const auto [known, isNew] = m_modules.try_emplace(module);
        std::string &text = known->second;
        if (isNew) {
            text = "  module " + module->getName() + " in " + module->GetLibName() +
                   position(module->getLineInfo(), module->isUserDeclared()) + object(module) + "\n";
            for (IVDBNetBus *bus : module->getAllNetBus()) {
                text += std::string(bus->isAutoGenerated() ? "  auto " : "  bus ") + bus->getName() + "[" +
                        std::to_string(bus->getLeftIndex()) + ":" + std::to_string(bus->getRightIndex()) + "] width " +
                        std::to_string(bus->getWidth()) + flag(bus->isProtected(), "protected") +
                        flag(bus->isSelectableForDebugger(), "selectable") + flag(bus->isNameAligned(), "aligned") +
                        position(bus->getLineInfo(), bus->isUserDeclared()) + "\n";
                for (IVDBNet *net : bus->getNets()) {
                    text += netLine(net, bus);
                }
            }
            for (IVDBNet *net : module->getNets(false)) {
                text += netLine(net, nullptr);
            }
            for (const IVDBPort *port : module->getPorts()) {
                text += "  port " + port->getName() + " " + std::to_string(port->direction()) + "\n";
            }
        }
        m_out << text;
    }

    const VDBObjectPool *m_pool;
    std::ostringstream m_out;
    std::map<IVDBNetlist *, std::string> m_modules;
};

} // namespace

TreeDescription expectedTree(const Verific::Netlist *source, const Verific::Netlist *top, bool unfold, bool showObjects)
{
    return Reference(source, top, showObjects).describe(unfold);
}

std::string actualTree(const IVDBInstance &root, const VDBObjectPool *pool)
{
    return Actual(pool).describe(root);
}

} // namespace property_test
