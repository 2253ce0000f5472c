#include "Facts.h"

namespace kvr::netlistdb::python {

namespace py = pybind11;

py::object fromJson(const tool::Json &json)
{
    switch (json.type()) {
    case tool::Json::value_t::object: {
        py::dict dict;
        for (const auto &[key, value] : json.items()) {
            dict[text(key)] = fromJson(value);
        }
        return std::move(dict);
    }
    case tool::Json::value_t::array: {
        py::list list;
        for (const tool::Json &value : json) {
            list.append(fromJson(value));
        }
        return std::move(list);
    }
    case tool::Json::value_t::string:
        return text(json.get_ref<const std::string &>());
    case tool::Json::value_t::boolean:
        return py::bool_(json.get<bool>());
    case tool::Json::value_t::number_unsigned:
        return py::int_(json.get<std::uint64_t>());
    case tool::Json::value_t::number_integer:
        return py::int_(json.get<std::int64_t>());
    case tool::Json::value_t::number_float:
        return py::float_(json.get<double>());
    default:
        return py::none();
    }
}

} // namespace kvr::netlistdb::python
