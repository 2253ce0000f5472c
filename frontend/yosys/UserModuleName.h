#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kvr::netlistdb::yosys {

/// Attribute of a netlist that was derived from a module with parameters: what the user would call it,
/// `fifo(DEPTH=16,WIDTH=8)`. The cell keeps the name that the file gives it.
constexpr const char *USER_MODULE = "netlistdb.module";

/// What the user wrote for a module that has a generated name.
struct UserModuleName {
    std::string module; ///< empty for modules that have the user's name anyway
    std::string text;   ///< with its parameters
};

/// Takes apart `$paramod\module\NAME=value…` or `$paramod$hash\module`. The second form has no parameters;
/// @p parameters, those of the module as the file lists them, stand for them.
UserModuleName userModuleName(std::string_view name,
                              const std::vector<std::pair<std::string, std::string>> &parameters);

/// True when @p userName is what the user calls a module that was derived from @p module: `fifo(DEPTH=16)` from `fifo`.
bool isMadeFrom(std::string_view userName, std::string_view module);

/// @p names in quotes, separated by commas; of a long list the first ones.
std::string quotedList(const std::vector<std::string> &names);

/// The fault that @p names were all made from module @p wanted, the top that was asked for.
std::string severalMadeFrom(const std::string &wanted, const std::vector<std::string> &names);

} // namespace kvr::netlistdb::yosys
