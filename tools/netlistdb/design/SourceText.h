#pragma once

#include "output/Value.h"

#include <fmt/format.h>
#include <netlistdb/IVDBLineInfo.h>

namespace kvr::netlistdb::tool {

/// File and line of @p info as values; absent when there is none.
inline Value fileOf(const IVDBLineInfo *info)
{
    return info != nullptr ? Value(std::string_view(info->getFilePath())) : Value();
}
inline Value lineOf(const IVDBLineInfo *info)
{
    return info != nullptr ? Value(std::uint64_t(info->getLineNumber())) : Value();
}

/// `file:line` for people: @p directory (which ends in a slash) is left out of files below it. Empty without a file.
inline std::string sourceText(std::string_view file, std::uint64_t line, const std::string &directory)
{
    if (file.substr(0, directory.size()) == directory) {
        file.remove_prefix(directory.size());
    }
    return file.empty() ? std::string() : fmt::format("{}:{}", file, line);
}
inline std::string sourceText(const IVDBLineInfo *info, const std::string &directory)
{
    return info != nullptr ? sourceText(info->getFilePath(), info->getLineNumber(), directory) : std::string();
}

/// The working directory with a slash at its end; empty when there is none.
std::string workingDirectory();

} // namespace kvr::netlistdb::tool
