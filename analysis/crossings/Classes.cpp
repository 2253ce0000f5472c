#include <netlistdb/analysis/Crossings.h>

namespace kvr::netlistdb::analysis {

namespace {

struct Row {
    const char *name;
    Severity severity;
};

/// In the order of CrossingClass.
constexpr std::array<Row, CROSSING_CLASSES> ROWS{{
    {"synchronized-reset", Severity::Safe},
    {"synchronized-reset-unkept", Severity::Warning},
    {"memory", Severity::Warning},
    {"enable-controlled", Severity::Warning},
    {"holding-multiplexer", Severity::Warning},
    {"multiplexer-controlled", Severity::Warning},
    {"related-clocks", Severity::Warning},
    {"several-clocks", Severity::Unsafe},
    {"logic-before-synchronizer", Severity::Unsafe},
    {"fan-out", Severity::Unsafe},
    {"gray-bus", Severity::Safe},
    {"gray-bus-unkept", Severity::Warning},
    {"synchronized-bus", Severity::Warning},
    {"synchronized-bus-unkept", Severity::Warning},
    {"reconvergence", Severity::Warning},
    {"synchronized-bit", Severity::Safe},
    {"synchronized-bit-unkept", Severity::Warning},
    {"no-flip-flop", Severity::Unsafe},
    {"unsynchronized-reset", Severity::Unsafe},
    {"unsynchronized-bus", Severity::Unsafe},
    {"unsynchronized-bit", Severity::Unsafe},
}};

const Row &rowOf(CrossingClass kind)
{
    return ROWS[static_cast<std::size_t>(kind)];
}

} // namespace

const char *nameOf(CrossingClass kind)
{
    return rowOf(kind).name;
}

const char *nameOf(Severity severity)
{
    switch (severity) {
    case Severity::Safe:
        return "safe";
    case Severity::Warning:
        return "warning";
    default:
        return "unsafe";
    }
}

std::optional<CrossingClass> crossingClassOf(std::string_view name)
{
    for (std::size_t kind = 0; kind < ROWS.size(); ++kind) {
        if (name == ROWS[kind].name) {
            return static_cast<CrossingClass>(kind);
        }
    }
    return std::nullopt;
}

Severity severityOf(CrossingClass kind)
{
    return rowOf(kind).severity;
}

} // namespace kvr::netlistdb::analysis
