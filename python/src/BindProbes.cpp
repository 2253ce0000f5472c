#include "Bindings.h"
#include "Bits.h"
#include "Facts.h"
#include "ProbeRecords.h"
#include "Turn.h"

#include <netlistdb/netlistdb.h>
#include <utility>

namespace kvr::netlistdb::python {

namespace py = pybind11;

namespace {

void needProbe(const Origin &origin, const py::object &progress)
{
    if (inTurn([&] { return origin.loaded->hasProbe(); })) {
        return;
    }
    Job::run(
        [origin](Job &job) {
            job.progress.begin("matching");
            origin.loaded->probe();
        },
        progress);
}

/// A bus whose bits @p nets are all of, or null.
const IVDBNetBase *wholeOf(const std::vector<IVDBNet *> &nets)
{
    IVDBNetBus *bus = nets.empty() || nets.front() == nullptr ? nullptr : nets.front()->getOwnerBus();
    for (IVDBNet *net : nets) {
        bus = net != nullptr && net->getOwnerBus() == bus ? bus : nullptr;
    }
    return bus;
}

template <class Handle> py::object probeOf(const Handle &self)
{
    if (self.origin.isDevice) {
        throw py::value_error("what may be probed is asked of nets of the elaborated form");
    }
    needReport(self.origin, py::none());
    const analysis::SignalReport report = inTurn([&] {
        const std::vector<IVDBNet *> nets = netsOf(self);
        return self.origin.loaded->report().of(self.instance, nets, wholeOf(nets));
    });
    return probeRecord(self.origin, py::cast(self), report);
}

template <class Handle> void addProbeTo(py::module_ &module, const char *name)
{
    py::reinterpret_borrow<py::class_<Handle>>(module.attr(name))
        .def_property_readonly("probe", &probeOf<Handle>,
                               "Whether an on-chip analyser may probe it, why not, and with which clock.");
}

/// What a net is in the other form.
py::object matchOf(const NetHandle &self, const py::object &progress)
{
    self.origin.check();
    needProbe(self.origin, progress);
    analysis::ProbeMatch match = inTurn([&] {
        const analysis::CrossProbe &probe = self.origin.loaded->probe();
        if (self.net == nullptr) {
            analysis::ProbeMatch gone;
            gone.grade = analysis::ProbeGrade::Gone;
            gone.reason = analysis::GoneReason::Constant;
            return gone;
        }
        return self.origin.isDevice ? probe.findBack(self.instance, self.net) : probe.find(self.instance, self.net);
    });
    return matchRecord({self.origin.loaded, !self.origin.isDevice}, match);
}

} // namespace

void needReport(const Origin &origin, const py::object &progress)
{
    if (inTurn([&] { return origin.loaded->hasReport(); })) {
        return;
    }
    Job::run(
        [origin](Job &job) {
            job.progress.begin(origin.loaded->hasDevice() ? "matching" : "following clocks");
            origin.loaded->report();
        },
        progress);
}

void bindProbes(py::module_ &module)
{
    addProbeTo<NetHandle>(module, "Net");
    addProbeTo<BusHandle>(module, "Bus");
    module.def("match", &matchOf, py::arg("net"), py::arg("progress"), "What a net is in the other form.");
    bindProbeWalks(module);
}

} // namespace kvr::netlistdb::python
