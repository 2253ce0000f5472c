#include "Bindings.h"
#include "Facts.h"
#include "base/Failure.h"
#include "design/ClockWords.h"
#include "design/PlanFile.h"
#include "design/PlanSteps.h"
#include "output/OutputStream.h"

#include <pybind11/stl.h>
#include <utility>
#include <vector>

namespace kvr::netlistdb::python {

namespace py = pybind11;

namespace {

using analysis::PlanBit;
using analysis::PlanProbe;
using analysis::ProbePlan;

py::object planRecord(const char *name)
{
    return fromPackage("netlistdb.plan", name);
}

py::object gradeOf(const PlanBit &bit)
{
    return bit.grade ? py::object(text(nameOf(*bit.grade))) : py::none();
}

py::list clocksOf(const std::vector<analysis::PlanClock> &clocks)
{
    const py::object clock = planRecord("PlanClock");
    py::list list;
    for (const analysis::PlanClock &each : clocks) {
        list.append(clock(text(each.name), tool::edgesText(each.edges)));
    }
    return list;
}

py::object probeRecordOf(const PlanProbe &probe)
{
    const py::object bit = planRecord("PlanBit");
    py::list bits;
    for (const PlanBit &each : probe.bits) {
        bits.append(bit(text(each.name), gradeOf(each), textOrNone(nameOf(each.reason)), textOrNone(each.device),
                        each.isInverted));
    }
    return planRecord("PlanProbe")(text(probe.name), clocksOf(probe.clocks), bits);
}

py::list probesOf(const std::vector<PlanProbe> &probes)
{
    py::list list;
    for (const PlanProbe &probe : probes) {
        list.append(probeRecordOf(probe));
    }
    return list;
}

/// What became of a probe.
struct Checked {
    PlanProbe before;
    analysis::RebuiltProbe now;
    std::size_t width; ///< what its name stands for in this build; 0 when it is gone
};

py::object checkedRecord(const Checked &checked)
{
    const py::object finding = planRecord("PlanFinding");
    const py::object bit = planRecord("CheckedBit");
    py::list findings;
    for (const analysis::PlanFinding &each : findChanges(checked.before, checked.now)) {
        findings.append(finding(nameOf(each.verdict), text(each.text)));
    }
    py::list bits;
    for (std::size_t at = 0; at < checked.before.bits.size(); ++at) {
        const PlanBit &before = checked.before.bits[at];
        const PlanBit &after = checked.now.bits[at].bit;
        bits.append(bit(text(before.name), textOrNone(after.name), textOrNone(before.device), textOrNone(after.device),
                        after.isInverted, gradeOf(after), text(checked.now.bits[at].why)));
    }
    return planRecord("Checked")(text(checked.before.name), findings, clocksOf(checked.now.clocks), bits,
                                 checked.width);
}

/// Adds probes; returns those that are new, and the paths that were there before.
py::tuple addTo(const InstanceHandle &top, const std::string &file, const std::vector<py::str> &paths,
                const py::object &progress)
{
    struct Result {
        std::vector<PlanProbe> added;
        std::vector<std::string> known;
    };
    const auto result = std::make_shared<Result>();
    Job::run(
        [origin = top.origin, file, names = bytesOf(paths), result](Job &job) {
            tool::OutputStream output(file, {}, job.interrupt.temporaries());
            ProbePlan plan;
            if (output.target().exists && output.target().status.st_size > 0) {
                plan = tool::readPlan(file);
            }
            const std::size_t before = plan.probes.size();
            job.progress.begin("matching");
            tool::ProbePlanner &planner = origin.loaded->planner();
            for (const std::string &name : names) {
                planner.check(name);
            }
            result->known = addProbes(plan, planner, names);
            job.interrupt.check();
            if (plan.probes.size() > before) {
                output.write(plan.text());
                output.close();
            }
            result->added.assign(plan.probes.begin() + static_cast<std::ptrdiff_t>(before), plan.probes.end());
        },
        progress);
    return py::make_tuple(probesOf(result->added), texts(result->known));
}

/// Says what became of each probe, and with @p isWritten puts it into the plan.
py::list check(const InstanceHandle &top, const std::string &file, bool isWritten, const py::object &progress)
{
    const auto all = std::make_shared<std::vector<Checked>>();
    Job::run(
        [origin = top.origin, file, isWritten, all](Job &job) {
            ProbePlan plan = tool::readPlan(file);
            const std::string former = plan.text();
            job.progress.begin("matching");
            tool::ProbePlanner &planner = origin.loaded->planner();
            for (std::size_t at = 0; at < plan.probes.size();) {
                job.interrupt.check();
                const PlanProbe &probe = plan.probes[at];
                all->push_back({probe, planner.rebuilt(probe), planner.widthOf(probe.name)});
                at += isWritten ? bringUpToDate(plan, at, all->back().now, planner) : 1;
            }
            if (plan.text() != former) {
                tool::OutputStream output(file, {}, job.interrupt.temporaries());
                output.write(plan.text());
                output.close();
            }
        },
        progress);
    py::list list;
    for (const Checked &checked : *all) {
        list.append(checkedRecord(checked));
    }
    return list;
}

void exportTo(const std::string &file, const std::string &form, const std::string &target)
{
    using tool::PlanForm;
    if (form != "csv" && form != "json" && form != "tcl") {
        throw py::value_error("'" + form + "' is none of csv, json, tcl");
    }
    tool::TemporaryPaths temporaries;
    tool::OutputStream output(target, {file}, temporaries);
    writePlan(tool::readPlan(file),
              form == "csv"    ? PlanForm::Csv
              : form == "json" ? PlanForm::JsonDocument
                               : PlanForm::Tcl,
              output);
    output.close();
}

} // namespace

void bindPlans(py::module_ &module)
{
    module.def(
        "plan_read", [](const py::str &file) { return probesOf(tool::readPlan(bytesOf(file)).probes); },
        py::arg("file"), "The probes of a plan.");
    module.def(
        "plan_add",
        [](const InstanceHandle &top, const py::str &file, const std::vector<py::str> &paths,
           const py::object &progress) { return addTo(top, bytesOf(file), paths, progress); },
        py::arg("top"), py::arg("file"), py::arg("paths"), py::arg("progress"), "Adds nets and buses to a plan.");
    module.def(
        "plan_check",
        [](const InstanceHandle &top, const py::str &file, bool isWritten, const py::object &progress) {
            return check(top, bytesOf(file), isWritten, progress);
        },
        py::arg("top"), py::arg("file"), py::arg("write"), py::arg("progress"),
        "Says what became of each probe of a plan.");
    module.def(
        "plan_export",
        [](const py::str &file, const std::string &form, const py::str &target) {
            exportTo(bytesOf(file), form, bytesOf(target));
        },
        py::arg("file"), py::arg("form"), py::arg("target"), "Writes the probes of a plan for other tools.");
}

} // namespace kvr::netlistdb::python
