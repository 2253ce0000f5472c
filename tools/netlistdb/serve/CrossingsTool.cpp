#include "design/ClockFilter.h"
#include "design/CrossingList.h"
#include "serve/JsonRows.h"
#include "serve/RowSchema.h"
#include "serve/Tool.h"

namespace kvr::netlistdb::tool {

namespace {

constexpr std::initializer_list<const char *> SUMMARY_KEYS = {"launch",  "capture", "safe",
                                                              "warning", "unsafe",  "waived"};

std::vector<std::string> classNames()
{
    std::vector<std::string> names;
    for (std::size_t kind = 0; kind < analysis::CROSSING_CLASSES; ++kind) {
        names.emplace_back(nameOf(static_cast<analysis::CrossingClass>(kind)));
    }
    return names;
}

std::vector<std::string> severityNames()
{
    std::vector<std::string> names;
    for (const analysis::Severity severity : SEVERITIES) {
        names.emplace_back(nameOf(severity));
    }
    return names;
}

CrossingChoice choiceOf(const Arguments &arguments)
{
    CrossingChoice choice;
    choice.from = arguments.text("from");
    choice.to = arguments.text("to");
    for (const std::string &name : arguments.texts("classes")) {
        choice.classes.add(*analysis::crossingClassOf(name));
    }
    for (const std::string &name : arguments.texts("severities")) {
        choice.severities.add(*severityCalled(name));
    }
    choice.waived = arguments.flag("waived");
    choice.allClasses = arguments.flag("all_classes");
    choice.bits = arguments.flag("bits");
    return choice;
}

class CrossingsTool : public Tool {
  public:
    const char *name() const override { return "crossings"; }
    const char *title() const override { return "Paths between clocks"; }
    const char *description() const override
    {
        return "Lists the paths from registers of one clock to a register of another, bits of one vector together, "
               "with the most telling class and its severity. With summary: how many there are between each two "
               "clocks, by severity.";
    }
    std::vector<Parameter> parameters() const override
    {
        using Type = Parameter::Type;
        Parameter from("from", Type::Text, "From this clock only; wildcards '*', '?', '**'");
        Parameter to("to", Type::Text, "To this clock only; wildcards '*', '?', '**'");
        Parameter classes("classes", Type::Texts, "These classes only", classNames());
        Parameter severities("severities", Type::Texts, "These severities only", severityNames());
        Parameter waived("waived", Type::Flag, "Crossings that are waived, too");
        Parameter all("all_classes", Type::Flag, "Every class that a crossing has, not only the most telling one");
        Parameter bits("bits", Type::Flag, "Each bit of a vector by itself");
        Parameter summary("summary", Type::Flag, "How many there are between each two clocks, instead of them");
        return {from, to, classes, severities, waived, all, bits, summary, formParameter()};
    }
    Json rowSchema() const override
    {
        return schemaOfRow(
            {"severity", "class",     "launch",  "capture", "from",    "to",    "pin",       "bits",
             "cells",    "stages",    "kept",    "logic",   "control", "meets", "from_cell", "several_sources",
             "waived",   "from_type", "to_cell", "to_type", "file",    "line",  "safe",      "warning",
             "unsafe"});
    }

    Question ask(const ToolCall &call) const override
    {
        ServedForm &form = call.form();
        const analysis::ClockMap &clocks = form.clocks(&call.call);
        const CrossingChoice choice = choiceOf(call.arguments);
        checkClockName(choice.from, clocks);
        checkClockName(choice.to, clocks);
        const CrossingRows &rows = form.crossings(choice.rows(), &call.call);
        Question question;
        question.head = headOf("crossings", call, form);
        const bool isSummary = call.arguments.flag("summary");
        question.find = [&rows, &clocks, choice, isSummary]() -> std::unique_ptr<RowSource> {
            auto list = std::make_unique<CrossingList>(rows, clocks, choice);
            if (isSummary) {
                return std::make_unique<JsonRows>(SUMMARY_KEYS, list->totals().summary(clocks));
            }
            return list;
        };
        return question;
    }
};

} // namespace

std::unique_ptr<Tool> makeCrossingsTool()
{
    return std::make_unique<CrossingsTool>();
}

} // namespace kvr::netlistdb::tool
