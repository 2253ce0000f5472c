#include "Bindings.h"
#include "Bits.h"
#include "Facts.h"
#include "Turn.h"
#include "design/ClockChains.h"
#include "design/ClockWords.h"
#include "design/SourceText.h"

#include <netlistdb/netlistdb.h>
#include <utility>

namespace kvr::netlistdb::python {

namespace py = pybind11;

namespace {

using analysis::ClockId;

const analysis::Clock &clockOf(const ClockHandle &self)
{
    // The map is there and does not change: the handle came from it.
    return self.origin.design().clocks().clocks()[self.clock];
}

py::list handlesOf(const Origin &origin, const std::vector<ClockId> &clocks)
{
    py::list list;
    for (const ClockId clock : clocks) {
        list.append(ClockHandle{origin, clock});
    }
    return list;
}

/// What leads to a signal, bit by bit, each once in the order in which it comes.
struct Launched {
    std::vector<ClockId> clocks;
    std::vector<ClockId> networks;
    std::uint32_t reached = 0;
};

void addClocks(const std::vector<analysis::ReachingClock> &reaching, std::vector<ClockId> &clocks)
{
    for (const analysis::ReachingClock &each : reaching) {
        if (std::find(clocks.begin(), clocks.end(), each.clock) == clocks.end()) {
            clocks.push_back(each.clock);
        }
    }
}

template <class Handle> Launched launchedOf(const Handle &self)
{
    needClocks(self.origin);
    return inTurn([&] {
        const analysis::ClockMap &map = self.origin.loaded->clocks(self.origin.isDevice);
        Launched all;
        for (const IVDBNet *net : netsOf(self)) {
            if (net == nullptr) {
                all.reached |= analysis::REACHED_BY_CONSTANT;
                continue;
            }
            const analysis::LaunchClocks launch = map.launch(self.instance, net);
            addClocks(launch.clocks, all.clocks);
            addClocks(launch.networks, all.networks);
            all.reached |= launch.reached;
        }
        return all;
    });
}

template <class Handle> analysis::CaptureClocks capturedOf(const Handle &self)
{
    needClocks(self.origin);
    return inTurn([&] {
        const analysis::ClockMap &map = self.origin.loaded->clocks(self.origin.isDevice);
        analysis::CaptureClocks all;
        for (const IVDBNet *net : netsOf(self)) {
            if (net == nullptr) {
                continue;
            }
            const analysis::CaptureClocks capture = map.capture(self.instance, net);
            all.reached |= capture.reached;
            for (const analysis::CapturingClock &each : capture.clocks) {
                const auto known =
                    std::find_if(all.clocks.begin(), all.clocks.end(),
                                 [&](const analysis::CapturingClock &other) { return other.clock == each.clock; });
                if (known == all.clocks.end()) {
                    all.clocks.push_back(each);
                } else {
                    known->roles |= each.roles;
                }
            }
        }
        return all;
    });
}

template <class Handle> void addClocksTo(py::module_ &module, const char *name)
{
    auto type = py::reinterpret_borrow<py::class_<Handle>>(module.attr(name));
    type.def_property_readonly(
        "clocks", [](const Handle &self) { return handlesOf(self.origin, launchedOf(self).clocks); },
        "The clocks whose registers reach it, of each bit the nearest first.");
    type.def_property_readonly(
        "clock",
        [](const Handle &self) -> py::object {
            const std::vector<ClockId> clocks = launchedOf(self).clocks;
            return clocks.empty() ? py::none() : py::cast(ClockHandle{self.origin, clocks.front()});
        },
        "The nearest clock whose registers reach it, or None.");
    type.def_property_readonly(
        "networks", [](const Handle &self) { return handlesOf(self.origin, launchedOf(self).networks); },
        "The clocks that reach it themselves, other than through a register.");
    type.def_property_readonly(
        "reached_by", [](const Handle &self) { return texts(tool::reachingWords(launchedOf(self).reached)); },
        "What reaches it besides clocks: 'input-port', 'constant', and so on.");
    type.def_property_readonly(
        "captures",
        [](const Handle &self) {
            const analysis::CaptureClocks captured = capturedOf(self);
            const py::object capture = fromPackage("netlistdb._records", "Capture");
            py::list list;
            for (const analysis::CapturingClock &each : captured.clocks) {
                list.append(capture(ClockHandle{self.origin, each.clock}, texts(tool::roleWords(each.roles))));
            }
            return list;
        },
        "The clocks whose registers it reaches, and how these use it.");
    type.def_property_readonly(
        "reaches", [](const Handle &self) { return texts(tool::reachedWords(capturedOf(self).reached)); },
        "What it reaches besides registers: 'output-port', 'black-box', and so on.");
}

/// The chains that prove which clocks reach a net.
py::object whyOf(const NetHandle &self)
{
    self.origin.check();
    needClocks(self.origin);
    struct Proof {
        std::string picture;
        tool::Json chains;
    };
    const auto proof = std::make_shared<Proof>();
    if (self.net == nullptr) {
        return fromPackage("netlistdb._records", "Why")("  constant\n", py::dict());
    }
    Job::run(
        [self, proof](Job & /*job*/) {
            const analysis::ClockMap &map = self.origin.loaded->clocks(self.origin.isDevice);
            const analysis::LaunchProof found = map.why(self.instance, self.net);
            proof->picture = tool::pictureOf(found, map, tool::workingDirectory());
            proof->chains = tool::jsonOf(found, map);
        },
        py::none());
    return fromPackage("netlistdb._records", "Why")(text(proof->picture), fromJson(proof->chains));
}

void addFacts(py::class_<ClockHandle> &type)
{
    type.def_property_readonly(
        "name", [](const ClockHandle &self) { return text(clockOf(self).name); }, "Full name of the net that it is.");
    type.def_property_readonly(
        "root", [](const ClockHandle &self) { return nameOf(clockOf(self).root); },
        "What it begins at: 'port', 'black-box', 'register', 'logic', 'constant' or 'undriven'.");
    type.def_property_readonly(
        "edges", [](const ClockHandle &self) { return tool::edgesText(clockOf(self).edges); },
        "The edges that registers use: 'rise', 'fall' or 'both'.");
    type.def_property_readonly(
        "registers", [](const ClockHandle &self) { return clockOf(self).registers; },
        "Number of register, memory and DSP cells that it clocks.");
    type.def_property_readonly(
        "parents", [](const ClockHandle &self) { return handlesOf(self.origin, clockOf(self).parents); },
        "The clocks that it is made from.");
    type.def_property_readonly(
        "aliases", [](const ClockHandle &self) { return texts(clockOf(self).names); }, "Its other names.");
    type.def_property_readonly(
        "net",
        [](const ClockHandle &self) -> py::object {
            const analysis::Clock &clock = clockOf(self);
            return clock.instance != nullptr && clock.net != nullptr
                       ? py::cast(NetHandle{self.origin, clock.instance, clock.net})
                       : py::none();
        },
        "The net where it begins, or None when the tree has no item for it.");
    type.def(
        "is_related",
        [](const ClockHandle &self, const ClockHandle &other) {
            if (!(self.origin == other.origin)) {
                throw py::value_error("the clocks are of different designs");
            }
            return self.origin.design().clocks().related(self.clock, other.clock);
        },
        py::arg("other"), "Whether both have an ancestor in common, or one is the other's.");
}

} // namespace

void needClocks(const Origin &origin, const py::object &progress)
{
    if (inTurn([&] { return origin.loaded->hasClocks(origin.isDevice); })) {
        return;
    }
    Job::run(
        [origin](Job &job) {
            job.progress.begin("following clocks");
            origin.loaded->clocks(origin.isDevice);
        },
        progress);
}

void bindClocks(py::module_ &module)
{
    auto type = makeHandleClass<ClockHandle>(module, "Clock", "One clock of a design.");
    addFacts(type);
    addClocksTo<NetHandle>(module, "Net");
    addClocksTo<BusHandle>(module, "Bus");
    py::reinterpret_borrow<py::class_<NetHandle>>(module.attr("Net"))
        .def("why", &whyOf, "For each clock that reaches it, the shortest chain that proves it.");
    module.def(
        "clocks",
        [](const InstanceHandle &top, const py::object &progress) {
            needClocks(top.origin, progress);
            const std::size_t count =
                inTurn([&] { return top.origin.loaded->clocks(top.origin.isDevice).clocks().size(); });
            py::list list;
            for (std::size_t clock = 0; clock < count; ++clock) {
                list.append(ClockHandle{top.origin, static_cast<ClockId>(clock)});
            }
            return list;
        },
        py::arg("top"), py::arg("progress"), "All clocks of the design.");
}

} // namespace kvr::netlistdb::python
