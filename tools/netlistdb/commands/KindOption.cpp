#include "commands/KindOption.h"

#include "base/CommaList.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace kvr::netlistdb::tool {

void addKinds(CLI::App &command, Kinds &kinds, const std::string &names)
{
    const auto take = [&kinds, names](const std::string &wanted) {
        for (const std::string &part : splitAtCommas(wanted)) {
            if (part.empty() || ("," + names + ",").find("," + part + ",") == std::string::npos) {
                throw CLI::ValidationError(fmt::format("--kind: '{}' is none of {}", part, names));
            }
            kinds.add(std::string_view(part));
        }
    };
    command.add_option_function<std::string>("--kind", take, "Show these kinds only")->type_name(names);
}

} // namespace kvr::netlistdb::tool
