#pragma once

#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

/// How Verilog sources are read.
struct VerilogOptions {
    std::vector<std::string> includeDirectories;
    std::vector<std::string> defines;   ///< NAME or NAME=VALUE
    std::vector<std::string> fileLists; ///< files that name sources and hold such options
    bool given() const { return !includeDirectories.empty() || !defines.empty() || !fileLists.empty(); }
};

/// Reads the file list @p list: adds the sources that it names to @p sources, and its options to @p options.
///
/// Sources and options are separated by blanks and line ends: `-I DIR`, `+incdir+DIR`, `-D NAME=VALUE`,
/// `+define+NAME=VALUE`, and `-f LIST` for a further list. `//`, `#` and `/*` begin comments where a word could begin;
/// quotes keep blanks; `$NAME` and `${NAME}` are variables of the environment. A relative path is taken from the
/// directory of the list, or else, when nothing is there, from the working directory.
/// @throws Failure that names the list and the line.
void readFileList(const std::string &list, std::vector<std::string> &sources, VerilogOptions &options);

} // namespace kvr::netlistdb::tool
