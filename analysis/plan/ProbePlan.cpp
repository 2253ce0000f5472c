#include <netlistdb/analysis/ProbePlan.h>

#include "analysis/plan/PlanTexts.h"
#include "analysis/plan/PlanWords.h"

#include <netlistdb/analysis/Clocks.h>

namespace kvr::netlistdb::analysis {

using namespace plan;

namespace {

/// Lines of a plan, one behind the other.
class Writer {
  public:
    void notes(const std::vector<std::string> &lines)
    {
        for (const std::string &line : lines) {
            m_text += line + '\n';
        }
    }
    void line(const std::string &words, const PlanNotes &notes)
    {
        this->notes(notes.above);
        m_text += words + (notes.behind.empty() ? "" : " " + notes.behind) + '\n';
    }
    std::string take() { return std::move(m_text); }

  private:
    std::string m_text;
};

} // namespace

PlanError::PlanError(std::size_t line, const std::string &fault) : std::runtime_error(fault), m_line(line) {}

std::string ProbePlan::text() const
{
    Writer writer;
    writer.notes(head);
    writer.line(std::string(FORMAT) + ' ' + std::to_string(VERSION), {});
    for (const PlanProbe &probe : probes) {
        writer.line("probe " + quoted(probe.name), probe.notes);
        for (const PlanClock &clock : probe.clocks) {
            writer.line("  clock " + quoted(clock.name) + ' ' + edgesText(clock.edges), clock.notes);
        }
        for (const PlanBit &bit : probe.bits) {
            writer.line("  bit " + quoted(bit.name) + ' ' + gradeText(bit) + ' ' +
                            (bit.device.empty() ? "-" : quoted(bit.device)) + ' ' + fingerprintText(bit.fingerprint),
                        bit.notes);
        }
    }
    writer.notes(tail);
    return writer.take();
}

} // namespace kvr::netlistdb::analysis
