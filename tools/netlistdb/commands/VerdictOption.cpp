#include "commands/VerdictOption.h"

#include "base/CommaList.h"

#include <CLI/CLI.hpp>
#include <string>

namespace kvr::netlistdb::tool {

CLI::Option *addVerdicts(CLI::App &command, Verdicts &verdicts)
{
    const auto take = [&verdicts](const std::string &list) {
        verdicts.clear();
        for (const std::string &name : splitAtCommas(list)) {
            const auto verdict = verdictCalled(name);
            if (!verdict) {
                throw CLI::ValidationError("--verdict: '" + name + "' is none of ok,warning,partly,no");
            }
            verdicts.add(*verdict);
        }
    };
    return command.add_option_function<std::string>("--verdict", take, "Show these verdicts only")
        ->type_name("ok,warning,partly,no");
}

} // namespace kvr::netlistdb::tool
