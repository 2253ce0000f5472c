#pragma once

#include <CLI/CLI.hpp>
#include <map>
#include <string>

namespace kvr::netlistdb::tool {

/// Adds an option that takes one of the names in @p choices; @p names lists them for the help.
template <typename T> CLI::Option *addChoice(CLI::App &command, const std::string &flags, T &target,
                                             const std::string &help, const std::string &names,
                                             const std::map<std::string, T> &choices)
{
    return command
        .add_option_function<std::string>(
            flags,
            [&target, choices, names, flags](const std::string &name) {
                const auto found = choices.find(name);
                if (found == choices.end()) {
                    throw CLI::ValidationError(flags + ": '" + name + "' is none of " + names);
                }
                target = found->second;
            },
            help)
        ->type_name(names);
}

} // namespace kvr::netlistdb::tool
