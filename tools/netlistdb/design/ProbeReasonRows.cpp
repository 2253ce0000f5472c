#include "design/ProbeReasonRows.h"

#include "base/Terminal.h"
#include "design/Subscript.h"

#include <fmt/format.h>
#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

namespace {

/// The bits of a finding, with the vector that they belong to.
std::string bitsOf(const analysis::ProbeFinding &finding, const std::vector<std::string> &names)
{
    std::string vectorName;
    std::vector<int> indices;
    for (const std::uint32_t bit : finding.bits) {
        std::string_view vector;
        int index = 0;
        if (!takeSubscript(names[bit], vector, index)) {
            return names[bit];
        }
        vectorName = vector;
        indices.push_back(index);
    }
    return bitsText(vectorName, indices);
}

std::string verdictText(const std::string &path, const analysis::SignalReport &report)
{
    switch (report.verdict) {
    case analysis::ProbeVerdict::Ok:
        return path + " may be probed: nothing is against it";
    case analysis::ProbeVerdict::Warning:
        return path + " may be probed, with a warning";
    case analysis::ProbeVerdict::Partly:
        return fmt::format("{}: {} of {} bits may be probed", path, report.probeable(), report.bits.size());
    case analysis::ProbeVerdict::No:
        break;
    }
    return path + " may not be probed";
}

} // namespace

AskedProbe askProbe(const analysis::ProbeReport &report, const std::vector<PathResolver::Bit> &bits)
{
    AskedProbe asked;
    std::vector<IVDBNet *> nets;
    IVDBNetBus *bus = bits.front().net != nullptr ? bits.front().net->getOwnerBus() : nullptr;
    for (const PathResolver::Bit &bit : bits) {
        nets.push_back(bit.net);
        asked.names.push_back(bit.name);
        bus = bit.net != nullptr && bit.net->getOwnerBus() == bus ? bus : nullptr;
    }
    asked.report = report.of(bits.front().instance, nets, bus);
    return asked;
}

std::vector<Column> probeReasonColumns()
{
    return {{"reason", nullptr},   {"effect", nullptr},   {"bits", nullptr},
            {"sentence", nullptr}, {"evidence", nullptr}, {"instead", nullptr}};
}

void writeProbeReasons(const analysis::SignalReport &report, const std::vector<std::string> &names,
                       ResultWriter &writer)
{
    for (const analysis::ProbeFinding &finding : report.findings) {
        const std::string bits = bitsOf(finding, names);
        writer.row({std::string_view(nameOf(finding.reason)), std::string_view(finding.bars ? "bars" : "warns"),
                    std::string_view(bits), std::string_view(sentenceOf(finding.reason)), textOrNull(finding.evidence),
                    textOrNull(finding.instead)});
    }
}

std::string probeReasonsText(const std::string &path, const analysis::SignalReport &report,
                             const std::vector<std::string> &names)
{
    std::string text = printable(verdictText(path, report)) + "\n";
    for (const analysis::ProbeFinding &finding : report.findings) {
        text += fmt::format("  {} ({}", nameOf(finding.reason), finding.bars ? "bars" : "warns");
        text += report.bits.size() > 1 ? fmt::format(", {})", printable(bitsOf(finding, names))) : ")";
        text += fmt::format(": {}\n", sentenceOf(finding.reason));
        text += finding.evidence.empty() ? "" : fmt::format("      {}\n", printable(finding.evidence));
        text += finding.instead.empty() ? "" : fmt::format("      probe instead: {}\n", printable(finding.instead));
    }
    return text;
}

} // namespace kvr::netlistdb::tool
