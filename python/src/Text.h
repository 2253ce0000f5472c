#pragma once

#include <pybind11/pybind11.h>
#include <string>
#include <string_view>
#include <vector>

namespace kvr::netlistdb::python {

/// A name as Python sees it. Names are bytes: those that are no UTF-8 become lone surrogates, and back (PEP 383).
inline pybind11::str text(std::string_view bytes)
{
    PyObject *const result =
        PyUnicode_DecodeUTF8(bytes.data(), static_cast<Py_ssize_t>(bytes.size()), "surrogateescape");
    if (result == nullptr) {
        throw pybind11::error_already_set();
    }
    return pybind11::reinterpret_steal<pybind11::str>(result);
}

/// The same; None for an empty one.
inline pybind11::object textOrNone(std::string_view bytes)
{
    return bytes.empty() ? pybind11::object(pybind11::none()) : text(bytes);
}

/// The bytes of @p value, which is a str.
/// @throws error_already_set for surrogates that stand for no byte.
inline std::string bytesOf(const pybind11::handle &value)
{
    const auto bytes = pybind11::reinterpret_steal<pybind11::object>(
        PyUnicode_AsEncodedString(value.ptr(), "utf-8", "surrogateescape"));
    if (!bytes) {
        throw pybind11::error_already_set();
    }
    return {PyBytes_AS_STRING(bytes.ptr()), static_cast<std::size_t>(PyBytes_GET_SIZE(bytes.ptr()))};
}

inline pybind11::list texts(const std::vector<std::string> &names)
{
    pybind11::list list;
    for (const std::string &name : names) {
        list.append(text(name));
    }
    return list;
}

inline std::vector<std::string> bytesOf(const std::vector<pybind11::str> &values)
{
    std::vector<std::string> list;
    list.reserve(values.size());
    for (const pybind11::str &value : values) {
        list.push_back(bytesOf(value));
    }
    return list;
}

} // namespace kvr::netlistdb::python
