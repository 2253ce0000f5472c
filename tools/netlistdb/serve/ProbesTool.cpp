#include "base/Failure.h"
#include "design/ProbeReasonRows.h"
#include "design/ProbeRows.h"
#include "design/ProbeWalk.h"
#include "serve/Call.h"
#include "serve/JsonRows.h"
#include "serve/RowSchema.h"
#include "serve/Tool.h"

#include <netlistdb/netlistdb.h>
#include <optional>

namespace kvr::netlistdb::tool {

namespace {

constexpr std::initializer_list<const char *> GROUP_KEYS = {"clock", "edges", "signals", "bits", "wires"};

/// Nets and buses with what there is to say about probing them.
class ListRows : public RowSource {
  public:
    ListRows(ServedDesign &served, Call &call, IVDBInstance &start, const ProbeChoice &choice)
        : m_design(served.probed().design()), m_hasDevice(served.hasBothForms()),
          m_walk(served.probed().probes(), served.report(&call), start, choice)
    {
    }
    std::vector<Column> columns() const override { return ProbeRows::columns(m_hasDevice); }
    bool step(ResultWriter &writer) override
    {
        const ProbeWalk::Step step = m_walk.step(m_found);
        if (step == ProbeWalk::Step::Found) {
            if (!m_rows) {
                m_rows.emplace(m_design, m_hasDevice, writer);
            }
            m_rows->write(*m_found.instance, *m_found.probe, m_found.report);
        }
        return step != ProbeWalk::Step::End;
    }

  private:
    Design &m_design;
    bool m_hasDevice;
    ProbeWalk m_walk;
    ReportedProbe m_found;
    std::optional<ProbeRows> m_rows;
};

/// All that is against probing one net or bus.
class ReasonRows : public RowSource {
  public:
    explicit ReasonRows(std::shared_ptr<const AskedProbe> asked) : m_asked(std::move(asked)) {}
    std::vector<Column> columns() const override { return probeReasonColumns(); }
    bool step(ResultWriter &writer) override
    {
        writeProbeReasons(m_asked->report, m_asked->names, writer);
        return false;
    }

  private:
    std::shared_ptr<const AskedProbe> m_asked;
};

class ProbesTool : public Tool {
  public:
    const char *name() const override { return "probes"; }
    const char *title() const override { return "What an on-chip analyser may probe"; }
    const char *description() const override
    {
        return "Lists the nets and vectors that the user declared: whether an on-chip analyser may probe them, how "
               "many of their bits, with which clock, and why not. With path: all that is against probing that net or "
               "bus. With groups: what one analyser core for each sampling clock needs.";
    }
    std::vector<Parameter> parameters() const override
    {
        using Type = Parameter::Type;
        Parameter path("path", Type::Text, "All that is against probing this net or bus, instead of a list");
        Parameter groups("groups", Type::Flag, "The sampling clocks with their nets and bits, instead of a list");
        Parameter from("from", Type::Text, "What is in this instance and below it only");
        Parameter kinds("kinds", Type::Texts, "These kinds only", {"net", "bus"});
        Parameter verdicts("verdicts", Type::Texts, "These verdicts only");
        for (const analysis::ProbeVerdict verdict : VERDICTS) {
            verdicts.choices.emplace_back(nameOf(verdict));
        }
        Parameter all("all", Type::Flag, "Nets and buses that no user declared, too");
        return {path, groups, from, kinds, verdicts, all};
    }
    Json rowSchema() const override
    {
        return schemaOfRow({"kind",          "path",    "width",   "bits",     "verdict",  "clock",
                            "edge",          "edges",   "reasons", "grades",   "post_map", "clocks",
                            "file",          "line",    "reason",  "effect",   "signals",  "wires",
                            "user_declared", "sources", "aliases", "sentence", "evidence", "instead"});
    }

    Question ask(const ToolCall &call) const override
    {
        ServedForm &form = call.design.probed();
        if (call.arguments.has("path")) {
            return askWhyNot(call, form);
        }
        IVDBInstance &start = form.paths().startOf(call.arguments.text("from"));
        const ProbeChoice choice = choiceOf(call.arguments);
        Question question;
        question.head = headOf("probes", call, form);
        if (call.arguments.flag("groups")) {
            question.find = [call, &form, &start, choice] {
                return std::make_unique<JsonRows>(GROUP_KEYS, groupsBelow(call, form, start, choice));
            };
        } else {
            question.find = [call, &start, choice] {
                return std::make_unique<ListRows>(call.design, call.call, start, choice);
            };
        }
        return question;
    }

  private:
    static ProbeChoice choiceOf(const Arguments &arguments)
    {
        ProbeChoice choice;
        choice.all = arguments.flag("all");
        for (const std::string &kind : arguments.texts("kinds")) {
            choice.kinds.add(std::string_view(kind));
        }
        for (const std::string &verdict : arguments.texts("verdicts")) {
            choice.verdicts.add(*verdictCalled(verdict));
        }
        choice.verdicts.finish(false);
        return choice;
    }

    static Question askWhyNot(const ToolCall &call, ServedForm &form)
    {
        if (call.arguments.has("from") || call.arguments.has("kinds") || call.arguments.has("verdicts") ||
            call.arguments.flag("all") || call.arguments.flag("groups")) {
            throw wrongUsage("path: asks about one net or bus, and goes with none of the other arguments");
        }
        const std::string path = call.arguments.text("path");
        const std::vector<PathResolver::Bit> bits = form.paths().nets(path);
        const auto asked = std::make_shared<const AskedProbe>(askProbe(call.design.report(&call.call), bits));
        Question question;
        question.head = headOf("probes-why-not", call, form);
        question.head["path"] = path;
        question.head["verdict"] = nameOf(asked->report.verdict);
        question.head["width"] = asked->report.bits.size();
        question.head["bits"] = asked->report.probeable();
        question.find = [asked] { return std::make_unique<ReasonRows>(asked); };
        return question;
    }

    static Json groupsBelow(const ToolCall &call, ServedForm &form, IVDBInstance &start, const ProbeChoice &choice)
    {
        analysis::ProbeGroups groups;
        ProbeWalk walk(form.probes(), call.design.report(&call.call), start, choice);
        ReportedProbe found;
        std::uint64_t number = 0;
        for (ProbeWalk::Step step = walk.step(found); step != ProbeWalk::Step::End; step = walk.step(found)) {
            if (step == ProbeWalk::Step::Found) {
                ++number;
                groups.add(found.report);
            }
            call.call.step(number);
        }
        return groupsOf(groups, form.design().clocks());
    }
};

} // namespace

std::unique_ptr<Tool> makeProbesTool()
{
    return std::make_unique<ProbesTool>();
}

} // namespace kvr::netlistdb::tool
