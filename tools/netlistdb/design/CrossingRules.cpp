#include "design/CrossingRules.h"

#include "base/CommaList.h"
#include "base/Failure.h"
#include "design/CrossingWords.h"
#include "design/InputFile.h"

#include <algorithm>
#include <fmt/format.h>

namespace kvr::netlistdb::tool {

namespace {

constexpr std::string_view CLOCK_PREFIX = "clock:";

/// The words of a line; false when a quotation mark is missing.
bool splitWords(std::string_view line, std::vector<std::string> &words)
{
    std::size_t at = 0;
    while (true) {
        at = line.find_first_not_of(" \t\r", at);
        if (at == std::string_view::npos || line[at] == '#') {
            return true;
        }
        if (line[at] == '"') {
            const std::size_t end = line.find('"', at + 1);
            if (end == std::string_view::npos) {
                return false;
            }
            words.emplace_back(line.substr(at + 1, end - at - 1));
            at = end + 1;
            continue;
        }
        const std::size_t end = std::min(line.find_first_of(" \t\r", at), line.size());
        words.emplace_back(line.substr(at, end - at));
        at = end;
    }
}

std::uint32_t bitOf(analysis::CrossingClass kind)
{
    return 1U << static_cast<unsigned>(kind);
}

} // namespace

CrossingRules::Waiver::End::End(const std::string &text)
    : isClock(text.compare(0, CLOCK_PREFIX.size(), CLOCK_PREFIX) == 0),
      pattern(std::make_unique<NamePattern>(NamePattern::Kind::Glob, isClock ? text.substr(CLOCK_PREFIX.size()) : text,
                                            false))
{
}

bool CrossingRules::Waiver::End::matches(const analysis::CrossingEnd &end, const std::string &clock) const
{
    if (isClock) {
        return pattern->matches(clock);
    }
    return pattern->matches(end.name) || (!end.bus.empty() && pattern->matches(end.bus)) ||
           (!end.cell.empty() && pattern->matches(end.cell));
}

CrossingRules::Waiver::Waiver(unsigned line, const std::string &from, const std::string &to, std::uint32_t kinds,
                              std::string reason)
    : m_line(line), m_text(from + " " + to), m_from(from), m_to(to), m_kinds(kinds), m_reason(std::move(reason))
{
}

bool CrossingRules::Waiver::matches(const analysis::Crossing &crossing, const analysis::ClockMap &clocks) const
{
    return (m_kinds & bitOf(crossing.kind)) != 0 && m_from.matches(crossing.from, launchName(crossing, clocks)) &&
           m_to.matches(crossing.to, clocks.clocks()[crossing.capture].name);
}

CrossingRules::CrossingRules(const std::string &file) : m_file(file)
{
    const std::string text = readText(file);
    std::size_t begin = 0;
    for (unsigned line = 1; begin < text.size(); ++line) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        std::vector<std::string> words;
        if (!splitWords(std::string_view(text).substr(begin, end - begin), words)) {
            fail(line, "a quotation mark is missing");
        }
        if (!words.empty()) {
            readLine(words, line);
        }
        begin = end + 1;
    }
}

std::string CrossingRules::at(unsigned line) const
{
    return fmt::format("{}:{}", m_file, line);
}

void CrossingRules::fail(unsigned line, const std::string &fault) const
{
    throw refused(at(line), fault);
}

void CrossingRules::readLine(const std::vector<std::string> &words, unsigned line)
{
    if (words.front() == "clock_groups") {
        readGroups(words, line);
    } else if (words.front() == "waive") {
        readWaiver(words, line);
    } else {
        fail(line, fmt::format("'{}' is neither clock_groups nor waive", words.front()));
    }
}

void CrossingRules::readGroups(const std::vector<std::string> &words, unsigned line)
{
    Groups groups{analysis::ClockGroups::Kind::Asynchronous, line, {{}}};
    for (std::size_t at = 1; at < words.size(); ++at) {
        const std::string &word = words[at];
        if (at == 1 && word == "-exclusive") {
            groups.kind = analysis::ClockGroups::Kind::Exclusive;
        } else if (at == 1 && word == "-asynchronous") {
            continue;
        } else if (word.size() > 1 && word.front() == '-') {
            fail(line, fmt::format("'{}' is neither -asynchronous nor -exclusive", word));
        } else if (word == ",") {
            groups.patterns.emplace_back();
        } else {
            const bool endsGroup = word.size() > 1 && word.back() == ',';
            groups.patterns.back().push_back(endsGroup ? word.substr(0, word.size() - 1) : word);
            if (endsGroup) {
                groups.patterns.emplace_back();
            }
        }
    }
    if (std::any_of(groups.patterns.begin(), groups.patterns.end(), [](const auto &group) { return group.empty(); })) {
        fail(line, "a group holds no clock");
    }
    m_groups.push_back(std::move(groups));
}

void CrossingRules::readWaiver(const std::vector<std::string> &words, unsigned line)
{
    constexpr std::string_view CLASS = "class=";
    if (words.size() < 3) {
        fail(line, "waive needs FROM, TO and a reason");
    }
    std::uint32_t kinds = ~0U;
    std::size_t at = 3;
    if (words.size() > at && words[at].compare(0, CLASS.size(), CLASS) == 0) {
        kinds = 0;
        for (const std::string &name : splitAtCommas(words[at].substr(CLASS.size()))) {
            const auto kind = analysis::crossingClassOf(name);
            if (!kind) {
                fail(line, fmt::format("'{}' is no class of crossings", name));
            }
            kinds |= bitOf(*kind);
        }
        ++at;
    }
    std::string reason;
    for (; at < words.size(); ++at) {
        reason += (reason.empty() ? "" : " ") + words[at];
    }
    if (reason.empty()) {
        fail(line, "the waiver gives no reason");
    }
    m_waivers.emplace_back(line, words[1], words[2], kinds, std::move(reason));
}

std::vector<analysis::ClockGroups> CrossingRules::groups(const analysis::ClockMap &clocks)
{
    std::vector<analysis::ClockGroups> all;
    for (const Groups &groups : m_groups) {
        analysis::ClockGroups known{groups.kind, {}};
        for (const std::vector<std::string> &patterns : groups.patterns) {
            known.groups.emplace_back();
            for (const std::string &text : patterns) {
                const NamePattern pattern(NamePattern::Kind::Glob, text, false);
                const std::size_t before = known.groups.back().size();
                for (analysis::ClockId clock = 0; clock < clocks.clocks().size(); ++clock) {
                    if (isClockCalled(clocks.clocks()[clock], pattern)) {
                        known.groups.back().push_back(clock);
                    }
                }
                if (known.groups.back().size() == before) {
                    m_unknownClocks.push_back(fmt::format("{}: no clock matches '{}'", at(groups.line), text));
                }
            }
        }
        all.push_back(std::move(known));
    }
    return all;
}

const CrossingRules::Waiver *CrossingRules::waiverOf(const analysis::Crossing &crossing,
                                                     const analysis::ClockMap &clocks) const
{
    const auto found = std::find_if(m_waivers.begin(), m_waivers.end(),
                                    [&](const Waiver &waiver) { return waiver.matches(crossing, clocks); });
    return found != m_waivers.end() ? &*found : nullptr;
}

std::vector<std::string> CrossingRules::unused(const Used &used) const
{
    std::vector<std::string> lines = m_unknownClocks;
    for (const Waiver &waiver : m_waivers) {
        if (used.count(&waiver) == 0) {
            lines.push_back(fmt::format("{}: no crossing matches 'waive {}'", at(waiver.line()), waiver.text()));
        }
    }
    return lines;
}

} // namespace kvr::netlistdb::tool
