#include "ProbeRecords.h"

#include "Facts.h"
#include "design/ClockWords.h"
#include "design/ProbeRows.h"

#include <optional>

namespace kvr::netlistdb::python {

namespace py = pybind11;

namespace {

py::object record(const char *name)
{
    return fromPackage("netlistdb._records", name);
}

py::object clockOrNone(const Origin &origin, const std::optional<analysis::ClockId> &clock)
{
    return clock ? py::cast(ClockHandle{origin, *clock}) : py::none();
}

py::object netOrNone(const Origin &origin, const std::optional<analysis::ProbeTarget> &target)
{
    return target ? py::cast(NetHandle{origin, target->instance, target->net}) : py::none();
}

py::list findingsOf(const analysis::SignalReport &report)
{
    const py::object finding = record("Finding");
    py::list list;
    for (const analysis::ProbeFinding &each : report.findings) {
        py::list bits;
        for (const std::uint32_t bit : each.bits) {
            bits.append(bit);
        }
        list.append(finding(nameOf(each.reason), each.bars, bits, sentenceOf(each.reason), text(each.evidence),
                            each.instead.empty() ? py::object(py::none()) : text(each.instead)));
    }
    return list;
}

py::list bitsOf(const Origin &origin, const analysis::SignalReport &report)
{
    const Origin device{origin.loaded, true};
    const py::object bit = record("ProbeBit");
    py::list list;
    for (const analysis::ProbeBit &each : report.bits) {
        list.append(bit(each.mayBeProbed, clockOrNone(origin, each.clock), tool::edgesText(each.edges),
                        netOrNone(device, each.target), each.target && each.target->inverted));
    }
    return list;
}

} // namespace

py::object probeRecord(const Origin &origin, const py::object &item, const analysis::SignalReport &report)
{
    return record("Probe")(item, nameOf(report.verdict), findingsOf(report),
                           clockOrNone(origin, tool::samplingClockOf(report)), bitsOf(origin, report));
}

py::object matchRecord(const Origin &other, const analysis::ProbeMatch &match)
{
    const py::object target = record("Target");
    py::list targets;
    for (const analysis::ProbeTarget &each : match.targets) {
        targets.append(target(NetHandle{other, each.instance, each.net}, each.inverted));
    }
    const std::string reason = nameOf(match.reason);
    return record("Match")(nameOf(match.grade), reason.empty() ? py::object(py::none()) : text(reason), targets,
                           match.cell.empty() ? py::object(py::none()) : text(match.cell), text(match.evidence));
}

} // namespace kvr::netlistdb::python
