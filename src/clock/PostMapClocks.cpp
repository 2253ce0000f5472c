#include <netlistdb/DesignDatabase.h>

#include "clock/Climb.h"
#include "clock/ClockState.h"
#include "clock/DiscardedPath.h"
#include "clock/PostMapCells.h"
#include "netlist/VDBObjectPool.h"

#include "DataBase.h"

#include <netlistdb/IClockDomain.h>
#include <netlistdb/IVDBNet.h>
#include <netlistdb/VDBInstance.h>

#include <chrono>

namespace kvr::netlistdb {

namespace {

std::string_view nameOf(const Verific::Port *port)
{
    const char *name = port->Name();
    return name != nullptr ? std::string_view(name) : std::string_view();
}

/// Net on the pin "I" of a clock buffer. False when the buffer has no such port.
bool bufferInput(const Verific::Instance *buffer, Verific::Net *&net)
{
    const Verific::Netlist *cell = buffer->View();
    const Verific::Port *input = cell != nullptr ? cell->GetPort("I", 0) : nullptr;
    if (input == nullptr) {
        return false;
    }
    net = buffer->GetNet(input);
    return true;
}

/// The clock of the output @p drivingPin of a sequential cell, as it stands before one clock buffer. False when no
/// clock pin clocks that output.
bool clockOfOutput(const Verific::Instance *cell, const Verific::Port *drivingPin, Verific::Net *&clock)
{
    const std::string_view type = deviceCellName(cell);
    const std::string_view output = nameOf(drivingPin);
    Verific::MapIter pins;
    Verific::PortRef *pin = nullptr;
    FOREACH_PORTREF_OF_INST (cell, pins, pin) {
        const Verific::Port *port = pin->GetPort();
        Verific::Net *net = pin->GetNet();
        if (port == nullptr || net == nullptr || !isClockPort(port) || !clocksOutput(type, output, nameOf(port))) {
            continue;
        }
        const Verific::Instance *driver = net->Driver();
        if (isClockBuffer(driver) && !bufferInput(driver, net)) {
            continue;
        }
        clock = net;
        return true;
    }
    return false;
}

/// Takes nets from the line until one was not visited before it was put there; false when none is left. A net may have
/// been put in line several times before its first turn, and then has several turns.
bool nextWaiting(const VDBObjectPool &pool, std::deque<WaitingNet> &queue, const VisitedPairs &visited,
                 VisitedPairs::Pair &pair, const Verific::Net *&source)
{
    while (!queue.empty()) {
        const WaitingNet waiting = queue.front();
        queue.pop_front();
        pair = {waiting.instance, pool.find(waiting.net)};
        source = pair.second != nullptr ? waiting.net : nullptr;
        if (!visited.containsAmongFirst(waiting.visited, pair)) {
            return true;
        }
    }
    return false;
}

} // namespace

void DesignDatabase::parseClkDomainPostMap(Verific::Netlist *netlist)
{
    [[maybe_unused]] const auto started = std::chrono::steady_clock::now();
    VDBInstance *root = dynamic_cast<VDBInstance *>(getRoot(SOURCE_POST_MAP));

    std::set<InstanceNet> clocks;
    const Verific::Net *last = nullptr; // flip-flops of one clock tend to stand together
    const auto add = [&](const Verific::Net *net) {
        if (net != nullptr && net != last) {
            clocks.emplace(root, m_pool->find(net));
            last = net;
        }
    };

    Verific::MapIter instances;
    Verific::Instance *instance = nullptr;
    FOREACH_INSTANCE_OF_NETLIST (netlist, instances, instance) {
        if (isClockBuffer(instance)) {
            Verific::Net *input = nullptr;
            if (bufferInput(instance, input)) {
                add(input);
            }
        } else if (isSequentialCell(instance)) {
            Verific::MapIter pins;
            Verific::PortRef *pin = nullptr;
            FOREACH_PORTREF_OF_INST (instance, pins, pin) {
                if (pin->GetNet() != nullptr && pin->GetPort() != nullptr && isClockPort(pin->GetPort())) {
                    add(instance->GetNet(pin->GetPort()));
                }
            }
        }
    }
    for (const auto &[inst, net] : clocks) {
        recordClockDomain(inst, net, SOURCE_POST_MAP);
    }
    [[maybe_unused]] const auto ended = std::chrono::steady_clock::now();
}

IClockDomain *DesignDatabase::findDrivingClockDomainPostMap(IVDBInstance *inst, IVDBNet *net)
{
    if (net == nullptr || inst == nullptr) {
        return nullptr;
    }
    discardPath(*inst);
    static_cast<void>(net->getName());
    if (dynamic_cast<VDBInstance *>(getRoot(SOURCE_POST_MAP)) == nullptr) {
        return nullptr;
    }

    std::deque<WaitingNet> &queue = m_clocks->fanIn;
    VisitedPairs &visited = m_clocks->visited;
    VisitedPairs &deadEnds = m_clocks->deadEnds;
    queue.clear();
    visited.clear();
    deadEnds.clear();

    const auto cacheVisited = [&](IClockDomain *domain) {
        for (const InstanceNet &each : visited) {
            if (deadEnds.empty() || !deadEnds.contains(each)) {
                addCache(domain, each);
            }
        }
    };
    const auto push = [&](IVDBInstance *instance, const Verific::Net *waiting) {
        queue.push_back({instance, waiting, visited.size()});
    };

    IClockDomain *answer = nullptr;
    InstanceNet pair{inst, net};
    const Verific::Net *source = m_pool->find(net);
    for (bool waiting = true; waiting; waiting = nextWaiting(*m_pool, queue, visited, pair, source)) {
        visited.insert(pair);

        const auto cached = findCachedResult(pair);
        if (cached != m_drivingClockCache.end()) {
            if (cached->first == nullptr) {
                break; // a pair known to reach no clock ends the query, whatever else waits
            }
            cacheVisited(cached->first);
            return cached->first;
        }

        const Verific::Instance *driver = source != nullptr ? source->Driver() : nullptr;
        const Verific::PortRef *pin = driver != nullptr ? m_clocks->drivingPins.find(source, driver) : nullptr;
        if (pin == nullptr && pair.first != nullptr && pair.first->getDepth() != 0) {
            climb(*m_pool, pair.first, source,
                  [&](const InstanceNet &above) { push(above.first, m_pool->find(above.second)); });
            continue;
        }
        if (pin == nullptr || pin->GetPort() == nullptr || pin->GetInst() == nullptr) {
            deadEnds.insert(pair);
            addCache(nullptr, pair);
            continue;
        }

        if (isSequentialCell(driver)) {
            Verific::Net *clock = nullptr;
            if (clockOfOutput(driver, pin->GetPort(), clock)) {
                // Every domain stands under the root: asked there, the first sequential cell decides.
                answer = getParsedClockDomain(inst, clock != nullptr ? m_pool->find(clock) : nullptr, SOURCE_POST_MAP);
                cacheVisited(answer);
                break;
            }
            continue; // a barrier: nothing behind it can clock this output
        }
        Verific::MapIter inputs;
        Verific::PortRef *input = nullptr;
        FOREACH_PORTREF_OF_INST (driver, inputs, input) {
            if (input->GetPort() != nullptr && input->GetNet() != nullptr && !input->GetPort()->IsOutput()) {
                push(inst, input->GetNet());
            }
        }
    }

    if (answer == nullptr) {
        for (const InstanceNet &each : visited) {
            addCache(nullptr, each);
        }
    }
    return answer;
}

} // namespace kvr::netlistdb
