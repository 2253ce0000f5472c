#include "design/InfoReport.h"
#include "output/JsonRow.h"
#include "serve/RowSchema.h"
#include "serve/Tool.h"

#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

namespace {

constexpr std::initializer_list<const char *> KEYS = {"module",      "user_module", "library",      "user_declared",
                                                      "definitions", "instances",   "nets",         "buses",
                                                      "ports",       "cells",       "cells_by_type"};

/// The modules of a design.
class ModuleRows : public RowSource {
  public:
    explicit ModuleRows(const std::vector<ModuleCensus> &modules) : m_modules(modules) {}

    std::vector<Column> columns() const override
    {
        std::vector<Column> columns;
        for (const char *key : KEYS) {
            columns.push_back({key, nullptr});
        }
        return columns;
    }

    bool step(ResultWriter &writer) override
    {
        if (m_next == m_modules.size()) {
            return false;
        }
        const Json json = jsonOf(m_modules[m_next++]);
        Row row;
        for (const char *key : KEYS) {
            row.emplace_back(&json.at(key));
        }
        writer.row(row);
        return true;
    }

  private:
    const std::vector<ModuleCensus> &m_modules;
    std::size_t m_next = 0;
};

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
        question.find = [&census] { return std::make_unique<ModuleRows>(census.modules); };
        return question;
    }
};

} // namespace

std::unique_ptr<Tool> makeInfoTool()
{
    return std::make_unique<InfoTool>();
}

} // namespace kvr::netlistdb::tool
