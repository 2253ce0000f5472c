#include "design/YosysProcess.h"

#include "base/Failure.h"
#include "design/ChildProcess.h"
#include "design/NearestNames.h"
#include "design/YosysMessage.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <fmt/format.h>
#include <map>
#include <set>
#include <sstream>
#include <sys/wait.h>

namespace kvr::netlistdb::tool {

namespace {

/// The place of a module name in a yosys script is free text: nothing that yosys would take for syntax may go there.
bool isSafeInScript(const std::string &name)
{
    return name.find_first_of(" \t\r\n\";#") == std::string::npos;
}

/// Options of the frontend are parted at blanks, and nothing quotes them.
void checkNoBlanks(const char *option, const std::string &value)
{
    if (value.find_first_of(" \t\r\n") != std::string::npos) {
        throw wrongUsage(fmt::format("{}: '{}' has a blank, which yosys does not take there", option, value));
    }
}

std::string frontend(const VerilogOptions &options)
{
    std::string words = "verilog -sv -icells";
    for (const std::string &directory : options.includeDirectories) {
        checkNoBlanks("-I", directory);
        words += " -I" + directory;
    }
    for (const std::string &define : options.defines) {
        checkNoBlanks("-D", define);
        words += " -D" + define;
    }
    return words;
}

/// A script that writes the netlist to descriptor 3 and, on the way, lists of modules to descriptor 4.
std::vector<std::string> commandLine(const std::vector<std::string> &sources, const VerilogOptions &options,
                                     const std::string &top)
{
    const auto list = [](const std::string &title) {
        return "tee -q -o /dev/fd/4 log =" + title + "; tee -q -o /dev/fd/4 ls; ";
    };
    // Boxes without contents are no tops: `*` leaves them out. `%M` are the modules that the selected cells are of.
    const std::string script = "select *; " + list("modules") + "select * %M; " + list("instantiated") +
                               "select -clear; hierarchy -check " + (top.empty() ? "-auto-top" : "-top " + top) + "; " +
                               list("used") + "proc; opt_clean";
    std::vector<std::string> words = {"yosys", "-q",   "-f", frontend(options), "-p", script,
                                      "-b",    "json", "-o", "/dev/fd/3"};
    for (const std::string &source : sources) {
        // A leading dash would make the file an option.
        words.push_back(source.front() == '-' ? "./" + source : source);
    }
    return words;
}

/// The name in the source of a module that yosys may have made for a set of parameters: `$paramod\name\WIDTH=2`,
/// `$paramod$<hash>\name`.
std::string sourceNameOf(const std::string &module)
{
    if (module.compare(0, 8, "$paramod") != 0) {
        return module;
    }
    const std::size_t begin = module.find('\\') + 1;
    return module.substr(begin, module.find('\\', begin) - begin);
}

/// From the title of each list in @p text to the names in it.
std::map<std::string, std::set<std::string>> listsIn(const std::string &text)
{
    std::map<std::string, std::set<std::string>> lists;
    std::set<std::string> *list = &lists[""];
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.compare(0, 1, "=") == 0) {
            list = &lists[line.substr(1)];
        } else if (line.compare(0, 2, "  ") == 0) {
            list->insert(sourceNameOf(line.substr(2)));
        }
    }
    return lists;
}

/// Fails when more than one module could be the top. A module that only some set of parameters instantiates shows in
/// what the chosen top uses.
void refuseSeveralTops(const std::vector<std::string> &sources, const std::string &text)
{
    auto lists = listsIn(text);
    std::vector<std::string> tops;
    bool several = false;
    for (const std::string &module : lists["modules"]) {
        if (lists["instantiated"].count(module) == 0) {
            several = several || lists["used"].count(module) == 0;
            tops.push_back(module);
        }
    }
    if (several && tops.size() > 1) {
        std::string names;
        for (const std::string &name : tops) {
            names += (names.empty() ? "'" : ", '") + name + "'";
        }
        throw refused(nameOfSources(sources),
                      "several modules are instantiated by no other: " + names + "; --top chooses one");
    }
}

/// Fails when the sources were read and no module in them is called @p top.
void refuseUnknownTop(const std::vector<std::string> &sources, const std::string &text, const std::string &top)
{
    const std::set<std::string> modules = listsIn(text)["modules"];
    if (!modules.empty() && modules.count(top) == 0) {
        NearestNames nearest(top);
        for (const std::string &module : modules) {
            nearest.offer(module);
        }
        throw refused(nameOfSources(sources), "has no module '" + top + "'" + didYouMean(nearest.best()));
    }
}

/// The script that makes tables of cells from models: beside the program or module in a build, under share/ when
/// installed.
std::string derivingScript()
{
    std::error_code ignored;
    std::vector<std::filesystem::path> binaries = {std::filesystem::read_symlink("/proc/self/exe", ignored)};
    // This may be part of a module of an interpreter.
    static const char here = '\0';
    if (Dl_info info{}; dladdr(&here, &info) != 0 && info.dli_fname != nullptr && *info.dli_fname == '/') {
        binaries.emplace_back(info.dli_fname);
    }
    for (const std::filesystem::path &binary : binaries) {
        for (const char *place : {"families/derive.py", "../share/netlistdb/families/derive.py"}) {
            const std::filesystem::path script = binary.parent_path() / place;
            if (std::filesystem::exists(script, ignored)) {
                return script.string();
            }
        }
    }
    return {};
}

} // namespace

std::string nameOfSources(const std::vector<std::string> &sources)
{
    switch (sources.size()) {
    case 1:
        return sources.front();
    case 2:
        return sources.front() + ", " + sources.back();
    default:
        return fmt::format("{} and {} more", sources.front(), sources.size() - 1);
    }
}

std::string elaborateWithYosys(const std::vector<std::string> &sources, const VerilogOptions &options,
                               const std::string &top, Interrupt &interrupt)
{
    if (!isSafeInScript(top)) {
        throw wrongUsage("--top: '" + top + "' is no module name that yosys takes");
    }
    ChildResult result = runChild(commandLine(sources, options, top), 2, interrupt);
    if (result.startError != 0) {
        throw refused(nameOfSources(sources),
                      result.startError == ENOENT
                          ? "Verilog is read with yosys, which is not installed (Debian package yosys)"
                          : std::string("cannot start yosys: ") + std::strerror(result.startError));
    }
    const auto &[log, json, lists] = std::tie(result.outputs[0], result.outputs[1], result.outputs[2]);
    if (!top.empty() && result.status != 0) {
        refuseUnknownTop(sources, lists, top);
    }
    if (!WIFEXITED(result.status) || WEXITSTATUS(result.status) != 0) {
        const YosysMessage fault = faultIn(log, sources);
        throw refused(fault.place.empty() ? nameOfSources(sources) : fault.place,
                      "yosys: " + (fault.text.empty() ? "stopped without saying why" : fault.text));
    }
    if (top.empty()) {
        refuseSeveralTops(sources, lists);
    }
    return std::move(result.outputs[1]);
}

void deriveCellTable(const std::string &models, const std::string &table, Interrupt &interrupt)
{
    const std::string script = derivingScript();
    if (script.empty()) {
        throw refused(models, "cell models need families/derive.py, which is not installed beside the program");
    }
    const std::string file = models.front() == '-' ? "./" + models : models;
    const ChildResult result = runChild({"python3", "-B", script, "--models", table, file}, 0, interrupt);
    if (result.startError != 0) {
        throw refused(models, result.startError == ENOENT
                                  ? "cell models are read with python3, which is not installed (Debian package python3)"
                                  : std::string("cannot start python3: ") + std::strerror(result.startError));
    }
    if (!WIFEXITED(result.status) || WEXITSTATUS(result.status) != 0) {
        const YosysMessage fault = faultIn(result.outputs.front(), {models});
        throw refused(fault.place.empty() ? models : fault.place,
                      fault.text.empty() ? "its cells cannot be derived" : fault.text);
    }
}

} // namespace kvr::netlistdb::tool
