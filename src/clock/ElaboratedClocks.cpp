#include <netlistdb/DesignDatabase.h>

#include "clock/Climb.h"
#include "clock/ClockState.h"
#include "clock/DiscardedPath.h"
#include "clock/LongWay.h"
#include "netlist/VDBObjectPool.h"
#include "netlist/verific_queries.h"

#include "DataBase.h"

#include <netlistdb/IClockDomain.h>
#include <netlistdb/IVDBNet.h>
#include <netlistdb/VDBInstance.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace kvr::netlistdb {

namespace ask = verific_queries;

namespace {

/// Meetings of visited pairs after which a trace gives up: it runs in circles through combinational loops.
constexpr int MAX_REVISITS = 10240;

/// The clock nets of all registers of one kind that stand in one module, each once.
class RegisterClocks {
  public:
    explicit RegisterClocks(const VDBObjectPool &pool) : m_pool(pool) {}

    /// The nets on the clock port of every instance of @p registerNetlist in @p module.
    const std::vector<IVDBNet *> &of(const Verific::Netlist *registerNetlist, const Verific::Netlist *module)
    {
        auto &byModule = m_clocks[registerNetlist];
        if (byModule.empty()) {
            collect(registerNetlist, byModule);
        }
        return byModule[module];
    }

  private:
    using ByModule = std::unordered_map<const Verific::Netlist *, std::vector<IVDBNet *>>;

    void collect(const Verific::Netlist *registerNetlist, ByModule &byModule) const
    {
        const Verific::Port *clockPort = ask::clockPort(*registerNetlist);
        if (clockPort == nullptr) {
            return;
        }
        Verific::SetIter references;
        Verific::Instance *instance = nullptr;
        FOREACH_REFERENCE_OF_NETLIST (registerNetlist, references, instance) {
            Verific::MapIter pins;
            Verific::PortRef *pin = nullptr;
            FOREACH_PORTREF_OF_INST (instance, pins, pin) {
                if (pin->GetPort() == clockPort) {
                    byModule[instance->Owner()].push_back(pin->GetNet() != nullptr ? m_pool.find(pin->GetNet())
                                                                                   : nullptr);
                }
            }
        }
        for (auto &[module, nets] : byModule) {
            std::sort(nets.begin(), nets.end(), std::less<IVDBNet *>());
            nets.erase(std::unique(nets.begin(), nets.end()), nets.end());
        }
    }

    const VDBObjectPool &m_pool;
    std::unordered_map<const Verific::Netlist *, ByModule> m_clocks;
};

/// Leaves of each pair its last place alone. A net that enters an instance through several ports would otherwise double
/// the pairs at every level, up to no end; the last net of the next level comes from the same pair either way.
void keepLast(std::vector<InstanceNetSet::value_type> &pairs)
{
    if (pairs.size() < 2) {
        return;
    }
    std::unordered_set<const IVDBNet *> met; // all are in one instance
    auto kept = pairs.end();
    for (auto pair = pairs.end(); pair != pairs.begin();) {
        --pair;
        if (met.insert(pair->second).second) {
            *--kept = *pair;
        }
    }
    pairs.erase(pairs.begin(), kept);
}

} // namespace

DesignDatabase::InstanceNet DesignDatabase::getRootClk(IVDBInstance *inst, IVDBNet *net, IVDBInstance *stop)
{
    InstanceNet best{nullptr, nullptr};
    std::vector<InstanceNet> level{{inst, net}};
    while (!level.empty() && level.front().first != stop) {
        std::vector<InstanceNet> above;
        for (const InstanceNet &pair : level) {
            climb(*m_pool, pair.first, m_pool->find(pair.second), [&](const InstanceNet &found) {
                if (ask::mayDescend(*m_pool->find(found.first->getModule()))) {
                    best = found;
                }
                above.push_back(found);
            });
        }
        keepLast(above);
        level = std::move(above);
    }
    return best.first != nullptr ? best : InstanceNet{inst, net};
}

void DesignDatabase::parseClkDomainElab(Verific::Netlist *)
{
    [[maybe_unused]] const auto started = std::chrono::steady_clock::now();
    VDBInstance *root = dynamic_cast<VDBInstance *>(getRoot(SOURCE_ELABORATED));

    std::set<InstanceNet> seen;
    RegisterClocks registerClocks(*m_pool);
    std::deque<IVDBInstance *> queue;
    if (root != nullptr) {
        queue.push_back(root);
    }
    IVDBInstance *lastParent = nullptr;
    std::unordered_set<const Verific::Netlist *> doneInParent; // registers of one kind give the same nets once a parent
    while (!queue.empty()) {
        IVDBInstance *instance = queue.front();
        queue.pop_front();
        const Verific::Netlist *netlist = m_pool->find(instance->getModule());
        if (netlist == nullptr) {
            continue;
        }
        if (ask::isRegister(*netlist)) {
            IVDBInstance *parent = instance->getOwnerInstance() != nullptr ? instance->getOwnerInstance() : root;
            if (parent != lastParent) {
                lastParent = parent;
                doneInParent.clear();
            }
            if (doneInParent.insert(netlist).second) {
                for (IVDBNet *net : registerClocks.of(netlist, m_pool->find(parent->getModule()))) {
                    seen.emplace(parent, net);
                }
            }
        }
        if (ask::mayDescend(*netlist)) {
            const std::vector<IVDBInstance *> &children = instance->getSubInstances();
            queue.insert(queue.end(), children.begin(), children.end());
        }
    }

    std::set<InstanceNet> highest;
    for (const auto &[inst, net] : seen) {
        highest.insert(getRootClk(inst, net, root));
    }
    for (const auto &[inst, net] : highest) {
        recordClockDomain(inst, net, SOURCE_ELABORATED);
    }
    [[maybe_unused]] const auto ended = std::chrono::steady_clock::now();
}

IClockDomain *DesignDatabase::findDrivingClockDomainElab(IVDBInstance *inst, IVDBNet *net)
{
    if (net == nullptr || inst == nullptr) {
        return nullptr;
    }
    discardPath(*inst);
    static_cast<void>(net->getName());
    VDBInstance *root = dynamic_cast<VDBInstance *>(getRoot(SOURCE_ELABORATED));
    if (root == nullptr) {
        return nullptr;
    }

    std::deque<InstanceNet> &queue = m_clocks->queue;
    VisitedPairs &visited = m_clocks->visited;
    queue.clear();
    visited.clear();
    std::vector<IVDBInstance *> met; // operators and primitives passed through
    int revisits = 0;
    const auto push = [&](const InstanceNet &pair) {
        if (visited.contains(pair)) {
            ++revisits;
        } else {
            queue.push_back(pair);
        }
    };

    LongWay way(*m_clocks);
    const auto goesOn = [&] { return queue.empty() && met.empty() && revisits == 0; };
    IClockDomain *answer = nullptr;
    queue.emplace_back(inst, net);
    while (!queue.empty()) {
        const InstanceNet pair = queue.front();
        queue.pop_front();
        if (!visited.insert(pair)) {
            continue;
        }
        if (IClockDomain *const *known = way.arrive(pair, goesOn())) {
            answer = *known;
            break;
        }
        if (findElaboratedAnswer(pair.first, answer)) {
            break;
        }
        if (revisits > MAX_REVISITS) {
            return nullptr;
        }

        const Verific::Net *source = m_pool->find(pair.second);
        const Verific::Instance *driver = source != nullptr ? source->Driver() : nullptr;
        const Verific::PortRef *pin = driver != nullptr ? m_clocks->drivingPins.find(source, driver) : nullptr;
        if (driver == nullptr) {
            if (pair.first->getDepth() != 0) {
                climb(*m_pool, pair.first, source, push);
            }
            continue;
        }
        if (pin == nullptr || pin->GetPort() == nullptr || pin->GetInst() == nullptr) {
            continue;
        }
        IVDBInstance *cell = m_clocks->subInstances.find(pair.first, m_pool->find(pair.first->getModule()), driver);
        if (cell == nullptr) {
            continue; // an import that stopped early left the driver without item
        }
        if (findElaboratedAnswer(cell, answer)) {
            break;
        }

        const Verific::Netlist *netlist = driver->View();
        if (netlist == nullptr) {
            continue;
        }
        if (ask::isRegister(*netlist)) {
            const Verific::Port *clockPort = ask::clockPort(*netlist);
            const Verific::Net *clock = clockPort != nullptr ? driver->GetNet(clockPort) : nullptr;
            const Verific::Instance *buffer = clock != nullptr ? clock->Driver() : nullptr;
            if (buffer != nullptr && buffer->View() != nullptr && ask::isBuffer(*buffer->View())) {
                const Verific::Port *input = ask::inputPort(*buffer->View());
                clock = input != nullptr ? buffer->GetNet(input) : nullptr;
            }
            const InstanceNet top =
                getRootClk(cell->getOwnerInstance(), clock != nullptr ? m_pool->find(clock) : nullptr, root);
            answer = getParsedClockDomain(top.first, top.second, SOURCE_ELABORATED);
            break;
        }
        if (ask::isGenericCell(*netlist)) {
            IVDBInstance *owner = cell->getOwnerInstance();
            if (owner == nullptr) {
                break;
            }
            met.push_back(cell);
            Verific::MapIter inputs;
            Verific::PortRef *input = nullptr;
            FOREACH_PORTREF_OF_INST (driver, inputs, input) {
                if (input->GetPort() == nullptr || input->GetNet() == nullptr || input->GetPort()->IsOutput()) {
                    continue;
                }
                IVDBNet *item = m_pool->find(input->GetNet());
                if (item == nullptr) {
                    break;
                }
                push({owner, item});
            }
        } else {
            const Verific::Net *inside = ask::innerNet(*pin->GetPort());
            if (inside == nullptr) {
                continue;
            }
            push({cell, m_pool->find(inside)});
        }
    }

    way.end(*m_pool, goesOn(), answer);
    if (revisits < MAX_REVISITS) {
        for (IVDBInstance *cell : met) {
            recordElaboratedAnswer(cell, answer);
        }
    }
    return answer;
}

} // namespace kvr::netlistdb
