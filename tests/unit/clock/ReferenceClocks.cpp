#include "ReferenceClocks.h"

#include "netlist/VDBObjectPool.h"

#include <cstring>
#include <deque>

namespace clock_test {

namespace {

using Pair = ReferenceClocks::Pair;

std::string textOf(const char *text)
{
    return text != nullptr ? text : "";
}

std::vector<Verific::PortRef *> pinsOf(const Verific::Instance *instance)
{
    std::vector<Verific::PortRef *> pins;
    Verific::MapIter iter;
    Verific::PortRef *pin = nullptr;
    FOREACH_PORTREF_OF_INST (instance, iter, pin) {
        pins.push_back(pin);
    }
    return pins;
}

std::vector<Verific::Instance *> instancesOf(const Verific::Netlist *netlist)
{
    std::vector<Verific::Instance *> instances;
    Verific::MapIter iter;
    Verific::Instance *instance = nullptr;
    FOREACH_INSTANCE_OF_NETLIST (netlist, iter, instance) {
        instances.push_back(instance);
    }
    return instances;
}

bool isAmongPortsOf(const Verific::Port *wanted, const Verific::Net *net)
{
    Verific::SetIter iter;
    Verific::Port *port = nullptr;
    bool found = false;
    FOREACH_PORT_OF_NET (net, iter, port) {
        found = found || port == wanted;
    }
    return found;
}

Verific::PortRef *drivingPinOf(const Verific::Net *net)
{
    for (Verific::PortRef *pin : pinsOf(net->Driver())) {
        if (pin->GetNet() == net && pin->GetPort()->GetDir() == Verific::DIR_OUT) {
            return pin;
        }
    }
    return nullptr;
}

std::string cellName(const Verific::Instance *instance)
{
    const Verific::Att *att = instance != nullptr ? instance->GetAtt("KVR_ATTRIBUTE_CELL_NAME") : nullptr;
    return att != nullptr ? textOf(att->Value()) : "";
}

bool isSequential(const Verific::Instance *instance)
{
    const std::string name = cellName(instance);
    for (const char *whole : {"KVR_FF", "KVR_MULT", "KVR_IDDR", "KVR_ODDR"}) {
        if (name == whole) {
            return true;
        }
    }
    for (const char *prefix : {"KVR_RAM", "KVR_DPRAM", "KVR_DSP", "KVR_SRL"}) {
        if (name.compare(0, std::strlen(prefix), prefix) == 0) {
            return true;
        }
    }
    return false;
}

bool isClockPin(const Verific::Port *port)
{
    const Verific::Att *att = port->GetAtt("KVR_ATTRIBUTE_PORT__IS_CLOCK");
    return port->GetDir() != Verific::DIR_OUT && att != nullptr && textOf(att->Value()) == "TRUE";
}

bool isDescendable(const Verific::Netlist *netlist)
{
    return !(netlist->IsBlackBox() || netlist->IsOperator() || netlist->IsPrimitive());
}

bool isGeneric(const Verific::Netlist *netlist)
{
    const Verific::Cell *cell = netlist != nullptr ? netlist->Owner() : nullptr;
    const Verific::Library *library = cell != nullptr ? cell->Owner() : nullptr;
    const std::string name = library != nullptr ? textOf(library->Name()) : "";
    return name == "Operators" || name == "Primitives";
}

/// What a key leads to among the items of one source, and of the other where that one does not know it.
class Pool {
  public:
    Pool(const DesignDatabase &database, IDesignDatabase::SOURCE_TYPE type)
        : m_own(*database.objectPool(type)), m_other(*database.objectPool(type == POST_MAP ? ELABORATED : POST_MAP))
    {
    }
    template <typename Key> auto find(const Key *key) const
    {
        auto *const found = m_own.find(key);
        return found != nullptr ? found : m_other.find(key);
    }

  private:
    const kvr::netlistdb::VDBObjectPool &m_own;
    const kvr::netlistdb::VDBObjectPool &m_other;
};

/// The pairs one level above that @p pair enters from, as far as they have items.
std::vector<Pair> above(const Pool &pool, const Pair &pair)
{
    std::vector<Pair> pairs;
    const Verific::Net *net = pair.second != nullptr ? pool.find(pair.second) : nullptr;
    IVDBInstance *owner = pair.first->getOwnerInstance();
    const Verific::Instance *instance = pool.find(pair.first);
    if (net == nullptr || owner == nullptr || owner->getModule() == nullptr ||
        pool.find(owner->getModule()) == nullptr || instance == nullptr) {
        return pairs;
    }
    for (const Verific::PortRef *pin : pinsOf(instance)) {
        if (pin->GetPort()->GetDir() == Verific::DIR_OUT || !isAmongPortsOf(pin->GetPort(), net)) {
            continue;
        }
        IVDBNet *outside = pool.find(pin->GetNet());
        if (outside == nullptr) {
            break;
        }
        pairs.emplace_back(owner, outside);
    }
    return pairs;
}

} // namespace

std::set<Pair> ReferenceClocks::postMapClocks() const
{
    const Pool pool(m_database, POST_MAP);
    IVDBInstance *const root = m_database.getRoot(POST_MAP);
    std::set<Pair> clocks;
    for (const Verific::Instance *instance : instancesOf(m_database.workingCopy(POST_MAP))) {
        if (cellName(instance) == "KVR_GBUFCE") {
            const Verific::Port *input = instance->View()->GetPort("I", 0);
            const Verific::Net *net = input != nullptr ? instance->GetNet(input) : nullptr;
            if (net != nullptr) {
                clocks.emplace(root, pool.find(net));
            }
        } else if (isSequential(instance)) {
            for (const Verific::PortRef *pin : pinsOf(instance)) {
                if (isClockPin(pin->GetPort())) {
                    clocks.emplace(root, pool.find(pin->GetNet()));
                }
            }
        }
    }
    return clocks;
}

Pair ReferenceClocks::rootClock(Pair start, const IVDBInstance *stop) const
{
    const Pool pool(m_database, ELABORATED);
    Pair best{nullptr, nullptr};
    std::deque<Pair> queue{start};
    while (!queue.empty() && queue.front().first != stop) {
        for (const Pair &pair : above(pool, queue.front())) {
            if (isDescendable(pool.find(pair.first->getModule()))) {
                best = pair;
            }
            queue.push_back(pair);
        }
        queue.pop_front();
    }
    return best.first != nullptr ? best : start;
}

std::set<Pair> ReferenceClocks::elaboratedClocks() const
{
    const Pool pool(m_database, ELABORATED);
    IVDBInstance *const root = m_database.getRoot(ELABORATED);
    std::set<Pair> found;
    std::deque<IVDBInstance *> queue{root};
    for (; !queue.empty(); queue.pop_front()) {
        IVDBInstance *const item = queue.front();
        const Verific::Netlist *netlist = pool.find(item->getModule());
        if (netlist->IsRegister()) {
            IVDBInstance *const parent = item->getOwnerInstance() != nullptr ? item->getOwnerInstance() : root;
            for (const Verific::Instance *instance : instancesOf(pool.find(parent->getModule()))) {
                if (instance->View() != netlist) {
                    continue;
                }
                for (const Verific::PortRef *pin : pinsOf(instance)) {
                    if (pin->GetPort() == netlist->GetClock()) {
                        found.emplace(parent, pool.find(pin->GetNet()));
                    }
                }
            }
        }
        if (isDescendable(netlist)) {
            const std::vector<IVDBInstance *> &children = item->getSubInstances();
            queue.insert(queue.end(), children.begin(), children.end());
        }
    }
    std::set<Pair> clocks;
    for (const Pair &pair : found) {
        clocks.insert(rootClock(pair, root));
    }
    return clocks;
}

IClockDomain *ReferenceClocks::recordOf(const Pair &pair, IDesignDatabase::SOURCE_TYPE type) const
{
    if (pair.first == nullptr || pair.second == nullptr) {
        return nullptr;
    }
    for (IClockDomain *record : m_database.listAllClockDomains(type)) {
        if (record->getInstance() == pair.first && record->getNet() == pair.second) {
            return record;
        }
    }
    return nullptr;
}

ReferenceClocks::PairCache::const_iterator ReferenceClocks::cached(const Pair &pair) const
{
    auto entry = m_pairCache.begin();
    while (entry != m_pairCache.end() && entry->second.count(pair) == 0) {
        ++entry;
    }
    return entry;
}

void ReferenceClocks::cacheAll(IClockDomain *domain, const std::set<Pair> &pairs, const std::set<Pair> &except)
{
    for (const Pair &pair : pairs) {
        if (except.count(pair) == 0) {
            m_pairCache[domain].insert(pair);
        }
    }
}

IClockDomain *ReferenceClocks::findPostMap(IVDBInstance *instance, IVDBNet *net)
{
    const Pool pool(m_database, POST_MAP);
    std::deque<Pair> queue{{instance, net}};
    std::set<Pair> visited;
    std::set<Pair> deadEnds;
    IClockDomain *answer = nullptr;
    bool decided = false;
    while (!queue.empty() && !decided) {
        const Pair pair = queue.front();
        queue.pop_front();
        visited.insert(pair);
        const auto entry = cached(pair);
        if (entry != m_pairCache.end()) {
            if (entry->first == nullptr) {
                break;
            }
            cacheAll(entry->first, visited, deadEnds);
            return entry->first;
        }
        const Verific::Net *source = pair.second != nullptr ? pool.find(pair.second) : nullptr;
        const Verific::Instance *driver = source != nullptr ? source->Driver() : nullptr;
        if (driver == nullptr) {
            if (pair.first->getDepth() == 0) {
                deadEnds.insert(pair);
                m_pairCache[nullptr].insert(pair);
                continue;
            }
            for (const Pair &upper : above(pool, pair)) {
                if (visited.count(upper) == 0) {
                    queue.push_back(upper);
                }
            }
            continue;
        }
        const std::string output = textOf(drivingPinOf(source)->GetPort()->Name());
        if (!isSequential(driver)) {
            for (const Verific::PortRef *pin : pinsOf(driver)) {
                const Pair input{instance, pool.find(pin->GetNet())};
                if (pin->GetPort()->GetDir() != Verific::DIR_OUT && visited.count(input) == 0) {
                    queue.push_back(input);
                }
            }
            continue;
        }
        for (const Verific::PortRef *pin : pinsOf(driver)) {
            const std::string clock = textOf(pin->GetPort()->Name());
            const std::string type = cellName(driver);
            if (!isClockPin(pin->GetPort()) || output.empty() || clock.empty()) {
                continue;
            }
            if (type.compare(0, 7, "KVR_RAM") == 0 && output[0] != clock[0]) {
                continue;
            }
            if (type.compare(0, 9, "KVR_DPRAM") == 0 && output[output.size() - 1] != clock[clock.size() - 1]) {
                continue;
            }
            const Verific::Net *clockNet = pin->GetNet();
            const Verific::Instance *buffer = clockNet->Driver();
            if (cellName(buffer) == "KVR_GBUFCE") {
                const Verific::Port *input = buffer->View()->GetPort("I", 0);
                if (input == nullptr) {
                    continue;
                }
                clockNet = buffer->GetNet(input);
            }
            answer = recordOf({instance, clockNet != nullptr ? pool.find(clockNet) : nullptr}, POST_MAP);
            cacheAll(answer, visited, deadEnds);
            decided = true;
            break;
        }
    }
    if (answer == nullptr) {
        cacheAll(nullptr, visited, {});
    }
    return answer;
}

IClockDomain *ReferenceClocks::findElaborated(IVDBInstance *instance, IVDBNet *net)
{
    const Pool pool(m_database, ELABORATED);
    IVDBInstance *const root = m_database.getRoot(ELABORATED);
    std::deque<Pair> queue{{instance, net}};
    std::set<Pair> visited;
    std::set<IVDBInstance *> met;
    int revisits = 0;
    IClockDomain *answer = nullptr;
    const auto push = [&](const Pair &pair) {
        if (visited.count(pair) != 0) {
            ++revisits;
        } else {
            queue.push_back(pair);
        }
    };
    for (; !queue.empty(); queue.pop_front()) {
        const Pair pair = queue.front();
        if (!visited.insert(pair).second) {
            continue;
        }
        if (m_instanceCache.count(pair.first) != 0) {
            answer = m_instanceCache[pair.first];
            break;
        }
        if (revisits > 10240) {
            return nullptr;
        }
        const Verific::Net *source = pair.second != nullptr ? pool.find(pair.second) : nullptr;
        const Verific::Instance *driver = source != nullptr ? source->Driver() : nullptr;
        if (driver == nullptr) {
            if (pair.first->getDepth() != 0) {
                for (const Pair &upper : above(pool, pair)) {
                    push(upper);
                }
            }
            continue;
        }
        IVDBInstance *cell = nullptr;
        for (IVDBInstance *child : pair.first->getSubInstances()) {
            if (cell == nullptr && child->getName() == textOf(driver->Name())) {
                cell = child;
            }
        }
        if (cell == nullptr) {
            continue;
        }
        if (m_instanceCache.count(cell) != 0) {
            answer = m_instanceCache[cell];
            break;
        }
        const Verific::Netlist *netlist = driver->View();
        if (netlist->IsRegister()) {
            const Verific::Port *port = netlist->GetClock();
            const Verific::Net *clock = port != nullptr ? driver->GetNet(port) : nullptr;
            const Verific::Instance *buffer = clock != nullptr ? clock->Driver() : nullptr;
            if (buffer != nullptr && buffer->View()->Type() == 5) {
                const Verific::Port *input = buffer->View()->GetInput();
                clock = input != nullptr ? buffer->GetNet(input) : nullptr;
            }
            answer = recordOf(
                rootClock({cell->getOwnerInstance(), clock != nullptr ? pool.find(clock) : nullptr}, root), ELABORATED);
            break;
        }
        if (isGeneric(netlist)) {
            met.insert(cell);
            for (const Verific::PortRef *pin : pinsOf(driver)) {
                if (pin->GetPort()->GetDir() == Verific::DIR_OUT) {
                    continue;
                }
                if (pool.find(pin->GetNet()) == nullptr) {
                    break;
                }
                push({cell->getOwnerInstance(), pool.find(pin->GetNet())});
            }
            continue;
        }
        const Verific::Net *inside = drivingPinOf(source)->GetPort()->GetNet();
        if (inside != nullptr) {
            push({cell, pool.find(inside)});
        }
    }
    if (revisits < 10240) {
        for (IVDBInstance *cell : met) {
            if (pool.find(cell) != nullptr && isGeneric(pool.find(cell)->View())) {
                m_instanceCache.emplace(cell, answer);
            }
        }
    }
    return answer;
}

} // namespace clock_test
