#pragma once

#include "Bindings.h"
#include "Direct.h"

#include <cstddef>
#include <memory>
#include <pybind11/pybind11.h>
#include <vector>

namespace kvr::netlistdb::python {

inline InstanceHandle handleOf(const Origin &origin, IVDBInstance * /*owner*/, IVDBInstance *instance)
{
    return {origin, instance};
}
inline NetHandle handleOf(const Origin &origin, IVDBInstance *owner, IVDBNet *net)
{
    return {origin, owner, net};
}
inline BusHandle handleOf(const Origin &origin, IVDBInstance *owner, IVDBNetBus *bus)
{
    return {origin, owner, bus};
}

/// A sequence of items of one instance, whose handles are made when they are asked for.
template <class Item> struct Items {
    Origin origin;
    IVDBInstance *owner;
    std::shared_ptr<const std::vector<Item *>> items;

    auto at(std::size_t place) const { return handleOf(origin, owner, (*items)[place]); }
};

/// Goes through a sequence.
template <class Item> struct ItemsIterator {
    Items<Item> items;
    std::size_t next = 0;
};

/// A sequence of items that the database has in a list of its own.
template <class Item> Items<Item> itemsOf(const Origin &origin, IVDBInstance &owner, const std::vector<Item *> &items)
{
    return {origin, &owner, {std::shared_ptr<const void>(), &items}};
}

/// The next handle; null at the end.
template <class Item> pybind11::object nextOf(ItemsIterator<Item> &self)
{
    self.items.origin.check();
    return self.next < self.items.items->size() ? pybind11::cast(self.items.at(self.next++)) : pybind11::object();
}

/// Adds the classes of a sequence.
template <class Item> void bindItems(pybind11::module_ &module, const char *name, const char *iteratorName)
{
    namespace py = pybind11;
    using Sequence = Items<Item>;
    using Iterator = ItemsIterator<Item>;
    auto type =
        makeClass<Sequence>(module, name, "A sequence of items, whose handles are made when they are asked for.");
    type.def("__len__", [](const Sequence &self) {
        self.origin.check();
        return self.items->size();
    });
    type.def("__iter__", [](const Sequence &self) {
        self.origin.check();
        return Iterator{self};
    });
    type.def("__getitem__", [](const Sequence &self, py::ssize_t place) {
        self.origin.check();
        const auto size = static_cast<py::ssize_t>(self.items->size());
        if (place < -size || place >= size) {
            throw py::index_error("there are " + std::to_string(size));
        }
        return self.at(static_cast<std::size_t>(place < 0 ? place + size : place));
    });
    type.def("__getitem__", [](const Sequence &self, const py::slice &slice) {
        self.origin.check();
        std::size_t start = 0;
        std::size_t stop = 0;
        std::size_t step = 0;
        std::size_t length = 0;
        if (!slice.compute(self.items->size(), &start, &stop, &step, &length)) {
            throw py::error_already_set();
        }
        py::list list;
        for (; length > 0; --length, start += step) {
            list.append(self.at(start));
        }
        return list;
    });
    auto iterator = makeClass<Iterator>(module, iteratorName, "Goes through a sequence of items.");
    addNext<&nextOf<Item>>(iterator);
    iterator.def("__length_hint__", [](const Iterator &self) {
        self.items.origin.check();
        return self.items.items->size() - self.next;
    });
}

} // namespace kvr::netlistdb::python
