#include "Bits.h"
#include "Direct.h"
#include "Facts.h"
#include "Items.h"
#include "Turn.h"
#include "design/ItemFacts.h"

#include <netlistdb/netlistdb.h>
#include <utility>

namespace kvr::netlistdb::python {

namespace py = pybind11;

namespace {

tool::ModuleNames &namesOf(const Origin &origin, const IVDBInstance &instance)
{
    return origin.design().names(*instance.getModule());
}

std::string nameOf(const NetHandle &self)
{
    self.origin.check();
    return self.net != nullptr ? std::string(nameText(*self.net)) : self.signal->bitName(self.position);
}

std::string nameOf(const BusHandle &self)
{
    self.origin.check();
    return self.bus != nullptr ? self.bus->getName() : self.signal->name;
}

const IVDBNetBase *itemOf(const NetHandle &self)
{
    self.origin.check();
    return self.net;
}

const IVDBNetBase *itemOf(const BusHandle &self)
{
    self.origin.check();
    return self.bus;
}

/// What the netlist holds of it, its aliases with their full names.
template <class Handle> tool::ItemFacts factsOf(const Handle &self)
{
    return inTurn([&] {
        const IVDBNetBase *item = itemOf(self);
        tool::ModuleNames &names = namesOf(self.origin, *self.instance);
        tool::ItemFacts facts = item != nullptr ? tool::factsOf(names, *item) : tool::factsOf(names, *self.signal);
        for (std::string &alias : facts.aliases) {
            alias = fullName(*self.instance, alias);
        }
        return facts;
    });
}

/// From left to right; bits that nothing is known of are left out.
py::list bitsOf(const BusHandle &self)
{
    self.origin.check();
    py::list list;
    if (self.bus != nullptr) {
        for (IVDBNet *net : netsOf(self)) {
            list.append(NetHandle{self.origin, self.instance, net});
        }
        return list;
    }
    for (std::size_t position = self.signal->bits.size(); position-- > 0;) {
        const tool::NamedBit &bit = self.signal->bits[position];
        if (bit.net != nullptr) {
            list.append(NetHandle{self.origin, self.instance, bit.net});
        } else if (bit.constant != '\0') {
            list.append(NetHandle{self.origin, self.instance, nullptr, self.signal, position});
        }
    }
    return list;
}

std::size_t widthOf(const BusHandle &self)
{
    self.origin.check();
    return self.bus != nullptr ? self.bus->getWidth() : self.signal->bits.size();
}

/// The name of @p self without a copy of it, where the item has one.
template <class Handle> py::str nameTextOf(const Handle &self)
{
    const IVDBNetBase *const item = itemOf(self);
    return item != nullptr ? text(nameText(*item)) : text(nameOf(self));
}

/// What nets and buses have in common.
template <class Handle> void addFacts(py::class_<Handle> &type)
{
    addName<&nameTextOf<Handle>>(type, "Its own name.");
    type.def_property_readonly(
        "path", [](const Handle &self) { return text(fullName(*self.instance, nameOf(self))); },
        "Its full name: the path of its instance, '/' and its name.");
    type.def_property_readonly(
        "instance",
        [](const Handle &self) {
            self.origin.check();
            return InstanceHandle{self.origin, self.instance};
        },
        "Where it is seen.");
    type.def_property_readonly(
        "aliases", [](const Handle &self) { return texts(factsOf(self).aliases); },
        "Its other full names, those that the user declared first.");
    type.def_property_readonly(
        "source",
        [](const Handle &self) {
            const tool::ItemFacts facts = factsOf(self);
            return sourceOf(facts.file, facts.line);
        },
        "Where the source text has it, or None.");
    type.def_property_readonly(
        "sources", [](const Handle &self) { return texts(factsOf(self).sources); },
        "Every range of the source text that it comes from, as the netlist has it.");
    type.def_property_readonly(
        "attributes", [](const Handle &self) { return attributesOf(factsOf(self).attributes); },
        "Attributes as the netlist has them.");
    type.def_property_readonly(
        "is_user_declared",
        [](const Handle &self) {
            const IVDBNetBase *item = itemOf(self);
            return item != nullptr ? item->isUserDeclared() : self.signal->declared;
        },
        "Whether the user declared it.");
    type.def_property_readonly(
        "is_protected",
        [](const Handle &self) {
            const IVDBNetBase *item = itemOf(self);
            return item != nullptr && item->isProtected();
        },
        "Whether the source marks it as protected.");
    type.def_property_readonly(
        "is_selectable",
        [](const Handle &self) {
            const IVDBNetBase *item = itemOf(self);
            return item != nullptr && item->isSelectableForDebugger();
        },
        "Whether the design database lets a debugger select it.");
}

} // namespace

void bindNets(py::module_ &module)
{
    auto net = makeHandleClass<NetHandle>(module, "Net", "One net, seen in an instance.");
    addFacts(net);
    net.def_property_readonly(
        "width",
        [](const NetHandle &self) {
            const IVDBNetBase *item = itemOf(self);
            return item != nullptr ? item->getWidth() : 1;
        },
        "Number of bits: 1, unless it stands for a whole memory.");
    net.def_property_readonly(
        "bits",
        [](const NetHandle &self) {
            self.origin.check();
            py::list list;
            list.append(self);
            return list;
        },
        "Itself alone, so that nets and buses may be taken alike.");
    net.def_property_readonly(
        "bus",
        [](const NetHandle &self) -> py::object {
            self.origin.check();
            IVDBNetBus *bus = self.net != nullptr ? self.net->getOwnerBus() : nullptr;
            return bus != nullptr ? py::cast(BusHandle{self.origin, self.instance, bus}) : py::none();
        },
        "The bus that it is a bit of, or None.");
    net.def_property_readonly(
        "constant",
        [](const NetHandle &self) -> py::object {
            self.origin.check();
            return self.net == nullptr ? py::object(py::str(std::string(1, self.signal->bits[self.position].constant)))
                                       : py::none();
        },
        "What it is tied to without a net: '0', '1', 'x' or 'z'; else None.");

    auto bus = makeHandleClass<BusHandle>(module, "Bus", "A vector of nets, seen in an instance.");
    addFacts(bus);
    bus.def_property_readonly("width", &widthOf, "Number of bits.");
    bus.def("__len__", &widthOf);
    bus.def_property_readonly("bits", &bitsOf, "Its nets, from the left end.");
    bus.def_property_readonly(
        "left",
        [](const BusHandle &self) {
            self.origin.check();
            return self.bus != nullptr ? self.bus->getLeftIndex() : self.signal->left;
        },
        "Index of the left end, as declared.");
    bus.def_property_readonly(
        "right",
        [](const BusHandle &self) {
            self.origin.check();
            return self.bus != nullptr ? self.bus->getRightIndex() : self.signal->right;
        },
        "Index of the right end, as declared.");
    bus.def(
        "__getitem__",
        [](const BusHandle &self, int index) {
            const std::string name = nameOf(self) + "[" + std::to_string(index) + "]";
            return findByPath(self.origin, *self.instance, name);
        },
        py::arg("index"), "The bit with that index, as declared.");
    bus.def("__iter__", [](const BusHandle &self) { return py::iter(bitsOf(self)); });
}

} // namespace kvr::netlistdb::python
