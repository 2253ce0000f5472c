#include "commands/ServedSources.h"

#include "base/Failure.h"
#include "design/Design.h"
#include "design/InputFile.h"
#include "design/NearestNames.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>

namespace kvr::netlistdb::tool {

namespace {

struct NamedFile {
    std::string name; ///< empty: none was given
    std::string file;
};

/// `NAME=FILE`, or a file. A file whose own name has an equals sign is given with its directory in front.
NamedFile namedFile(const std::string &argument)
{
    const std::size_t equals = argument.find('=');
    if (equals == std::string::npos || argument.find('/') < equals) {
        return {"", argument};
    }
    NamedFile named{argument.substr(0, equals), argument.substr(equals + 1)};
    if (named.name.empty() || named.file.empty()) {
        throw wrongUsage(fmt::format("serve: '{}' is not NAME=DESIGN", argument));
    }
    return named;
}

void check(const std::string &file)
{
    if (file == "-") {
        throw wrongUsage("serve: standard input is for messages: '-' cannot be a design");
    }
    checkReadable(file);
}

std::vector<ServedSource> namedSources(const std::vector<std::string> &arguments)
{
    std::vector<ServedSource> sources;
    for (const std::string &argument : arguments) {
        NamedFile named = namedFile(argument);
        check(named.file);
        const bool isVerilog = isVerilogName(named.file);
        const bool continues =
            isVerilog && named.name.empty() && !sources.empty() && isVerilogName(sources.back().files.front());
        if (continues) {
            sources.back().files.push_back(named.file);
            continue;
        }
        ServedSource source;
        source.name = named.name.empty() ? std::filesystem::path(named.file).stem().string() : named.name;
        source.files = {named.file};
        for (const ServedSource &other : sources) {
            if (other.name == source.name) {
                throw wrongUsage(
                    fmt::format("serve: two designs are called '{}'; NAME=DESIGN gives another name", source.name));
            }
        }
        sources.push_back(std::move(source));
    }
    return sources;
}

void addPostMap(std::vector<ServedSource> &sources, const std::string &argument)
{
    const NamedFile named = namedFile(argument);
    check(named.file);
    if (named.name.empty() && sources.size() > 1) {
        throw wrongUsage(fmt::format("serve: of which design '{}' is the post-map form? (--post-map NAME={})",
                                     named.file, named.file));
    }
    NearestNames nearest(named.name);
    for (ServedSource &source : sources) {
        nearest.offer(source.name);
        if (named.name.empty() || source.name == named.name) {
            if (!source.postMap.empty()) {
                throw wrongUsage(fmt::format("serve: two post-map forms of '{}'", source.name));
            }
            source.postMap = named.file;
            return;
        }
    }
    throw wrongUsage(fmt::format("serve: --post-map: no design '{}'{}", named.name, didYouMean(nearest.best())));
}

} // namespace

std::vector<ServedSource> servedSources(const std::vector<std::string> &arguments,
                                        const std::vector<std::string> &postMaps, const std::string &rules,
                                        CommonOptions &common)
{
    std::vector<std::string> files;
    for (const std::string &list : common.verilog.fileLists) {
        readFileList(list, files, common.verilog);
    }
    files.insert(files.end(), arguments.begin(), arguments.end());
    if (files.empty()) {
        throw refused(common.verilog.fileLists.front(), "names no source");
    }
    std::vector<ServedSource> sources = namedSources(files);
    const auto isVerilog = [](const ServedSource &source) { return isVerilogName(source.files.front()); };
    if (common.verilog.given() && !std::all_of(sources.begin(), sources.end(), isVerilog)) {
        throw wrongUsage("serve: -I, -D and -f go with Verilog sources, and these are not all");
    }
    if (!common.top.empty() && sources.size() > 1) {
        throw wrongUsage("serve: --top goes with one design");
    }
    if (common.form && !postMaps.empty()) {
        throw wrongUsage(
            "serve: --form goes with designs of one form; with --post-map, the other is the elaborated one");
    }
    for (const std::string &postMap : postMaps) {
        addPostMap(sources, postMap);
    }
    for (ServedSource &source : sources) {
        source.rules = rules;
    }
    if (!rules.empty()) {
        check(rules);
    }
    return sources;
}

} // namespace kvr::netlistdb::tool
