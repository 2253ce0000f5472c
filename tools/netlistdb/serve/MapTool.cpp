#include "base/Failure.h"
#include "design/MatchRows.h"
#include "design/MatchedNets.h"
#include "serve/RowSchema.h"
#include "serve/Tool.h"

#include <algorithm>
#include <netlistdb/analysis/CrossProbe.h>
#include <optional>

namespace kvr::netlistdb::tool {

namespace {

/// What nets of one form are in the other one.
class PairRows : public RowSource {
  public:
    PairRows(const analysis::CrossProbe &probe, MatchedNets nets, std::vector<std::string> grades, bool isReverse)
        : m_probe(probe), m_nets(std::move(nets)), m_grades(std::move(grades)), m_isReverse(isReverse)
    {
    }
    std::vector<Column> columns() const override { return MatchRows::columns(); }
    bool step(ResultWriter &writer) override
    {
        if (!m_rows) {
            m_rows.emplace(writer);
        }
        MatchedNet net{};
        if (!m_nets.next(net)) {
            m_rows->finish();
            return false;
        }
        analysis::ProbeMatch match =
            m_isReverse ? m_probe.findBack(net.instance, net.net) : m_probe.find(net.instance, net.net);
        if (m_grades.empty() || std::find(m_grades.begin(), m_grades.end(), nameOf(match.grade)) != m_grades.end()) {
            m_rows->add(net.name, std::move(match));
        }
        return true;
    }

  private:
    const analysis::CrossProbe &m_probe;
    MatchedNets m_nets;
    std::vector<std::string> m_grades;
    bool m_isReverse;
    std::optional<MatchRows> m_rows;
};

class MapTool : public Tool {
  public:
    const char *name() const override { return "map"; }
    const char *title() const override { return "RTL nets in the device"; }
    const char *description() const override
    {
        return "Shows what nets of the RTL are in the device, bit by bit, with grade and evidence: exact, register, "
               "structural, merged, gone (with the reason), unknown. With reverse: what nets of the device are in the "
               "RTL. Needs a design with both forms.";
    }
    std::vector<Parameter> parameters() const override
    {
        using Type = Parameter::Type;
        Parameter paths("paths", Type::Texts,
                        "Nets, buses, or instances with all that is in them and below (default: the whole design)");
        Parameter reverse("reverse", Type::Flag, "Begin at the post-map nets");
        Parameter all("all", Type::Flag, "Nets and buses that no user declared, too");
        Parameter grades("grades", Type::Texts, "These grades only");
        for (const analysis::ProbeGrade grade : GRADES) {
            grades.choices.emplace_back(analysis::nameOf(grade));
        }
        return {paths, reverse, all, grades};
    }
    Json rowSchema() const override
    {
        return schemaOfRow({"net", "grade", "reason", "match", "inverted", "also", "cell", "evidence"});
    }

    Question ask(const ToolCall &call) const override
    {
        const analysis::CrossProbe &probe = call.design.match(&call.call);
        const bool isReverse = call.arguments.flag("reverse");
        ServedForm &from = call.design.form(nameOf(isReverse ? Form::PostMap : Form::Elaborated));
        MatchedNets nets(from.design(), from.paths(), call.arguments.texts("paths"), call.arguments.flag("all"));
        Question question;
        question.head = headOf("map", call, from);
        question.head["reverse"] = isReverse;
        question.find = [&probe, nets, grades = call.arguments.texts("grades"), isReverse] {
            return std::make_unique<PairRows>(probe, nets, grades, isReverse);
        };
        return question;
    }
};

} // namespace

std::unique_ptr<Tool> makeMapTool()
{
    return std::make_unique<MapTool>();
}

} // namespace kvr::netlistdb::tool
