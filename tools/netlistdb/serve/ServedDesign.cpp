#include "serve/ServedDesign.h"

#include "base/Failure.h"
#include "base/Progress.h"
#include "base/Stats.h"
#include "serve/Call.h"

#include <utility>

namespace kvr::netlistdb::tool {

void ServedDesign::load(const Reading &reading)
{
    if (hasBothForms()) {
        DesignPair pair = loadDesignPair(m_source.files, m_source.postMap, reading);
        m_first = std::make_unique<ServedForm>(std::move(pair.elaborated), m_source.rules, reading.interrupt);
        m_postMap = std::make_unique<ServedForm>(std::move(pair.postMap), m_source.rules, reading.interrupt);
    } else {
        m_first = std::make_unique<ServedForm>(loadDesign(m_source.files, Clocks::Yes, reading), m_source.rules,
                                               reading.interrupt);
    }
    reading.progress.begin("following clocks");
    reading.stats.begin("clocks");
    for (ServedForm *form : forms()) {
        form->clocks(nullptr);
        // A path of two levels has the children of the top and the names in it looked up.
        form->paths().find("/");
    }
    reading.progress.clear();
}

std::vector<std::function<void()>> ServedDesign::preparations() const
{
    std::vector<std::function<void()>> steps;
    for (ServedForm *form : forms()) {
        steps.emplace_back([form] { form->counts(nullptr); });
        steps.emplace_back([form] { form->census(nullptr); });
    }
    return steps;
}

std::vector<ServedForm *> ServedDesign::forms() const
{
    std::vector<ServedForm *> forms = {m_first.get()};
    if (m_postMap != nullptr) {
        forms.push_back(m_postMap.get());
    }
    return forms;
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
