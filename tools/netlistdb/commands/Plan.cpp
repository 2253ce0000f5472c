#include "base/Choice.h"
#include "base/Failure.h"
#include "commands/Command.h"
#include "commands/PlanAction.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <fmt/format.h>

namespace kvr::netlistdb::tool {

namespace {

enum class Action { Add, Check, Update, Export };

const std::map<std::string, Action> ACTIONS = {
    {"add", Action::Add}, {"check", Action::Check}, {"update", Action::Update}, {"export", Action::Export}};

constexpr const char *REBUILT_VERDICTS = "renamed,clock-changed,split,lost";

/// True for what is a netlist on a command line, and no path of a net.
bool isNetlist(const std::string &argument)
{
    const auto endsIn = [&](const std::string &end) {
        return argument.size() > end.size() && argument.compare(argument.size() - end.size(), end.size(), end) == 0;
    };
    std::error_code fault;
    return argument == "-" || endsIn(".json") || endsIn(".json.gz") || std::filesystem::exists(argument, fault);
}

class PlanCommand : public Command {
  public:
    const char *name() const override { return "plan"; }
    const char *summary() const override { return "Keep a list of probes, and check it against another build"; }
    const char *arguments() const override { return "ACTION PLAN [ELABORATED] [POSTMAP] [PATH...] [OPTIONS]"; }
    const char *more() const override
    {
        return "A plan is a text file for version control: nets and buses of the RTL, their clocks, and the nets of "
               "the\n"
               "device that carry them. ACTION is one of\n"
               "  add PLAN ELABORATED [POSTMAP] PATH...  add nets and buses; PLAN is made when it is not there\n"
               "  check PLAN ELABORATED [POSTMAP]        say of each probe what became of it: kept, renamed,\n"
               "                                         clock-changed, split or lost; changes nothing\n"
               "  update PLAN ELABORATED [POSTMAP]       the same, and write what is found into PLAN\n"
               "  export PLAN --to csv|json|tcl          write the probes for other tools\n"
               "A file, or a name that ends in .json, behind ELABORATED is POSTMAP. check exits with 1 unless all\n"
               "probes are kept or have become what --accept lists, update when one is lost.\n\n"
               "Examples:\n"
               "  netlistdb plan add boot.plan soc_rtl.json soc_mapped.json u_cpu/pc_q irq\n"
               "  netlistdb plan check boot.plan soc_rtl.json soc_mapped.json --accept renamed\n"
               "  netlistdb plan export boot.plan --to tcl -o boot.tcl";
    }

    void addOptions(CLI::App &app, CommonOptions &common) override
    {
        app.add_option_function<std::vector<std::string>>(
               "--accept", [this](const std::vector<std::string> &names) { takeAccepted(names); },
               "check: exit with 0 also for probes of which this is all that happened")
            ->delimiter(',')
            ->type_name(REBUILT_VERDICTS)
            ->allow_extra_args(false);
        static const std::map<std::string, std::string> FORMS = {{"csv", "csv"}, {"json", "json"}, {"tcl", "tcl"}};
        addChoice(app, "--to", m_request.form, "export: the form", "csv|json|tcl", FORMS);
        addReadingOptions(app, common);
        addOutputOptions(app, common);
        addReportOptions(app, common);
    }

    void takeArguments(std::vector<std::string> arguments, const CommonOptions & /*common*/) override
    {
        const auto usage = [this] { return fmt::format("; usage: netlistdb plan {}", this->arguments()); };
        if (arguments.empty()) {
            throw wrongUsage("no action given" + usage());
        }
        const auto action = ACTIONS.find(arguments.front());
        if (action == ACTIONS.end()) {
            throw wrongUsage(fmt::format("'{}' is none of add, check, update, export", arguments.front()));
        }
        m_action = action->second;
        const std::string own = action->first;
        if (arguments.size() < 2) {
            throw wrongUsage(own + ": no plan given" + usage());
        }
        m_request.file = arguments[1];
        arguments.erase(arguments.begin(), arguments.begin() + 2);
        if (m_action == Action::Export ? !arguments.empty() : arguments.empty()) {
            throw wrongUsage(own + (m_action == Action::Export ? ": takes no design" : ": no design given") + usage());
        }
        checkOptions(own);
        std::size_t designs = std::min<std::size_t>(arguments.size(), 2);
        if (m_action == Action::Add) {
            designs = arguments.size() > 1 && isNetlist(arguments[1]) ? 2 : 1;
            if (arguments.size() == designs) {
                throw wrongUsage("add: no net or bus given" + usage());
            }
        } else if (arguments.size() > 2) {
            throw wrongUsage(fmt::format("{}: '{}' is one argument too many{}", own, arguments[2], usage()));
        }
        const auto border = arguments.begin() + static_cast<std::ptrdiff_t>(designs);
        m_request.designs.assign(arguments.begin(), border);
        m_request.paths.assign(border, arguments.end());
    }

    std::vector<std::string> prepare(CommonOptions &common) override
    {
        const bool isWritten = m_action == Action::Add || m_action == Action::Update;
        if (isWritten && m_request.file == "-") {
            throw wrongUsage("plan: '-' cannot be a plan that is to be changed");
        }
        std::vector<std::string> inputs = m_request.designs;
        inputs.push_back(m_request.file);
        if (std::count(inputs.begin(), inputs.end(), "-") > 1) {
            throw wrongUsage("plan: '-' can be one of the files only");
        }
        if (m_request.form == "csv" || m_request.form == "json") {
            common.format = m_request.form == "csv" ? Format::Csv : Format::JsonDocument;
        }
        return inputs;
    }

    int run(Session &session) override
    {
        switch (m_action) {
        case Action::Add:
            return addToPlan(m_request, session);
        case Action::Check:
            return checkPlan(m_request, session);
        case Action::Update:
            return updatePlan(m_request, session);
        case Action::Export:
            break;
        }
        return exportPlan(m_request, session);
    }

  private:
    void takeAccepted(const std::vector<std::string> &names)
    {
        using analysis::PlanVerdict;
        m_request.accepted.assign(static_cast<std::size_t>(PlanVerdict::Lost) + 1, false);
        for (const std::string &name : names) {
            std::size_t at = 1;
            while (at < m_request.accepted.size() && name != analysis::nameOf(static_cast<PlanVerdict>(at))) {
                ++at;
            }
            if (at == m_request.accepted.size()) {
                throw CLI::ValidationError("--accept: '" + name + "' is none of " + REBUILT_VERDICTS);
            }
            m_request.accepted[at] = true;
        }
    }

    void checkOptions(const std::string &action) const
    {
        if (m_action == Action::Export && m_request.form.empty()) {
            throw wrongUsage("export: --to csv, json or tcl is missing");
        }
        if (m_action != Action::Export && !m_request.form.empty()) {
            throw wrongUsage(action + ": --to goes with export");
        }
        if (m_action != Action::Check && !m_request.accepted.empty()) {
            throw wrongUsage(action + ": --accept goes with check");
        }
    }

    Action m_action = Action::Check;
    PlanRequest m_request;
};

} // namespace

std::unique_ptr<Command> makePlanCommand()
{
    return std::make_unique<PlanCommand>();
}

} // namespace kvr::netlistdb::tool
