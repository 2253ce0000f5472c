#include "page/Page.h"

#include "base/Interrupt.h"
#include "base/Progress.h"
#include "design/SourceText.h"
#include "output/OutputStream.h"
#include "page/PageBundle.h"
#include "page/PageClocks.h"
#include "page/PageDesign.h"
#include "page/PageModuleHeads.h"
#include "page/PageModules.h"
#include "page/PagePart.h"

#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

namespace {

/// What the bundle has where the data belongs.
constexpr std::string_view DATA_MARK = "<!-- data -->";

/// Names and sentences of the reasons that speak against a probe.
Json reasonSentences()
{
    Json sentences = Json::object();
    for (std::size_t reason = 0; reason < analysis::PROBE_REASONS; ++reason) {
        const auto each = static_cast<analysis::ProbeReason>(reason);
        sentences[nameOf(each)] = sentenceOf(each);
    }
    return sentences;
}

} // namespace

void writePage(ProbedDesign &probed, const PageOrigin &origin, const PageDetailsLimits &limits, OutputStream &output,
               Progress &progress, const Interrupt &interrupt)
{
    PageDesign page(probed);
    const std::string_view bundle = pageBundle();
    const std::size_t mark = bundle.find(DATA_MARK);
    output.write(bundle.substr(0, mark));

    progress.begin("writing modules");
    PagePart modules(output, "modules");
    Json heads = writeModules(page, modules);
    modules.end();
    interrupt.check();

    progress.begin("writing details");
    PagePart details(output, "details");
    Json counts = writeDetails(page, details, limits, interrupt);
    details.end();

    progress.begin("looking for crossings");
    PagePart crossings(output, "crossings");
    Json pairs = writeCrossings(page, crossings);
    crossings.end();
    interrupt.check();

    progress.begin("following clocks");
    Json head = jsonHead("html");
    head["program"] = origin.version;
    head["command"] = origin.command;
    head["name"] = page.design().name();
    head["top"] = page.design().nameOf(page.design().top());
    head["form"] = nameOf(page.design().form());
    if (probed.device() != nullptr) {
        head["postMap"] = probed.device()->name();
    }
    head["directory"] = workingDirectory();
    head["details"] = std::move(counts);
    head["clocks"] = pageClocksOf(page);
    head["crossings"] = std::move(pairs);
    head["reasons"] = reasonSentences();
    head["cellKinds"] = cellKindsOf(page);
    head["modules"] = std::move(heads);
    head["files"] = page.files();
    interrupt.check();
    PagePart last(output, "head");
    last.write(jsonText(head));
    last.end();
    output.write(bundle.substr(mark + DATA_MARK.size()));
    progress.clear();
}

} // namespace kvr::netlistdb::tool
