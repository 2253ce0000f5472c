#include "clock/ElaboratedTrace.h"

#include "clock/DrivingPin.h"
#include "clock/HighestNet.h"
#include "netlist/verific_queries.h"

#include "DataBase.h"

#include <netlistdb/IVDBInstance.h>

#include <string_view>

namespace kvr::netlistdb {

namespace ask = verific_queries;

namespace {

// A walk that meets visited pairs again and again runs in circles through combinational loops. One beyond the bound
// gives up; at the bound itself the result still counts, but is not recorded.
constexpr int MAX_REVISITS = 10240;

std::string_view nameOf(const Verific::Instance &instance)
{
    const char *name = instance.Name();
    return name != nullptr ? std::string_view(name) : std::string_view();
}

/// The clock net of a register, taken in front of one buffer; null when the pin is open.
const Verific::Net *clockNetOf(const Verific::Instance &cell, const Verific::Netlist &netlist)
{
    const Verific::Port *clockPort = ask::clockPort(netlist);
    const Verific::Net *clock = clockPort != nullptr ? cell.GetNet(clockPort) : nullptr;
    const Verific::Instance *buffer = clock != nullptr ? clock->Driver() : nullptr;
    if (buffer != nullptr && buffer->View() != nullptr && ask::isBuffer(*buffer->View())) {
        const Verific::Port *input = ask::inputPort(*buffer->View());
        clock = input != nullptr ? buffer->GetNet(input) : nullptr;
    }
    return clock;
}

} // namespace

ElaboratedTrace::ElaboratedTrace(ClockAnalysis &analysis, const InstanceNet &start, const IVDBInstance *root)
    : m_analysis(analysis), m_items(analysis.m_elaborated.items), m_storage(analysis.m_storage), m_climb(m_items),
      m_root(root)
{
    m_storage.queue.clear();
    m_storage.visited.clear();
    m_storage.queue.push_back(start);
}

IClockDomain *ElaboratedTrace::run()
{
    Step step = Step::GoOn;
    while (step == Step::GoOn && !m_storage.queue.empty()) {
        step = look();
    }
    if (step == Step::GiveUp) {
        return nullptr;
    }
    if (m_revisits < MAX_REVISITS) {
        recordAnswer();
    }
    return m_answer;
}

void ElaboratedTrace::putInLine(const InstanceNet &pair)
{
    if (m_storage.visited.contains(pair)) {
        ++m_revisits;
    } else {
        m_storage.queue.push_back(pair);
    }
}

ElaboratedTrace::Step ElaboratedTrace::look()
{
    m_pair = m_storage.queue.front();
    m_storage.queue.pop_front();
    if (!m_storage.visited.insert(m_pair)) {
        return Step::GoOn;
    }
    if (m_analysis.m_instanceAnswers.find(m_pair.first, m_answer)) {
        return Step::HasAnswer;
    }
    if (m_revisits > MAX_REVISITS) {
        return Step::GiveUp;
    }
    const Verific::Net *net = m_items.find(m_pair.second);
    const Verific::Instance *driver = net != nullptr ? net->Driver() : nullptr;
    if (driver != nullptr) {
        return passDriver(*net, *driver);
    }
    climb(net);
    return Step::GoOn;
}

ElaboratedTrace::Step ElaboratedTrace::passDriver(const Verific::Net &net, const Verific::Instance &driver)
{
    const Verific::PortRef *pin = drivingPin(&net, &driver);
    if (pin == nullptr || pin->GetPort() == nullptr || pin->GetInst() == nullptr) {
        return Step::GoOn;
    }
    IVDBInstance *const item = m_analysis.m_firstChild.find(m_pair.first, nameOf(driver), m_items, m_root);
    if (item == nullptr) {
        return Step::GoOn; // an import that stopped early left the driver without item
    }
    if (m_analysis.m_instanceAnswers.find(item, m_answer)) {
        return Step::HasAnswer;
    }
    const Verific::Netlist *netlist = driver.View();
    if (netlist == nullptr) {
        return Step::GoOn;
    }
    if (ask::isRegister(*netlist)) {
        // The first register decides, also when its clock is no domain.
        m_answer = clockOfRegister(*item, driver, *netlist);
        return Step::HasAnswer;
    }
    if (ask::isGenericCell(*netlist)) {
        return passThroughGenericCell(*item, driver);
    }
    descendInto(*item, *pin);
    return Step::GoOn;
}

void ElaboratedTrace::climb(const Verific::Net *net)
{
    if (m_pair.first->getDepth() != 0) {
        m_climb.above(m_pair.first, net, [this](const InstanceNet &above) { putInLine(above); });
    }
}

IClockDomain *ElaboratedTrace::clockOfRegister(const IVDBInstance &item, const Verific::Instance &cell,
                                               const Verific::Netlist &netlist) const
{
    const InstanceNet clock(item.getOwnerInstance(), m_items.find(clockNetOf(cell, netlist)));
    return m_analysis.parsedClockDomain(HighestNet(m_items, m_root).of(clock), IDesignDatabase::SOURCE_ELABORATED);
}

ElaboratedTrace::Step ElaboratedTrace::passThroughGenericCell(IVDBInstance &item, const Verific::Instance &cell)
{
    IVDBInstance *const owner = item.getOwnerInstance();
    if (owner == nullptr) {
        return Step::HasAnswer; // none
    }
    m_passed.push_back(&item);
    Verific::MapIter inputs;
    Verific::PortRef *input = nullptr;
    FOREACH_PORTREF_OF_INST (&cell, inputs, input) {
        if (input->GetPort() == nullptr || input->GetNet() == nullptr || input->GetPort()->IsOutput()) {
            continue;
        }
        IVDBNet *const net = m_items.find(input->GetNet());
        if (net == nullptr) {
            break;
        }
        putInLine({owner, net});
    }
    return Step::GoOn;
}

void ElaboratedTrace::descendInto(IVDBInstance &item, const Verific::PortRef &pin)
{
    if (const Verific::Net *inside = ask::innerNet(*pin.GetPort())) {
        putInLine({&item, m_items.find(inside)});
    }
}

void ElaboratedTrace::recordAnswer()
{
    for (const IVDBInstance *item : m_passed) {
        // The item was found by the driver's name, and may stand for something else of that name.
        const Verific::Instance *cell = m_items.find(item);
        const Verific::Netlist *netlist = cell != nullptr ? cell->View() : nullptr;
        if (netlist != nullptr && ask::isGenericCell(*netlist)) {
            m_analysis.m_instanceAnswers.record(item, m_answer);
        }
    }
}

} // namespace kvr::netlistdb
