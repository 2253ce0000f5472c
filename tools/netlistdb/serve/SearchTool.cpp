#include "design/NamePattern.h"
#include "design/SearchWalk.h"
#include "serve/RowSchema.h"
#include "serve/Tool.h"

#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

namespace {

/// A search with the pattern that it looks for.
class SearchRows : public RowSource {
  public:
    SearchRows(Design &design, const VDBSearchParam &param, std::unique_ptr<const NamePattern> pattern,
               const Kinds &kinds)
        : m_pattern(std::move(pattern)), m_walk(design, param, *m_pattern, kinds)
    {
    }
    std::vector<Column> columns() const override { return m_walk.columns(); }
    bool step(ResultWriter &writer) override { return m_walk.step(writer); }

  private:
    std::unique_ptr<const NamePattern> m_pattern;
    SearchWalk m_walk;
};

NamePattern::Kind kindOf(const std::string &mode)
{
    return mode == "regex"  ? NamePattern::Kind::Regex
           : mode == "glob" ? NamePattern::Kind::Glob
                            : NamePattern::Kind::Plain;
}

class SearchTool : public Tool {
  public:
    const char *name() const override { return "search"; }
    const char *title() const override { return "Find names"; }
    const char *description() const override
    {
        return "Finds instances, nets and buses by their full names, which join the names of all levels with '/', and "
               "by all other names that nets have. plain: the pattern lies anywhere in the name; an empty one matches "
               "everything. glob: it matches the whole name, '*' and '?' within one level, '**' across levels, "
               "brackets stand for themselves. regex: it is found anywhere in the name.";
    }
    std::vector<Parameter> parameters() const override
    {
        using Type = Parameter::Type;
        Parameter pattern("pattern", Type::Text, "What to look for");
        pattern.required = true;
        Parameter mode("mode", Type::Text, "What the pattern is", {"plain", "glob", "regex"});
        mode.fallback = "plain";
        Parameter ignoreCase("ignore_case", Type::Flag, "Upper and lower case are the same");
        Parameter kinds("kinds", Type::Texts, "These kinds only", {"instance", "net", "bus"});
        Parameter from("from", Type::Text, "Search below this instance only");
        Parameter nets("user_nets", Type::Flag, "Leave out nets and buses without source position");
        Parameter modules("user_modules", Type::Flag,
                          "Leave out instances of modules without source position, with all below them");
        return {pattern, mode, ignoreCase, kinds, from, nets, modules, formParameter()};
    }
    Json rowSchema() const override
    {
        return schemaOfRow({"kind", "width", "path", "module", "user_module", "user_declared", "file", "line",
                            "matched", "aliases", "sources", "attributes"});
    }

    Question ask(const ToolCall &call) const override
    {
        const Arguments &arguments = call.arguments;
        ServedForm &form = call.form();
        VDBSearchParam param;
        param.startItem = &form.paths().startOf(arguments.text("from"));
        param.itemTypes = ITEM_INSTANCE | ITEM_NET | ITEM_NET_BUS;
        param.userNetsOnly = arguments.flag("user_nets");
        param.userModulesOnly = arguments.flag("user_modules");
        Kinds kinds;
        for (const std::string &kind : arguments.texts("kinds")) {
            kinds.add(std::string_view(kind));
        }
        // Made once here, so that a bad expression is refused whichever page is asked for.
        const auto makePattern = [mode = kindOf(arguments.text("mode")), text = arguments.text("pattern"),
                                  ignoreCase = arguments.flag("ignore_case")] {
            return std::make_unique<const NamePattern>(mode, text, ignoreCase);
        };
        Question question;
        question.head = headOf("search", call, form);
        question.head["pattern"] = arguments.text("pattern");
        question.find = [&design = form.design(), param, kinds, makePattern] {
            return std::make_unique<SearchRows>(design, param, makePattern(), kinds);
        };
        return question;
    }
};

} // namespace

std::unique_ptr<Tool> makeSearchTool()
{
    return std::make_unique<SearchTool>();
}

} // namespace kvr::netlistdb::tool
