#include "serve/ToolBox.h"

#include "base/Failure.h"
#include "design/NearestNames.h"
#include "output/JsonRow.h"
#include "serve/Rpc.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace kvr::netlistdb::tool {

namespace {

Json outputSchemaOf(const Tool &tool)
{
    const Json text = {{"type", "string"}};
    Json properties = {
        {"format", text}, {"version", {{"type", "integer"}}}, {"design", text}, {"top", text}, {"form", text}};
    properties[tool.rows()] = {{"type", "array"}, {"items", tool.rowSchema()}};
    properties["ending"] = {{"enum", {"complete", "limit"}},
                            {"description", "limit: there is more, which the cursor next_cursor leads to"}};
    properties["next_cursor"] = text;
    return {{"type", "object"},
            {"properties", properties},
            {"required", {"format", "version", "design", "top", "form", tool.rows(), "ending"}}};
}

/// A result whose content is @p text.
std::string resultOf(const std::string &text, const std::string &members)
{
    std::string result = R"({"content":[{"type":"text","text":)";
    appendText(result, text);
    return result + "}]" + members + "}";
}

} // namespace

ToolBox::ToolBox(std::vector<ServedDesign> &designs) : m_designs(designs), m_tools(makeTools()) {}

Json ToolBox::list() const
{
    Json list = Json::array();
    for (const std::unique_ptr<Tool> &tool : m_tools) {
        list.push_back({{"name", tool->name()},
                        {"title", tool->title()},
                        {"description", tool->description()},
                        {"inputSchema", schemaOf(parametersOf(*tool))},
                        {"outputSchema", outputSchemaOf(*tool)},
                        {"annotations", {{"readOnlyHint", true}, {"idempotentHint", true}, {"openWorldHint", false}}}});
    }
    return list;
}

std::string ToolBox::instructions() const
{
    std::string text = "Answers questions about synthesized FPGA designs:";
    for (const ServedDesign &design : m_designs) {
        const ServedSource &source = design.source();
        text += fmt::format(" '{}' ({}{}{})", source.name, fmt::join(source.files, ", "),
                            source.postMap.empty() ? "" : ", in the device ", source.postMap);
    }
    text += ". Begin with info. A full name joins the names of all levels with '/'; the top has no part in it, and an "
            "instance without path is the top. A long answer comes in pages: call again with the same arguments and "
            "cursor set to next_cursor.";
    return text;
}

const Tool &ToolBox::find(const std::string &name, const Json &id) const
{
    NearestNames nearest(name);
    for (const std::unique_ptr<Tool> &tool : m_tools) {
        if (tool->name() == name) {
            return *tool;
        }
        nearest.offer(tool->name());
    }
    throw RpcFailure(RPC_INVALID_PARAMS, "Unknown tool: " + name + didYouMean(nearest.best()), id);
}

std::string ToolBox::run(const Tool &tool, const Json &arguments, Call &call, const std::string &more)
{
    try {
        const std::string page = answer(tool, arguments, call);
        return resultOf(page, ",\"structuredContent\":" + page + more);
    } catch (const Failure &fault) {
        if (fault.exitCode() != EXIT_WRONG_USAGE) {
            throw;
        }
        return resultOf(fault.what(), ",\"isError\":true" + more);
    }
}

std::vector<Parameter> ToolBox::parametersOf(const Tool &tool) const
{
    std::vector<Parameter> parameters;
    Parameter design("design", Parameter::Type::Text, "Name of the design");
    design.required = m_designs.size() > 1;
    for (const ServedDesign &each : m_designs) {
        design.choices.push_back(each.source().name);
    }
    parameters.push_back(std::move(design));
    for (const std::vector<Parameter> &more : {tool.parameters(), pageParameters()}) {
        parameters.insert(parameters.end(), more.begin(), more.end());
    }
    return parameters;
}

ServedDesign &ToolBox::designOf(const Arguments &arguments) const
{
    const std::string name = arguments.text("design");
    for (ServedDesign &each : m_designs) {
        if (each.source().name == name) {
            return each;
        }
    }
    return m_designs.front();
}

std::string ToolBox::answer(const Tool &tool, const Json &given, Call &call)
{
    const std::vector<Parameter> parameters = parametersOf(tool);
    const Arguments arguments(given, parameters);
    Question question = tool.ask({designOf(arguments), arguments, call});
    question.rows = tool.rows();
    question.key = tool.name();
    return m_pages.page(question, arguments, call);
}

} // namespace kvr::netlistdb::tool
