#pragma once

#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

/// A word of a file list.
struct FileListWord {
    std::string text;
    std::size_t line = 0;
};

/// The words of the file list @p name, which holds @p text: comments left out, quotes taken off, variables of the
/// environment put in.
/// @throws Failure for an open comment or quote, or a variable that is not set.
std::vector<FileListWord> wordsOfFileList(const std::string &name, const std::string &text);

} // namespace kvr::netlistdb::tool
