#include <netlistdb/analysis/ProbePlan.h>

#include "analysis/plan/PlanTexts.h"
#include "analysis/plan/PlanWords.h"

#include <algorithm>
#include <charconv>
#include <unordered_map>
#include <utility>

namespace kvr::netlistdb::analysis {

using namespace plan;

namespace {

/// Reads a plan line by line.
class Reader {
  public:
    ProbePlan read(std::string_view text)
    {
        while (!text.empty()) {
            const std::size_t end = std::min(text.find('\n'), text.size());
            ++m_number;
            readLine(text.substr(0, end));
            text.remove_prefix(std::min(end + 1, text.size()));
        }
        if (!m_hasHead) {
            fail("is no plan: the line 'netlistdb-plan 1' is missing");
        }
        finishProbe();
        m_plan.tail = std::move(m_above);
        return std::move(m_plan);
    }

  private:
    [[noreturn]] void fail(const std::string &fault) const
    {
        throw PlanError(std::max<std::size_t>(m_number, 1), fault);
    }

    void readLine(std::string_view line)
    {
        // Other systems end lines with a carriage return; blanks at the end are nobody's intention.
        line = line.substr(0, line.find_last_not_of(" \t\r") + 1);
        Line parts;
        try {
            parts = takeApart(line);
        } catch (const std::invalid_argument &fault) {
            fail(fault.what());
        }
        if (parts.words.empty()) {
            m_above.emplace_back(line);
            return;
        }
        if (!m_hasHead) {
            readHead(parts);
            return;
        }
        const std::string kind = parts.words.front().isQuoted ? std::string() : parts.words.front().text;
        if (kind == "probe") {
            readProbe(std::move(parts));
        } else if (kind == "clock") {
            readClock(std::move(parts));
        } else if (kind == "bit") {
            readBit(std::move(parts));
        } else {
            fail("'" + parts.words.front().text + "' is none of probe, clock, bit");
        }
    }

    void readHead(const Line &parts)
    {
        unsigned version = 0;
        if (parts.words.size() == 2 && parts.words[0].text == FORMAT) {
            const std::string &text = parts.words[1].text;
            const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), version);
            if (error != std::errc() || stop != text.data() + text.size()) {
                version = 0;
            }
        }
        if (version == 0) {
            fail("is no plan: the first line is not 'netlistdb-plan 1'");
        }
        if (version > VERSION) {
            fail("version " + std::to_string(version) + " is newer than this program reads, which is " +
                 std::to_string(VERSION));
        }
        m_hasHead = true;
        m_plan.head = std::exchange(m_above, {});
        if (!parts.comment.empty()) {
            m_plan.head.push_back(parts.comment);
        }
    }

    PlanNotes takeNotes(Line &parts) { return {std::exchange(m_above, {}), std::move(parts.comment)}; }

    void readProbe(Line parts)
    {
        finishProbe();
        if (parts.words.size() != 2) {
            fail("a probe has a name and nothing else");
        }
        PlanProbe probe;
        probe.name = std::move(parts.words[1].text);
        if (probe.name.empty()) {
            fail("a probe has an empty name");
        }
        const auto [known, isNew] = m_lines.emplace(probe.name, m_number);
        if (!isNew) {
            fail("probe '" + probe.name + "' is in line " + std::to_string(known->second) + " already");
        }
        probe.notes = takeNotes(parts);
        m_plan.probes.push_back(std::move(probe));
    }

    PlanProbe &current(const char *what)
    {
        if (m_plan.probes.empty()) {
            fail(std::string("a ") + what + " stands before the first probe");
        }
        return m_plan.probes.back();
    }

    void readClock(Line parts)
    {
        PlanProbe &probe = current("clock");
        if (!probe.bits.empty()) {
            fail("a clock stands behind a bit of its probe");
        }
        PlanClock clock;
        if (parts.words.size() != 3 || !readEdges(parts.words[2].text, clock.edges)) {
            fail("a clock has a name and one of rise, fall, both, -");
        }
        clock.name = std::move(parts.words[1].text);
        clock.notes = takeNotes(parts);
        probe.clocks.push_back(std::move(clock));
    }

    void readBit(Line parts)
    {
        PlanProbe &probe = current("bit");
        if (parts.words.size() != 5) {
            fail("a bit has a name, a grade, a post-map net and a fingerprint");
        }
        PlanBit bit;
        bit.name = std::move(parts.words[1].text);
        if (bit.name.empty()) {
            fail("a bit has an empty name");
        }
        if (!readGrade(parts.words[2].text, bit)) {
            fail("'" + parts.words[2].text + "' is no grade");
        }
        if (!parts.words[3].isNothing()) {
            bit.device = std::move(parts.words[3].text);
        }
        const bool hasNet = bit.grade && *bit.grade != ProbeGrade::Gone && *bit.grade != ProbeGrade::Unknown;
        if (hasNet != !bit.device.empty()) {
            fail(hasNet ? "a bit of this grade has a post-map net" : "a bit of this grade has no post-map net");
        }
        if (!parts.words[4].isNothing() && !readFingerprint(parts.words[4].text, bit.fingerprint)) {
            fail("'" + parts.words[4].text + "' is no fingerprint");
        }
        bit.notes = takeNotes(parts);
        probe.bits.push_back(std::move(bit));
    }

    void finishProbe()
    {
        if (!m_plan.probes.empty() && m_plan.probes.back().bits.empty()) {
            throw PlanError(m_lines.at(m_plan.probes.back().name), "a probe has no bit");
        }
    }

    ProbePlan m_plan;
    std::size_t m_number = 0;
    bool m_hasHead = false;
    std::vector<std::string> m_above;
    std::unordered_map<std::string, std::size_t> m_lines; ///< of the probes
};

} // namespace

ProbePlan ProbePlan::parse(std::string_view text)
{
    return Reader().read(text);
}

} // namespace kvr::netlistdb::analysis
