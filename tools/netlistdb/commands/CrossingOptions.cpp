#include "commands/CrossingOptions.h"

#include "base/CommaList.h"
#include "design/NearestNames.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace kvr::netlistdb::tool {

namespace {

using analysis::CrossingClass;

/// Adds an option whose values @p take accepts, one after the other; false: unknown.
template <typename Target, typename Take> void addList(CLI::App &app, const std::string &flag, Target &target,
                                                       const std::string &help, const char *what, bool hasClasses,
                                                       Take take)
{
    const auto read = [flag, &target, what, hasClasses, take](const std::string &list) {
        target.clear();
        for (const std::string &name : splitAtCommas(list)) {
            if (take(name)) {
                continue;
            }
            NearestNames nearest(name);
            for (std::size_t kind = 0; kind < (hasClasses ? analysis::CROSSING_CLASSES : 0); ++kind) {
                nearest.offer(nameOf(static_cast<CrossingClass>(kind)));
            }
            throw CLI::ValidationError(
                fmt::format("{}: '{}' is no {}{}", flag, name, what, didYouMean(nearest.best())));
        }
    };
    app.add_option_function<std::string>(flag, read, help)->type_name(hasClasses ? "CLASSES" : "safe,warning,unsafe");
}

} // namespace

void addClasses(CLI::App &app, const std::string &flag, CrossingClasses &target, const std::string &help)
{
    addList(app, flag, target, help, "class", true, [&target](const std::string &name) {
        const auto kind = analysis::crossingClassOf(name);
        if (kind) {
            target.add(*kind);
        }
        return kind.has_value();
    });
}

void addSeverities(CLI::App &app, const std::string &flag, Severities &target, const std::string &help)
{
    addList(app, flag, target, help, "severity (safe, warning, unsafe)", false, [&target](const std::string &name) {
        const auto severity = severityCalled(name);
        if (severity) {
            target.add(*severity);
        }
        return severity.has_value();
    });
}

void addFailures(CLI::App &app, const std::string &flag, CrossingFailures &target, const std::string &help)
{
    addList(app, flag, target, help, "class or severity", true, [&target](const std::string &name) {
        const auto kind = analysis::crossingClassOf(name);
        const auto severity = severityCalled(name);
        if (kind) {
            target.add(*kind);
        } else if (severity) {
            target.add(*severity);
        }
        return kind || severity;
    });
}

} // namespace kvr::netlistdb::tool
