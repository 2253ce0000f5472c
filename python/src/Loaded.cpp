#include "Loaded.h"

#include "Turn.h"
#include "base/Failure.h"
#include "base/Stats.h"
#include "design/Reading.h"

#include <DataBase.h>
#include <pybind11/pybind11.h>
#include <utility>

namespace kvr::netlistdb::python {

/// In the order in which they are made; each refers to those before it.
struct Loaded::Content {
    Store store;
    std::unique_ptr<tool::Design> designs[2]; ///< the form that was asked for; the device that became of it
    bool hasClocks[2] = {false, false};
    std::unique_ptr<View> views[2];
    std::unique_ptr<const analysis::CrossProbe> probe;
    std::unique_ptr<const analysis::ProbeReport> report;
    std::unique_ptr<tool::ProbePlanner> planner;

    void add(std::size_t at, std::unique_ptr<tool::Design> design)
    {
        store.netlists().push_back(design->source());
        views[at] = std::make_unique<View>(*design);
        designs[at] = std::move(design);
    }
};

std::shared_ptr<Loaded> Loaded::load(const LoadRequest &request, Job &job)
{
    std::shared_ptr<Loaded> loaded(new Loaded);
    loaded->m_content = std::make_unique<Content>();
    Content &content = *loaded->m_content;
    tool::Stats stats;
    const tool::Reading reading = {request.form,    request.top,          request.cells, request.sourceRoot,
                                   request.verilog, request.maxInstances, job.progress,  stats,
                                   job.interrupt,   loaded->m_notes};
    if (request.postMap.empty()) {
        content.add(0, tool::loadDesign(request.files, tool::Clocks::Yes, reading, content.store.database()));
    } else {
        tool::DesignPair pair = tool::loadDesignPair(request.files, request.postMap, reading, content.store.database());
        content.add(0, std::move(pair.elaborated));
        content.add(1, std::move(pair.postMap));
    }
    job.interrupt.check();
    return loaded;
}

Loaded::~Loaded()
{
    if (m_content != nullptr) {
        freeInTurn([content = std::shared_ptr<Content>(std::move(m_content))]() mutable { content.reset(); });
    }
}

void Loaded::close()
{
    if (isClosed()) {
        return;
    }
    const Turn turn;
    for (Walker *walker : m_walkers) {
        walker->letGo();
    }
    m_walkers.clear();
    std::unique_ptr<Content> content = std::move(m_content);
    const pybind11::gil_scoped_release release;
    content.reset();
}

Loaded::Content &Loaded::content() const
{
    if (m_content == nullptr) {
        throw Closed();
    }
    return *m_content;
}

View &Loaded::view(bool isDevice) const
{
    return *content().views[isDevice ? 1 : 0];
}

bool Loaded::hasDevice() const
{
    return content().views[1] != nullptr;
}

bool Loaded::hasClocks(bool isDevice) const
{
    return content().hasClocks[isDevice ? 1 : 0];
}

const analysis::ClockMap &Loaded::clocks(bool isDevice) const
{
    const analysis::ClockMap &map = view(isDevice).design.clocks();
    content().hasClocks[isDevice ? 1 : 0] = true;
    return map;
}

bool Loaded::hasProbe() const
{
    return content().probe != nullptr;
}

bool Loaded::hasReport() const
{
    return content().report != nullptr;
}

const analysis::CrossProbe &Loaded::probe() const
{
    Content &all = content();
    if (all.views[1] == nullptr) {
        throw tool::wrongUsage(all.designs[0]->name() + ": the post-map form is not loaded");
    }
    if (all.probe == nullptr) {
        all.probe = std::make_unique<const analysis::CrossProbe>(*all.store.database());
    }
    return *all.probe;
}

tool::ProbePlanner &Loaded::planner() const
{
    Content &all = content();
    if (all.designs[0]->form() != tool::Form::Elaborated) {
        throw tool::wrongUsage(all.designs[0]->name() + ": plans are made of the elaborated form");
    }
    if (all.planner == nullptr) {
        auto planner = std::make_unique<tool::ProbePlanner>(*all.designs[0], hasDevice() ? &probe() : nullptr);
        planner->match();
        all.planner = std::move(planner);
    }
    return *all.planner;
}

const analysis::ProbeReport &Loaded::report() const
{
    Content &all = content();
    if (all.report == nullptr) {
        all.report = hasDevice() ? std::make_unique<const analysis::ProbeReport>(clocks(false), clocks(true), probe())
                                 : std::make_unique<const analysis::ProbeReport>(clocks(false));
    }
    return *all.report;
}

} // namespace kvr::netlistdb::python
