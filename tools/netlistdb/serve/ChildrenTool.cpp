#include "design/TreeWalk.h"
#include "serve/RowSchema.h"
#include "serve/Tool.h"

#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

namespace {

class ChildrenTool : public Tool {
  public:
    const char *name() const override { return "children"; }
    const char *title() const override { return "Instances in an instance"; }
    const char *description() const override
    {
        return "Lists the instances in an instance, with their modules and source positions; with depth also those "
               "further below.";
    }
    std::vector<Parameter> parameters() const override
    {
        using Type = Parameter::Type;
        Parameter path("path", Type::Text, "Full name of the instance, levels joined by '/' (default: the top)");
        Parameter depth("depth", Type::Number, "Levels below the instance");
        depth.least = 1;
        depth.fallback = 1;
        Parameter user("user_modules", Type::Flag,
                       "Leave out instances of modules without source position, with all below them");
        Parameter clocks("clocks", Type::Flag, "With the clocks that begin in each instance");
        return {path, depth, user, clocks, formParameter()};
    }
    Json rowSchema() const override
    {
        return schemaOfRow({"depth", "path", "name", "module", "user_module", "library", "user_declared", "file",
                            "line", "sources", "clocks"});
    }

    Question ask(const ToolCall &call) const override
    {
        ServedForm &form = call.form();
        IVDBInstance &start = form.paths().startOf(call.arguments.text("path"));
        TreeChoice choice;
        choice.depth = call.arguments.number("depth");
        choice.userModules = call.arguments.flag("user_modules");
        choice.clocks = call.arguments.flag("clocks");
        if (choice.clocks) {
            form.clocks(&call.call);
        }
        Question question;
        question.head = headOf("tree", call, form);
        question.head["path"] = start.getPath();
        question.find = [&design = form.design(), &start, choice] {
            auto walk = std::make_unique<TreeWalk>(design, start, choice);
            walk->pass(); // the instance itself
            return walk;
        };
        return question;
    }
};

} // namespace

std::unique_ptr<Tool> makeChildrenTool()
{
    return std::make_unique<ChildrenTool>();
}

} // namespace kvr::netlistdb::tool
