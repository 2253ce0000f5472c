#pragma once

#include "Handles.h"

#include <exception>
#include <optional>
#include <pybind11/pybind11.h>
#include <string>

namespace kvr::netlistdb::python {

// Each adds the classes and functions of one topic to the module.

void bindDesigns(pybind11::module_ &module);
void bindInstances(pybind11::module_ &module);
void bindNets(pybind11::module_ &module);
void bindSearch(pybind11::module_ &module);
void bindClocks(pybind11::module_ &module);
void bindCrossings(pybind11::module_ &module);
void bindProbes(pybind11::module_ &module);
void bindPlans(pybind11::module_ &module);

/// Sets the Python exception that the module raises for @p fault.
void raiseFor(const std::exception_ptr &fault);

/// Builds the clock map of a form unless it is there.
void needClocks(const Origin &origin, const pybind11::object &progress = pybind11::none());

/// What @p path names below @p start: an Instance, Net or Bus, or a list of nets for a range of bits.
/// @throws NotFound
pybind11::object findByPath(const Origin &origin, const IVDBInstance &start, const std::string &path);

/// Makes a class whose objects come from this module alone: one that nothing was put into would be read before it is
/// made.
template <class Object, class... Holder>
pybind11::class_<Object, Holder...> makeClass(pybind11::module_ &module, const char *name, const char *docstring)
{
    pybind11::class_<Object, Holder...> type(module, name, docstring);
    reinterpret_cast<PyTypeObject *>(type.ptr())->tp_new = [](PyTypeObject *own, PyObject *, PyObject *) -> PyObject * {
        PyErr_Format(PyExc_TypeError, "%s objects come from a design", own->tp_name);
        return nullptr;
    };
    return type;
}

/// The same for handles, which compare and hash as what they stand for.
template <class Handle>
pybind11::class_<Handle> makeHandleClass(pybind11::module_ &module, const char *name, const char *docstring)
{
    namespace py = pybind11;
    auto type = makeClass<Handle>(module, name, docstring);
    // By reference: a pointer to the object would be null for None.
    type.def("__hash__", [](const Handle &self) { return self.hash(); });
    type.def("__eq__", [](const Handle &self, const py::object &other) {
        return py::isinstance<Handle>(other) && self == other.cast<const Handle &>();
    });
    type.def("__copy__", [](const py::object &self) { return self; });
    type.def("__deepcopy__", [](const py::object &self, const py::object &) { return self; });
    return type;
}

} // namespace kvr::netlistdb::python
