#include "design/NetClockRows.h"
#include "serve/RowSchema.h"
#include "serve/Tool.h"

namespace kvr::netlistdb::tool {

namespace {

class WhyTool : public Tool {
  public:
    const char *name() const override { return "why"; }
    const char *title() const override { return "Why a net has its clocks"; }
    const char *description() const override
    {
        return "Proves the clocks of a net, or of each bit of a bus: for every clock the shortest chain of nets, cells "
               "and ports from the net back to a register, and on to where the clock begins.";
    }
    std::vector<Parameter> parameters() const override
    {
        Parameter path("path", Parameter::Type::Text,
                       "Any of the full names of a net or bus, levels joined by '/'; also bus[3] and bus[7:0]");
        path.required = true;
        return {path, formParameter()};
    }
    Json rowSchema() const override
    {
        return schemaOfRow({"net", "clock", "clocks", "networks", "reached_by", "aliases", "sources", "why"});
    }

    Question ask(const ToolCall &call) const override
    {
        ServedForm &form = call.form();
        const std::string path = call.arguments.text("path");
        const std::vector<PathResolver::Bit> bits = form.paths().nets(path);
        form.clocks(&call.call);
        Question question;
        question.head = headOf("clock-of", call, form);
        question.head["path"] = path;
        question.find = [&design = form.design(), bits] {
            NetClockChoice choice;
            choice.why = true;
            return std::make_unique<NetClockRows>(design, bits, choice);
        };
        return question;
    }
};

} // namespace

std::unique_ptr<Tool> makeWhyTool()
{
    return std::make_unique<WhyTool>();
}

} // namespace kvr::netlistdb::tool
