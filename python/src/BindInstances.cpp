#include "Direct.h"
#include "Facts.h"
#include "Items.h"
#include "Turn.h"
#include "design/InstanceWalk.h"
#include "design/ItemFacts.h"

#include <netlistdb/netlistdb.h>
#include <utility>

namespace kvr::netlistdb::python {

namespace py = pybind11;

namespace {

/// Walks an instance and all below it.
struct Walk {
    Origin origin;
    tool::InstanceWalk walk;
    bool hasBegun = false;
};

py::object nextOfWalk(Walk &self)
{
    self.origin.check();
    if (std::exchange(self.hasBegun, true)) {
        self.walk.next();
    }
    IVDBInstance *const instance = self.walk.instance();
    return instance != nullptr ? py::cast(InstanceHandle{self.origin, instance}) : py::object();
}

py::str nameOf(const InstanceHandle &self)
{
    self.origin.check();
    return text(nameText(*self.instance));
}

/// An instance or module as the netlist has it.
tool::ItemFacts factsOf(const InstanceHandle &self)
{
    return inTurn([&] { return self.origin.design().factsOf(*self.instance); });
}

Items<IVDBNet> netsOf(const InstanceHandle &self)
{
    self.origin.check();
    auto nets = std::make_shared<std::vector<IVDBNet *>>();
    for (const bool fromBuses : {true, false}) {
        const std::vector<IVDBNet *> some = self.instance->getModule()->getNets(fromBuses);
        nets->insert(nets->end(), some.begin(), some.end());
    }
    return {self.origin, self.instance, std::move(nets)};
}

const char *directionOf(const IVDBPort &port)
{
    switch (port.direction()) {
    case PORT_DIR_INPUT:
        return "input";
    case PORT_DIR_OUTPUT:
        return "output";
    default:
        return "other";
    }
}

py::list portsOf(const ModuleHandle &self)
{
    self.origin.check();
    const py::object port = fromPackage("netlistdb._records", "Port");
    py::list list;
    for (const IVDBPort *each : self.module->getPorts()) {
        list.append(port(text(each->getName()), directionOf(*each), each->getWidth()));
    }
    return list;
}

void bindModules(py::module_ &module)
{
    auto type = makeHandleClass<ModuleHandle>(module, "Module", "A module: what its instances have in common.");
    type.def_property_readonly(
        "name",
        [](const ModuleHandle &self) {
            return text(inTurn([&] { return self.origin.design().nameOf(*self.module); }));
        },
        "What the user calls it, with its parameters when it was derived with any.");
    type.def_property_readonly(
        "cell_name",
        [](const ModuleHandle &self) {
            self.origin.check();
            return text(self.module->getName());
        },
        "Its name in the netlist.");
    type.def_property_readonly(
        "library",
        [](const ModuleHandle &self) {
            self.origin.check();
            return text(self.module->GetLibName());
        },
        "Name of the library that holds it.");
    type.def_property_readonly(
        "source",
        [](const ModuleHandle &self) {
            self.origin.check();
            const IVDBLineInfo *place = self.module->getLineInfo();
            return place != nullptr ? sourceOf(place->getFilePath(), place->getLineNumber()) : py::none();
        },
        "Where the source text has it, or None.");
    type.def_property_readonly(
        "is_user_declared",
        [](const ModuleHandle &self) {
            self.origin.check();
            return self.module->isUserDeclared();
        },
        "Whether it has a place in the source text.");
    type.def_property_readonly(
        "is_black_box", [](const ModuleHandle &self) { return self.origin.design().isBlackBox(*self.module); },
        "Whether its insides are no part of the design.");
    type.def_property_readonly("ports", &portsOf, "Its ports, bit by bit, in the order of the netlist.");
}

void bindWalks(py::module_ &module)
{
    auto type = makeClass<Walk>(module, "Walk", "Walks an instance and all below it, from the top down.");
    addNext<&nextOfWalk>(type);
}

void addItems(py::class_<InstanceHandle> &type)
{
    type.def_property_readonly(
        "children",
        [](const InstanceHandle &self) {
            self.origin.check();
            return itemsOf(self.origin, *self.instance, self.instance->getSubInstances());
        },
        "The instances in it, in the order of the netlist.");
    type.def_property_readonly("nets", &netsOf, "Its nets, bit by bit: those of buses, then the others.");
    type.def_property_readonly(
        "buses",
        [](const InstanceHandle &self) {
            self.origin.check();
            return itemsOf(self.origin, *self.instance, self.instance->getModule()->getAllNetBus());
        },
        "Its buses, in the order of the netlist.");
    type.def(
        "walk",
        [](const InstanceHandle &self) {
            self.origin.check();
            return Walk{self.origin, tool::InstanceWalk(*self.instance)};
        },
        "Goes through this instance and all below it, from the top down.");
    type.def(
        "__getitem__",
        [](const InstanceHandle &self, const py::str &path) {
            return findByPath(self.origin, *self.instance, bytesOf(path));
        },
        py::arg("path"), "The instance, net or bus that a path from here names, by any of its names.");
}

} // namespace

void bindInstances(py::module_ &module)
{
    bindItems<IVDBInstance>(module, "Instances", "InstanceIterator");
    bindItems<IVDBNet>(module, "Nets", "NetIterator");
    bindItems<IVDBNetBus>(module, "Buses", "BusIterator");
    bindModules(module);
    bindWalks(module);
    auto type = makeHandleClass<InstanceHandle>(module, "Instance", "One occurrence of a module in the design.");
    addName<&nameOf>(type, "Its own name; empty at the top.");
    type.def_property_readonly(
        "path",
        [](const InstanceHandle &self) {
            self.origin.check();
            return text(self.instance->getPath());
        },
        "Names from the top down, joined with '/'; empty at the top.");
    type.def_property_readonly(
        "parent",
        [](const InstanceHandle &self) -> py::object {
            self.origin.check();
            IVDBInstance *parent = self.instance->getOwnerInstance();
            return parent != nullptr ? py::cast(InstanceHandle{self.origin, parent}) : py::none();
        },
        "The instance that it is in; None at the top.");
    type.def_property_readonly(
        "depth",
        [](const InstanceHandle &self) {
            self.origin.check();
            return self.instance->getDepth();
        },
        "Number of instances above it.");
    type.def_property_readonly(
        "module",
        [](const InstanceHandle &self) {
            self.origin.check();
            return ModuleHandle{self.origin, self.instance->getModule()};
        },
        "What it is an instance of.");
    type.def_property_readonly(
        "source",
        [](const InstanceHandle &self) {
            const tool::ItemFacts facts = factsOf(self);
            return sourceOf(facts.file, facts.line);
        },
        "Where the source text has it, or None.");
    type.def_property_readonly(
        "sources", [](const InstanceHandle &self) { return texts(factsOf(self).sources); },
        "Every range of the source text that it comes from, as the netlist has it.");
    type.def_property_readonly(
        "attributes", [](const InstanceHandle &self) { return attributesOf(factsOf(self).attributes); },
        "Attributes as the netlist has them.");
    addItems(type);
}

} // namespace kvr::netlistdb::python
