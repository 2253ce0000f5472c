#include "design/MatchRows.h"

#include "design/Subscript.h"

#include <netlistdb/netlistdb.h>

#include <algorithm>

namespace kvr::netlistdb::tool {

namespace {

std::string nameOf(const analysis::ProbeTarget &target)
{
    return VDBHelper::getNetFullName(target.net, target.instance);
}

std::string rangeOf(const std::string &vector, int first, int last)
{
    return vector + '[' + std::to_string(first) + (first != last ? ':' + std::to_string(last) : std::string()) + ']';
}

} // namespace

std::vector<Column> MatchRows::columns()
{
    return {{"net", "NET"},
            {"grade", "GRADE"},
            {"reason", nullptr},
            {"match", "MATCH", Look::Name},
            {"inverted", nullptr},
            {"also", nullptr},
            {"cell", nullptr},
            {"evidence", nullptr},
            {nullptr, "NOTE", Look::Dim}};
}

MatchRows::Run MatchRows::runOf(const std::string &net, analysis::ProbeMatch match)
{
    Run run;
    run.net = net;
    std::string_view vector;
    if (takeSubscript(net, vector, run.first)) {
        run.vector = vector;
        run.last = run.first;
    }
    if (!match.targets.empty()) {
        run.target = nameOf(match.targets.front());
        if (takeSubscript(run.target, vector, run.targetFirst)) {
            run.targetVector = vector;
            run.targetLast = run.targetFirst;
        }
    }
    run.match = std::move(match);
    return run;
}

/// True when @p next is the bit behind @p run and shows nothing else.
bool MatchRows::continues(const Run &run, const Run &next)
{
    const auto isInverted = [](const Run &each) {
        return !each.match.targets.empty() && each.match.targets.front().inverted;
    };
    const int step = next.first - run.last;
    if (run.vector.empty() || run.vector != next.vector || (step != 1 && step != -1) ||
        (run.first != run.last && step != (run.last > run.first ? 1 : -1)) || run.match.grade != next.match.grade ||
        run.match.evidence != next.match.evidence || run.match.cell != next.match.cell ||
        isInverted(run) != isInverted(next)) {
        return false;
    }
    return run.target.empty() ? next.target.empty()
                              : !run.targetVector.empty() && run.targetVector == next.targetVector &&
                                    next.targetFirst - run.targetLast == step;
}

void MatchRows::add(const std::string &net, analysis::ProbeMatch match)
{
    Run next = runOf(net, std::move(match));
    if (m_run && m_writer.isTable() && continues(*m_run, next)) {
        m_run->last = next.first;
        m_run->targetLast = next.targetFirst;
        return;
    }
    finish();
    m_run = std::move(next);
}

void MatchRows::finish()
{
    if (m_run) {
        write(*m_run);
        m_run.reset();
    }
}

void MatchRows::write(const Run &run)
{
    m_written = true;
    const analysis::ProbeMatch &match = run.match;
    const bool inverted = !match.targets.empty() && match.targets.front().inverted;
    const std::string net = run.vector.empty() ? run.net : rangeOf(run.vector, run.first, run.last);
    std::string target =
        run.targetVector.empty() ? run.target : rangeOf(run.targetVector, run.targetFirst, run.targetLast);
    std::vector<std::string> also;
    // Tables do not show them, and a clock may have thousands.
    for (std::size_t at = 1; at < match.targets.size() && !m_writer.isTable(); ++at) {
        also.push_back((match.targets[at].inverted ? "~" : "") + nameOf(match.targets[at]));
    }
    std::string grade = analysis::nameOf(match.grade);
    std::string note;
    if (m_writer.isTable()) {
        target.insert(0, inverted ? "~" : "");
        if (match.grade == analysis::ProbeGrade::Gone) {
            note = std::string(analysis::nameOf(match.reason)) + ": ";
        }
        if (match.grade == analysis::ProbeGrade::Gone || match.grade == analysis::ProbeGrade::Unknown) {
            note += match.evidence;
        }
        note += match.cell.empty() ? "" : " (" + match.cell + ")";
    }
    const std::string reason = analysis::nameOf(match.reason);
    m_writer.row({std::string_view(net), std::string_view(grade), textOrNull(reason), textOrNull(target), inverted,
                  &also, textOrNull(match.cell), std::string_view(match.evidence), std::string_view(note)});
    m_writer.tick();
}

} // namespace kvr::netlistdb::tool
