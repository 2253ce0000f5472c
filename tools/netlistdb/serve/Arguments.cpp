#include "serve/Arguments.h"

#include "base/Failure.h"
#include "design/NearestNames.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <map>

namespace kvr::netlistdb::tool {

namespace {

Json schemaOf(const Parameter &parameter)
{
    Json text = {{"type", "string"}};
    if (!parameter.choices.empty()) {
        text["enum"] = parameter.choices;
    }
    Json schema;
    switch (parameter.type) {
    case Parameter::Type::Text:
        schema = text;
        break;
    case Parameter::Type::Texts:
        schema = {{"type", "array"}, {"items", text}};
        break;
    case Parameter::Type::Flag:
        schema = {{"type", "boolean"}};
        break;
    case Parameter::Type::Number:
        schema = {{"type", "integer"}, {"minimum", parameter.least}};
        if (parameter.most != UINT64_MAX) {
            schema["maximum"] = parameter.most;
        }
        break;
    }
    schema["description"] = parameter.description;
    if (!parameter.fallback.is_null()) {
        schema["default"] = parameter.fallback;
    }
    return schema;
}

void checkText(const Parameter &parameter, const Json &value)
{
    if (!value.is_string()) {
        throw wrongUsage(parameter.name + ": not a text");
    }
    const std::string text = value.get<std::string>();
    if (!parameter.choices.empty() &&
        std::find(parameter.choices.begin(), parameter.choices.end(), text) == parameter.choices.end()) {
        throw wrongUsage(
            fmt::format("{}: '{}' is none of {}", parameter.name, text, fmt::join(parameter.choices, ", ")));
    }
}

void check(const Parameter &parameter, const Json &value)
{
    switch (parameter.type) {
    case Parameter::Type::Text:
        checkText(parameter, value);
        break;
    case Parameter::Type::Texts:
        if (!value.is_array()) {
            throw wrongUsage(parameter.name + ": not a list of texts");
        }
        for (const Json &each : value) {
            checkText(parameter, each);
        }
        break;
    case Parameter::Type::Flag:
        if (!value.is_boolean()) {
            throw wrongUsage(parameter.name + ": neither true nor false");
        }
        break;
    case Parameter::Type::Number:
        if (!value.is_number_unsigned() || value.get<std::uint64_t>() < parameter.least ||
            value.get<std::uint64_t>() > parameter.most) {
            const std::string range = parameter.most == UINT64_MAX
                                          ? fmt::format("{} or more", parameter.least)
                                          : fmt::format("from {} to {}", parameter.least, parameter.most);
            throw wrongUsage(fmt::format("{}: not an integer {}", parameter.name, range));
        }
        break;
    }
}

} // namespace

Json schemaOf(const std::vector<Parameter> &parameters)
{
    Json properties = Json::object();
    Json required = Json::array();
    for (const Parameter &parameter : parameters) {
        properties[parameter.name] = schemaOf(parameter);
        if (parameter.required) {
            required.push_back(parameter.name);
        }
    }
    Json schema = {{"type", "object"}, {"properties", properties}};
    if (!required.empty()) {
        schema["required"] = required;
    }
    schema["additionalProperties"] = false;
    return schema;
}

Arguments::Arguments(const Json &given, const std::vector<Parameter> &parameters)
{
    for (const auto &[name, value] : given.items()) {
        const auto isCalled = [&wanted = name](const Parameter &each) { return each.name == wanted; };
        const auto parameter = std::find_if(parameters.begin(), parameters.end(), isCalled);
        if (parameter == parameters.end()) {
            NearestNames nearest(name);
            for (const Parameter &each : parameters) {
                nearest.offer(each.name);
            }
            throw wrongUsage(fmt::format("{}: no argument of this tool{}", name, didYouMean(nearest.best())));
        }
        // Clients write null for what they leave out.
        if (!value.is_null()) {
            check(*parameter, value);
            m_values[name] = value;
        }
    }
    for (const Parameter &parameter : parameters) {
        if (!m_values.contains(parameter.name) && !parameter.fallback.is_null()) {
            m_values[parameter.name] = parameter.fallback;
        }
        if (parameter.required && !m_values.contains(parameter.name)) {
            throw wrongUsage(parameter.name + ": missing");
        }
    }
}

bool Arguments::has(const std::string &name) const
{
    return m_values.contains(name);
}

std::string Arguments::text(const std::string &name) const
{
    return has(name) ? m_values.at(name).get<std::string>() : std::string();
}

bool Arguments::flag(const std::string &name) const
{
    return has(name) && m_values.at(name).get<bool>();
}

std::uint64_t Arguments::number(const std::string &name) const
{
    return has(name) ? m_values.at(name).get<std::uint64_t>() : 0;
}

std::vector<std::string> Arguments::texts(const std::string &name) const
{
    return has(name) ? m_values.at(name).get<std::vector<std::string>>() : std::vector<std::string>();
}

std::string Arguments::canonical(const std::vector<std::string> &without) const
{
    std::map<std::string, std::string> sorted;
    for (const auto &[name, value] : m_values.items()) {
        if (std::find(without.begin(), without.end(), name) == without.end()) {
            sorted[name] = jsonText(value);
        }
    }
    return jsonText(Json(sorted));
}

} // namespace kvr::netlistdb::tool
