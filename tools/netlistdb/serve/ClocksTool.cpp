#include "design/ClockRows.h"
#include "serve/RowSchema.h"
#include "serve/Tool.h"

namespace kvr::netlistdb::tool {

namespace {

class ClocksTool : public Tool {
  public:
    const char *name() const override { return "clocks"; }
    const char *title() const override { return "The clock tree"; }
    const char *description() const override
    {
        return "Lists every clock: where it begins, the edges that registers use, how many registers and nets it has, "
               "its other names, and the clocks that it is made from.";
    }
    std::vector<Parameter> parameters() const override { return {formParameter()}; }
    Json rowSchema() const override
    {
        return schemaOfRow({"clock", "root", "edges", "registers", "nets", "parents", "aliases", "instance", "file",
                            "line", "sources"});
    }

    Question ask(const ToolCall &call) const override
    {
        ServedForm &form = call.form();
        const analysis::NetCounts &counts = form.counts(&call.call);
        Question question;
        question.head = headOf("clocks", call, form);
        question.head["nets"] = counts.nets;
        question.head["nets_without_clock"] = counts.withoutClock;
        question.find = [&design = form.design(), &counts] { return std::make_unique<ClockRows>(design, counts); };
        return question;
    }
};

} // namespace

std::unique_ptr<Tool> makeClocksTool()
{
    return std::make_unique<ClocksTool>();
}

} // namespace kvr::netlistdb::tool
