#include "serve/ServedDesign.h"

#include "base/Failure.h"
#include "serve/Call.h"

#include <utility>

namespace kvr::netlistdb::tool {

void ServedDesign::load(const Reading &reading)
{
    if (!hasBothForms()) {
        m_first = std::make_unique<ServedForm>(loadDesign(m_source.files, Clocks::Yes, reading), m_source.rules,
                                               reading.interrupt);
        return;
    }
    DesignPair pair = loadDesignPair(m_source.files, m_source.postMap, reading);
    m_first = std::make_unique<ServedForm>(std::move(pair.elaborated), m_source.rules, reading.interrupt);
    m_postMap = std::make_unique<ServedForm>(std::move(pair.postMap), m_source.rules, reading.interrupt);
}

std::vector<std::function<void()>> ServedDesign::preparations()
{
    std::vector<std::function<void()>> steps;
    for (ServedForm *form : {m_first.get(), m_postMap.get()}) {
        if (form != nullptr) {
            steps.emplace_back([form] { form->clocks(nullptr); });
            // A path of two levels has the children of the top and the names in it looked up.
            steps.emplace_back([form] { form->paths().find("/"); });
            steps.emplace_back([form] { form->counts(nullptr); });
            steps.emplace_back([form] { form->census(nullptr); });
        }
    }
    if (hasBothForms()) {
        steps.emplace_back([this] { match(nullptr); });
    }
    steps.emplace_back([this] { report(nullptr); });
    for (ServedForm *form : {m_first.get(), m_postMap.get()}) {
        if (form != nullptr) {
            steps.emplace_back([form] { form->crossings(nullptr); });
        }
    }
    return steps;
}

ServedForm &ServedDesign::form(const std::string &name)
{
    if (name.empty() || name == nameOf(m_first->design().form())) {
        return *m_first;
    }
    if (m_postMap != nullptr) {
        return *m_postMap;
    }
    throw wrongUsage(m_source.name + ": only its " + nameOf(m_first->design().form()) + " form is served");
}

const analysis::CrossProbe &ServedDesign::match(Call *call)
{
    if (!hasBothForms()) {
        throw wrongUsage(m_source.name +
                         ": one form is served, and this needs both (netlistdb serve RTL --post-map NETLIST)");
    }
    if (m_match == nullptr) {
        if (call != nullptr) {
            call->begin("matching the two forms");
        }
        m_match = std::make_unique<const analysis::CrossProbe>(m_first->design().database());
    }
    return *m_match;
}

const analysis::ProbeReport &ServedDesign::report(Call *call)
{
    if (m_report == nullptr) {
        const analysis::ClockMap &clocks = m_first->clocks(call);
        if (hasBothForms()) {
            const analysis::CrossProbe &probe = match(call);
            m_report = std::make_unique<const analysis::ProbeReport>(clocks, m_postMap->clocks(call), probe);
        } else {
            m_report = std::make_unique<const analysis::ProbeReport>(clocks);
        }
    }
    return *m_report;
}

} // namespace kvr::netlistdb::tool
