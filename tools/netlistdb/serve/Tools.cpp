#include "serve/Tool.h"

namespace kvr::netlistdb::tool {

std::vector<std::unique_ptr<Tool>> makeTools()
{
    std::vector<std::unique_ptr<Tool>> tools;
    tools.push_back(makeInfoTool());
    tools.push_back(makeChildrenTool());
    tools.push_back(makeSearchTool());
    tools.push_back(makeNetTool());
    tools.push_back(makeClocksTool());
    tools.push_back(makeWhyTool());
    tools.push_back(makeCrossingsTool());
    tools.push_back(makeProbesTool());
    tools.push_back(makeMapTool());
    return tools;
}

Parameter formParameter()
{
    return {"form",
            Parameter::Type::Text,
            "Form of the design (default: the one that there is; of both, elaborated)",
            {nameOf(Form::Elaborated), nameOf(Form::PostMap)}};
}

Json headOf(const char *command, const ToolCall &call, ServedForm &form)
{
    Design &design = form.design();
    Json head = jsonHead(command);
    head["design"] = call.design.source().name;
    head["top"] = design.nameOf(design.top());
    head["form"] = nameOf(design.form());
    return head;
}

} // namespace kvr::netlistdb::tool
