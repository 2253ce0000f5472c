#include "design/PlanFile.h"

#include "base/Failure.h"
#include "design/ClockWords.h"
#include "design/InputFile.h"
#include "design/TclText.h"
#include "output/Json.h"
#include "output/OutputStream.h"
#include "output/ResultWriter.h"

#include <fmt/format.h>

namespace kvr::netlistdb::tool {

using analysis::PlanBit;
using analysis::PlanClock;
using analysis::PlanProbe;

analysis::ProbePlan readPlan(const std::string &file)
{
    try {
        return analysis::ProbePlan::parse(readText(file));
    } catch (const analysis::PlanError &fault) {
        throw refused(fmt::format("{}:{}", inputName(file), fault.line()), fault.what());
    }
}

std::string shownClocks(const std::vector<analysis::PlanClock> &clocks)
{
    std::string text;
    for (const analysis::PlanClock &clock : clocks) {
        const char *const edges = edgesText(clock.edges);
        text += fmt::format("{}{}{}{}", text.empty() ? "" : ", ", clock.name, *edges != '\0' ? " " : "", edges);
    }
    return text;
}

namespace {

Json gradeOf(const PlanBit &bit)
{
    return bit.grade ? Json(analysis::nameOf(*bit.grade)) : Json();
}

void writeJson(const analysis::ProbePlan &plan, ResultWriter &writer)
{
    for (const PlanProbe &probe : plan.probes) {
        Json clocks = Json::array();
        for (const PlanClock &clock : probe.clocks) {
            clocks.push_back({{"name", clock.name}, {"edges", jsonOrNull(edgesText(clock.edges))}});
        }
        Json bits = Json::array();
        for (const PlanBit &bit : probe.bits) {
            bits.push_back({{"net", bit.name},
                            {"device", jsonOrNull(bit.device)},
                            {"inverted", bit.isInverted},
                            {"grade", gradeOf(bit)},
                            {"reason", jsonOrNull(analysis::nameOf(bit.reason))}});
        }
        writer.row({std::string_view(probe.name), std::uint64_t{probe.bits.size()}, &clocks, &bits});
    }
}

void writeCsv(const analysis::ProbePlan &plan, ResultWriter &writer)
{
    for (const PlanProbe &probe : plan.probes) {
        const std::string clocks = shownClocks(probe.clocks);
        for (std::size_t at = 0; at < probe.bits.size(); ++at) {
            const PlanBit &bit = probe.bits[at];
            const std::string_view grade = bit.grade ? analysis::nameOf(*bit.grade) : "";
            writer.row({std::string_view(probe.name), std::uint64_t{probe.bits.size() - 1 - at},
                        std::string_view(bit.name), std::string_view(clocks), std::string_view(bit.device),
                        bit.isInverted, grade, std::string_view(analysis::nameOf(bit.reason))});
        }
    }
}

/// A script whose value is a list of dictionaries, one for each probe.
std::string tclScript(const analysis::ProbePlan &plan)
{
    std::string text = "# Probes: a list of dictionaries with the keys name, clocks, bits. A bit has net, device (the "
                       "net to be\n# sampled, empty for none), inverted, grade.\nset netlistdb_probes [list]\n";
    for (const PlanProbe &probe : plan.probes) {
        text += fmt::format("lappend netlistdb_probes [dict create name {} clocks [list", tclWord(probe.name));
        for (const PlanClock &clock : probe.clocks) {
            text +=
                fmt::format(" [dict create name {} edges {}]", tclWord(clock.name), tclWord(edgesText(clock.edges)));
        }
        text += "] bits [list";
        for (const PlanBit &bit : probe.bits) {
            text += fmt::format(" \\\n    [dict create net {} device {} inverted {} grade {}]", tclWord(bit.name),
                                tclWord(bit.device), bit.isInverted ? 1 : 0,
                                tclWord(bit.grade ? analysis::nameOf(*bit.grade) : ""));
        }
        text += "]]\n";
    }
    return text + "set netlistdb_probes\n";
}

} // namespace

void writePlan(const analysis::ProbePlan &plan, PlanForm form, OutputStream &output)
{
    if (form == PlanForm::Tcl) {
        output.write(tclScript(plan));
        return;
    }
    const bool isCsv = form == PlanForm::Csv;
    const auto writer = makeResultWriter(isCsv ? Format::Csv : Format::JsonDocument, output, false);
    ResultHead head;
    head.command = "plan-export";
    if (isCsv) {
        head.columns = {{"probe", nullptr},  {"bit", nullptr},      {"net", nullptr},   {"clocks", nullptr},
                        {"device", nullptr}, {"inverted", nullptr}, {"grade", nullptr}, {"reason", nullptr}};
    } else {
        head.columns = {{"probe", nullptr}, {"width", nullptr}, {"clocks", nullptr}, {"bits", nullptr}};
    }
    writer->begin(head);
    isCsv ? writeCsv(plan, *writer) : writeJson(plan, *writer);
    writer->end(Ending::Complete, {});
}

} // namespace kvr::netlistdb::tool
