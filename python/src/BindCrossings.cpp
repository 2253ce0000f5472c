#include "Bindings.h"
#include "Facts.h"
#include "design/CrossingRows.h"

#include <optional>
#include <utility>

namespace kvr::netlistdb::python {

namespace py = pybind11;

namespace {

/// What a search for crossings finds; the rows refer to the crossings and the rules.
struct FoundCrossings {
    tool::CrossingRules rules;
    std::vector<analysis::Crossing> crossings;
    std::optional<tool::CrossingRows> rows;
};

py::object netOf(const Origin &origin, const analysis::CrossingEnd &end)
{
    return end.instance != nullptr && end.net != nullptr ? py::cast(NetHandle{origin, end.instance, end.net})
                                                         : py::none();
}

py::object recordOf(const Origin &origin, const tool::CrossingRows &rows, const tool::CrossingRow &row,
                    const py::object &record)
{
    const analysis::Crossing &crossing = *row.first;
    py::dict fields;
    fields["severity"] = nameOf(severityOf(row.kind));
    fields["kind"] = nameOf(row.kind);
    fields["launch"] = crossing.launch ? py::cast(ClockHandle{origin, *crossing.launch}) : py::none();
    fields["capture"] = ClockHandle{origin, crossing.capture};
    fields["launched"] = text(rows.from(row));
    fields["captured"] = text(rows.to(row));
    fields["launched_net"] = netOf(origin, crossing.from);
    fields["captured_net"] = netOf(origin, crossing.to);
    fields["launched_cell"] = textOrNone(crossing.from.cell);
    fields["captured_cell"] = textOrNone(crossing.to.cell);
    fields["pin"] = text(crossing.to.pin);
    fields["bits"] = row.bits;
    fields["cells"] = row.cells;
    fields["stages"] = row.stages;
    fields["is_kept"] = crossing.isKept;
    fields["has_logic"] = crossing.hasLogic;
    fields["has_several_sources"] = crossing.hasSeveralSources;
    fields["control"] = textOrNone(crossing.control);
    fields["meets"] = textOrNone(crossing.meets);
    fields["waived"] = row.waiver != nullptr ? py::object(text(row.waiver->reason())) : py::none();
    fields["source"] = sourceOf(crossing.place.file, crossing.place.line);
    return record(**fields);
}

/// The crossings, and what is to be said of the rules.
py::tuple crossingsOf(const InstanceHandle &top, const py::str &rules, bool byBit, const py::object &progress)
{
    needClocks(top.origin, progress);
    const auto found = std::make_shared<FoundCrossings>();
    Job::run(
        [origin = top.origin, found, byBit, file = bytesOf(rules)](Job &job) {
            if (!file.empty()) {
                found->rules = tool::CrossingRules(file);
            }
            const analysis::ClockMap &clocks = origin.loaded->clocks(origin.isDevice);
            job.progress.begin("looking for crossings");
            found->crossings = analysis::Crossings(clocks, found->rules.groups(clocks)).all();
            tool::CrossingRows::Options options;
            options.bits = byBit;
            found->rows.emplace(found->crossings, clocks, found->rules, options);
        },
        progress);
    const py::object record = fromPackage("netlistdb._records", "Crossing");
    py::list list;
    for (const tool::CrossingRow &row : found->rows->all()) {
        list.append(recordOf(top.origin, *found->rows, row, record));
    }
    return py::make_tuple(list, texts(found->rules.unused(found->rows->usedWaivers())));
}

} // namespace

void bindCrossings(py::module_ &module)
{
    module.def("crossings", &crossingsOf, py::arg("top"), py::arg("rules"), py::arg("by_bit"), py::arg("progress"),
               "All paths between clocks, and what is to be said of the rules.");
}

} // namespace kvr::netlistdb::python
