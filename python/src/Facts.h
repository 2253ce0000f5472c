#pragma once

#include "Text.h"
#include "output/Json.h"

#include <pybind11/pybind11.h>
#include <string>
#include <utility>
#include <vector>

namespace kvr::netlistdb::python {

/// A class or function of the Python part of the package.
inline pybind11::object fromPackage(const char *module, const char *name)
{
    return pybind11::module_::import(module).attr(name);
}

/// A Source, or None without a file.
inline pybind11::object sourceOf(const std::string &file, std::uint64_t line)
{
    return file.empty() ? pybind11::object(pybind11::none())
                        : fromPackage("netlistdb._records", "Source")(text(file), line);
}

inline pybind11::dict attributesOf(const std::vector<std::pair<std::string, std::string>> &attributes)
{
    pybind11::dict dict;
    for (const auto &[key, value] : attributes) {
        dict[text(key)] = text(value);
    }
    return dict;
}

/// @p json as Python has it.
pybind11::object fromJson(const tool::Json &json);

} // namespace kvr::netlistdb::python
