#include "design/InfoReport.h"

#include "output/CsvWriter.h"
#include "output/OutputStream.h"
#include "output/TableWriter.h"

#include <algorithm>
#include <fmt/format.h>

namespace kvr::netlistdb::tool {

namespace {

Json toJson(const Count &count)
{
    return {{"total", count.total}, {"user_declared", count.userDeclared}};
}

Json toJson(const Contents &contents)
{
    return {{"nets", toJson(contents.nets)}, {"buses", toJson(contents.buses)}, {"ports", contents.ports}};
}

std::string withShare(const Count &count)
{
    return fmt::format("{} ({} user-declared)", count.total, count.userDeclared);
}

/// Modules that a designer wrote or that the device offers, as opposed to the cells that yosys defines and constants.
bool isDesignUnit(const ModuleCensus &module)
{
    const bool isInternal = module.name.compare(0, 1, "$") == 0;
    return !module.constant && module.library != "Operators" && (module.library != "Primitives" || !isInternal);
}

Json toJson(const std::vector<std::pair<std::string, std::uint64_t>> &counts, const char *name)
{
    Json list = Json::array();
    for (const auto &[what, cells] : counts) {
        list.push_back({{name, what}, {"cells", cells}});
    }
    return list;
}

} // namespace

Json jsonOf(const ModuleCensus &module)
{
    Json json = {{"module", module.name},
                 {"user_module", module.userName},
                 {"library", module.library},
                 {"user_declared", module.userDeclared},
                 {"definitions", module.definitions},
                 {"instances", module.instances}};
    json.update(toJson(module.contents));
    std::uint64_t cells = 0;
    Json byType = Json::object();
    for (const auto &[type, number] : module.cells) {
        cells += number;
        byType[type] = number;
    }
    json["cells"] = cells;
    json["cells_by_type"] = byType;
    return json;
}

void InfoReport::write(Format format, OutputStream &stream, bool color) const
{
    switch (format) {
    case Format::JsonDocument:
    case Format::JsonLines:
        writeJson(stream, format == Format::JsonLines);
        break;
    case Format::Csv:
        writeCsv(stream);
        break;
    case Format::Table:
        writeTables(stream, color);
        break;
    }
}

Json InfoReport::overview() const
{
    Json document = jsonHead("info");
    document["top"] = top;
    document["form"] = nameOf(form);
    document["family"] = devices.family.empty() ? Json(nullptr) : Json(devices.family);
    document["device_cells"] = toJson(devices.kinds, "kind");
    document["unknown_cells"] = toJson(devices.unknown, "type");
    document["modules"] = toJson(census.definitions);
    document["instances"] = toJson(census.instances);
    document["nets"] = toJson(census.defined.nets);
    document["buses"] = toJson(census.defined.buses);
    document["ports"] = census.defined.ports;
    document["unfolded"] = toJson(census.unfolded);
    document["clock_domains"] = clockDomains;
    return document;
}

Json InfoReport::levels() const
{
    Json list = Json::array();
    for (const Count &count : census.levels) {
        Json level = {{"depth", list.size()}};
        level.update({{"instances", toJson(count)}});
        list.push_back(level);
    }
    return list;
}

void InfoReport::writeJson(OutputStream &stream, bool lines) const
{
    Json document = overview();
    Json depths = levels();
    Json modules = Json::array();
    for (const ModuleCensus &module : census.modules) {
        modules.push_back(jsonOf(module));
    }
    if (!lines) {
        document["levels"] = depths;
        document["module_list"] = modules;
        stream.write(jsonText(document, 2) + "\n");
        return;
    }
    stream.write(jsonText(document) + "\n");
    for (const Json *rows : {&depths, &modules}) {
        for (const Json &row : *rows) {
            stream.write(jsonText(row) + "\n");
        }
    }
}

void InfoReport::writeCsv(OutputStream &stream) const
{
    CsvWriter writer(stream);
    ResultHead head;
    head.command = "info";
    head.columns = {{"subject", nullptr}, {"name", nullptr}, {"figure", nullptr}, {"value", nullptr}};
    writer.begin(head);
    const auto row = [&writer](const char *subject, std::string_view name, const char *figure, Value value) {
        writer.row({std::string_view(subject), name, std::string_view(figure), value});
    };
    const auto contents = [&row](const char *subject, const std::string &name, const Contents &what) {
        row(subject, name, "nets", what.nets.total);
        row(subject, name, "user_nets", what.nets.userDeclared);
        row(subject, name, "buses", what.buses.total);
        row(subject, name, "user_buses", what.buses.userDeclared);
        row(subject, name, "ports", what.ports);
    };
    row("design", top, "form", std::string_view(nameOf(form)));
    row("design", top, "modules", census.definitions.total);
    row("design", top, "user_modules", census.definitions.userDeclared);
    row("design", top, "instances", census.instances.total);
    row("design", top, "user_instances", census.instances.userDeclared);
    row("design", top, "clock_domains", clockDomains);
    contents("design", top, census.defined);
    contents("unfolded", top, census.unfolded);
    for (std::size_t depth = 0; depth < census.levels.size(); ++depth) {
        row("depth", fmt::to_string(depth), "instances", census.levels[depth].total);
        row("depth", fmt::to_string(depth), "user_instances", census.levels[depth].userDeclared);
    }
    for (const ModuleCensus &module : census.modules) {
        row("module", module.name, "library", std::string_view(module.library));
        row("module", module.name, "user_declared", module.userDeclared);
        row("module", module.name, "definitions", module.definitions);
        row("module", module.name, "instances", module.instances);
        contents("module", module.name, module.contents);
        for (const auto &[type, number] : module.cells) {
            const std::string figure = "cells " + type;
            row("module", module.name, figure.c_str(), number);
        }
    }
}

void InfoReport::writeTables(OutputStream &stream, bool color) const
{
    const auto line = [&stream](const char *what, const std::string &value) {
        stream.write(fmt::format("{:<15}{}\n", what, value));
    };
    line("Top", top);
    line("Form", nameOf(form));
    if (!devices.family.empty()) {
        line("Family", devices.family);
    }
    line("Modules", withShare(census.definitions));
    line("Nets", withShare(census.defined.nets));
    line("Buses", withShare(census.defined.buses));
    line("Ports", fmt::to_string(census.defined.ports));
    line("Instances", withShare(census.instances));
    for (std::size_t depth = 0; depth < census.levels.size(); ++depth) {
        line(fmt::format("  depth {}", depth).c_str(), withShare(census.levels[depth]));
    }
    line("Unfolded nets", withShare(census.unfolded.nets));
    line("Clock domains", fmt::to_string(clockDomains));

    ResultHead head;
    head.command = "info";
    head.columns = {{nullptr, "INSTANCES", Look::Plain, true}, {nullptr, "CELLS", Look::Plain, true},
                    {nullptr, "NETS", Look::Plain, true},      {nullptr, "BUSES", Look::Plain, true},
                    {nullptr, "PORTS", Look::Plain, true},     {nullptr, "MODULE", Look::Name}};
    TableWriter modules(stream, color);
    stream.write("\n");
    modules.begin(head);
    for (const ModuleCensus &module : census.modules) {
        std::uint64_t cells = 0;
        for (const auto &type : module.cells) {
            cells += type.second;
        }
        if (isDesignUnit(module)) {
            modules.row({module.instances, cells, module.contents.nets.total, module.contents.buses.total,
                         module.contents.ports, std::string_view(module.userName)});
        }
    }
    modules.end(Ending::Complete, {});

    head.columns = {{nullptr, "INSTANCES", Look::Plain, true}, {nullptr, "OPERATOR OR PRIMITIVE", Look::Name}};
    if (std::all_of(census.modules.begin(), census.modules.end(), isDesignUnit)) {
        return;
    }
    TableWriter operators(stream, color);
    stream.write("\n");
    operators.begin(head);
    for (const ModuleCensus &module : census.modules) {
        if (!isDesignUnit(module)) {
            operators.row({module.instances, std::string_view(module.name)});
        }
    }
    operators.end(Ending::Complete, {});
}

} // namespace kvr::netlistdb::tool
