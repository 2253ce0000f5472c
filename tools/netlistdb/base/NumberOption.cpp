#include "base/NumberOption.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <fmt/format.h>

namespace kvr::netlistdb::tool {

CLI::Option *addNumber(CLI::App &command, const std::string &flags, std::uint64_t &target, std::uint64_t least,
                       const std::string &help)
{
    return command
        .add_option_function<std::string>(
            flags,
            [&target, flags, least](const std::string &text) {
                const char *end = text.data() + text.size();
                const auto [stop, error] = std::from_chars(text.data(), end, target);
                if (error != std::errc() || stop != end || target < least) {
                    throw CLI::ValidationError(fmt::format("{}: '{}' is no number of {} or more", flags, text, least));
                }
            },
            help)
        ->type_name("N");
}

} // namespace kvr::netlistdb::tool
