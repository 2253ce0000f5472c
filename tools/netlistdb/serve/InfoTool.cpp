#include "design/InfoReport.h"
#include "serve/JsonRows.h"
#include "serve/RowSchema.h"
#include "serve/Tool.h"

#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

namespace {

constexpr std::initializer_list<const char *> KEYS = {"module",      "user_module", "library",      "user_declared",
                                                      "definitions", "instances",   "nets",         "buses",
                                                      "ports",       "cells",       "cells_by_type"};

class InfoTool : public Tool {
  public:
    const char *name() const override { return "info"; }
    const char *title() const override { return "What a design holds"; }
    const char *description() const override
    {
        return "Shows what a design holds: modules, instances by depth, nets, buses, ports, clock domains, device "
               "cells; then its modules one by one, with their cells by type. Begin here.";
    }
    std::vector<Parameter> parameters() const override { return {formParameter()}; }
    Json rowSchema() const override { return schemaOfRow(KEYS); }
    const char *rows() const override { return "module_list"; }

    Question ask(const ToolCall &call) const override
    {
        ServedForm &form = call.form();
        Design &design = form.design();
        const Census &census = form.census(&call.call);
        const InfoReport report{design.nameOf(design.top()), design.form(), design.devices(), census,
                                form.clocks(&call.call).clocks().size()};
        Question question;
        question.head = headOf("info", call, form);
        question.head.update(report.overview());
        question.head["levels"] = report.levels();
        question.find = [&modules = census.modules] {
            return std::make_unique<JsonRows>(KEYS, modules.size(),
                                              [&modules](std::size_t number) { return jsonOf(modules[number]); });
        };
        return question;
    }
};

} // namespace

std::unique_ptr<Tool> makeInfoTool()
{
    return std::make_unique<InfoTool>();
}

} // namespace kvr::netlistdb::tool
