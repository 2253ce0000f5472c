#pragma once

#include "output/Json.h"
#include "serve/Arguments.h"
#include "serve/Pages.h"
#include "serve/ServedDesign.h"

#include <memory>
#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

/// What a tool is asked, and of what.
struct ToolCall {
    ServedDesign &design;
    const Arguments &arguments;
    Call &call;

    /// The form that the argument "form" names.
    ServedForm &form() const { return design.form(arguments.text("form")); }
};

/// One tool of the server. It only reads.
class Tool {
  public:
    virtual ~Tool() = default;
    virtual const char *name() const = 0;
    virtual const char *title() const = 0;
    virtual const char *description() const = 0;
    /// The arguments besides those that all tools have: the design, and those of pages.
    virtual std::vector<Parameter> parameters() const = 0;
    /// Schema of one row.
    virtual Json rowSchema() const = 0;
    /// Name of the member that holds the rows.
    virtual const char *rows() const { return "results"; }
    /// What is asked for: how to find it, and what stands in front of it. The key is filled in by the caller.
    /// @throws Failure, CallCancelled
    virtual Question ask(const ToolCall &call) const = 0;
};

/// All tools.
std::vector<std::unique_ptr<Tool>> makeTools();

std::unique_ptr<Tool> makeInfoTool();
std::unique_ptr<Tool> makeChildrenTool();
std::unique_ptr<Tool> makeSearchTool();
std::unique_ptr<Tool> makeNetTool();
std::unique_ptr<Tool> makeClocksTool();
std::unique_ptr<Tool> makeWhyTool();
std::unique_ptr<Tool> makeCrossingsTool();
std::unique_ptr<Tool> makeProbesTool();
std::unique_ptr<Tool> makeMapTool();

/// The argument that chooses one of the forms of a design.
Parameter formParameter();
/// The first members of an answer: the format of @p command, the design and its form.
Json headOf(const char *command, const ToolCall &call, ServedForm &form);

} // namespace kvr::netlistdb::tool
