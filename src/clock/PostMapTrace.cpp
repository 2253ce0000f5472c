#include "clock/PostMapTrace.h"

#include "clock/DrivingPin.h"
#include "clock/PostMapCells.h"

#include "DataBase.h"

#include <netlistdb/IVDBNet.h>

namespace kvr::netlistdb {

PostMapTrace::PostMapTrace(ClockAnalysis &analysis, const InstanceNet &start)
    : m_analysis(analysis), m_items(analysis.m_postMap.items), m_storage(analysis.m_storage), m_climb(m_items),
      m_startInstance(start.first), m_pair(start), m_net(m_items.find(start.second))
{
    m_storage.queue.clear();
    m_storage.visited.clear();
    m_storage.deadEnds.clear();
}

IClockDomain *PostMapTrace::run()
{
    do {
        const auto cached = m_analysis.m_pairs.find(m_pair);
        if (cached != m_analysis.m_pairs.sets().end()) {
            if (cached->first == nullptr) {
                break; // a pair known to reach no clock ends the query, whatever else waits
            }
            rememberUnder(cached->first);
            return cached->first;
        }
        m_storage.visited.insert(m_pair);

        const Verific::Instance *driver = m_net != nullptr ? m_net->Driver() : nullptr;
        const Verific::PortRef *pin = driver != nullptr ? drivingPin(m_net, driver) : nullptr;
        if (pin == nullptr && m_pair.first != nullptr && m_pair.first->getDepth() != 0) {
            climb();
        } else if (pin == nullptr || pin->GetPort() == nullptr || pin->GetInst() == nullptr) {
            endAtDeadEnd();
        } else if (!isSequentialCell(driver)) {
            passThrough(*driver);
        } else if (const Verific::Net *clock = nullptr;
                   m_analysis.m_clockPorts.clockOfOutput(driver, pin->GetPort(), clock)) {
            // The first sequential cell decides, also when its clock is no domain.
            if (IClockDomain *const domain = domainOf(clock)) {
                rememberUnder(domain);
                return domain;
            }
            break;
        }
        // A sequential cell whose clock pins do not clock that output is a barrier: nothing behind it is asked.
    } while (takeNext());
    rememberThatNothingClocks();
    return nullptr;
}

bool PostMapTrace::takeNext()
{
    if (m_storage.queue.empty()) {
        return false;
    }
    m_pair = m_storage.queue.front();
    m_storage.queue.pop_front();
    m_net = m_items.find(m_pair.second);
    return true;
}

/// A pair may be put in line several times before its first turn, and then has several turns.
void PostMapTrace::putInLine(const InstanceNet &pair)
{
    if (!m_storage.visited.contains(pair)) {
        m_storage.queue.push_back(pair);
    }
}

void PostMapTrace::endAtDeadEnd()
{
    m_storage.deadEnds.insert(m_pair);
    m_analysis.m_pairs.add(nullptr, m_pair);
}

void PostMapTrace::climb()
{
    m_climb.above(m_pair.first, m_net, [this](const InstanceNet &above) { putInLine(above); });
}

void PostMapTrace::passThrough(const Verific::Instance &cell)
{
    Verific::MapIter inputs;
    Verific::PortRef *input = nullptr;
    FOREACH_PORTREF_OF_INST (&cell, inputs, input) {
        if (input->GetPort() != nullptr && input->GetNet() != nullptr && !input->GetPort()->IsOutput()) {
            putInLine({m_startInstance, m_items.find(input->GetNet())});
        }
    }
}

/// Every domain is recorded under the root: it is found when the query began there.
IClockDomain *PostMapTrace::domainOf(const Verific::Net *clock) const
{
    IVDBNet *const item = clock != nullptr ? m_items.find(clock) : nullptr;
    return m_analysis.parsedClockDomain({m_startInstance, item}, IDesignDatabase::SOURCE_POST_MAP);
}

void PostMapTrace::rememberUnder(IClockDomain *domain)
{
    for (const InstanceNet &each : m_storage.visited) {
        if (m_storage.deadEnds.empty() || !m_storage.deadEnds.contains(each)) {
            m_analysis.m_pairs.add(domain, each);
        }
    }
}

void PostMapTrace::rememberThatNothingClocks()
{
    for (const InstanceNet &each : m_storage.visited) {
        m_analysis.m_pairs.add(nullptr, each);
    }
}

} // namespace kvr::netlistdb
