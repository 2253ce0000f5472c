#pragma once

// What scripts ask a million times is reached by Python without the look-ups that the binding library makes for a call.

#include "Bindings.h"

#include <exception>
#include <pybind11/pybind11.h>
#include <string>

namespace kvr::netlistdb::python {

/// The object that @p self, of a class of this module, holds.
template <class Object> Object &objectOf(PyObject *self)
{
    return *reinterpret_cast<pybind11::detail::instance *>(self)->get_value_and_holder().value_ptr<Object>();
}

/// What @p ask returns; null, with the exception set that the module raises for it, when it throws.
template <class Ask> PyObject *answerOf(Ask ask)
{
    try {
        return ask().release().ptr();
    } catch (pybind11::error_already_set &error) {
        error.restore();
    } catch (...) {
        raiseFor(std::current_exception());
    }
    return nullptr;
}

/// Makes @p type an iterator. @p Next returns a null object at the end.
template <auto Next, class Object> void addNext(pybind11::class_<Object> &type)
{
    namespace py = pybind11;
    type.def("__iter__", [](const py::object &self) { return self; });
    type.def("__next__", [](Object &self) {
        py::object next = Next(self);
        if (!next) {
            throw py::stop_iteration();
        }
        return next;
    });
    reinterpret_cast<PyTypeObject *>(type.ptr())->tp_iternext = [](PyObject *self) {
        return answerOf([self] { return Next(objectOf<Object>(self)); });
    };
}

/// Adds the property `name`.
template <auto Name, class Handle> void addName(pybind11::class_<Handle> &type, const char *docstring)
{
    static PyGetSetDef definition = {"name",
                                     [](PyObject *self, void *) {
                                         return answerOf(
                                             [self] { return pybind11::object(Name(objectOf<Handle>(self))); });
                                     },
                                     nullptr, docstring, nullptr};
    type.attr("name") = pybind11::reinterpret_steal<pybind11::object>(
        PyDescr_NewGetSet(reinterpret_cast<PyTypeObject *>(type.ptr()), &definition));
}

} // namespace kvr::netlistdb::python
