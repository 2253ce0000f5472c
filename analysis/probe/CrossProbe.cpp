#include <netlistdb/analysis/CrossProbe.h>

#include "analysis/probe/Locator.h"
#include "analysis/probe/NetNames.h"
#include "analysis/probe/Verdicts.h"

#include <netlistdb/DesignDatabase.h>
#include <netlistdb/IVDBInstance.h>
#include <netlistdb/IVDBNet.h>
#include <netlistdb/NameText.h>

#include <algorithm>
#include <optional>
#include <stdexcept>

namespace kvr::netlistdb::analysis {

using namespace probe;

namespace {

constexpr auto ELABORATED = IDesignDatabase::SOURCE_ELABORATED;
constexpr auto POST_MAP = IDesignDatabase::SOURCE_POST_MAP;

const char *sentenceOf(GoneReason reason)
{
    switch (reason) {
    case GoneReason::None:
        break;
    case GoneReason::Constant:
        return "never changes, once reset";
    case GoneReason::Unused:
        return "no output of the design depends on it";
    case GoneReason::InLogic:
        return "no net equals it; computed inside a cell of logic";
    case GoneReason::InMemory:
        return "no net equals it; taken into a memory";
    case GoneReason::InDsp:
        return "no net equals it; taken into an arithmetic block";
    case GoneReason::InShiftRegister:
        return "no net equals it; a stage inside a shift register";
    case GoneReason::Retimed:
        return "no net equals it; its registers were moved through logic or encoded anew";
    }
    return "";
}

/// The net that was asked about, whose name is looked at where several nets are on a wire.
class Wanted {
  public:
    Wanted(const IVDBInstance &inst, const IVDBNet &net) : m_inst(inst), m_net(net) {}
    /// The hash of its full name.
    std::uint64_t name()
    {
        if (!m_name) {
            const std::string path = m_inst.getPath();
            m_name = hashOfPath((path + (path.empty() ? "" : "/")).append(nameText(m_net)));
        }
        return *m_name;
    }

  private:
    const IVDBInstance &m_inst;
    const IVDBNet &m_net;
    std::optional<std::uint64_t> m_name;
};

} // namespace

const char *nameOf(ProbeGrade grade)
{
    static constexpr const char *names[] = {"exact", "register", "structural", "merged", "gone", "unknown"};
    return names[static_cast<std::size_t>(grade)];
}

const char *nameOf(GoneReason reason)
{
    static constexpr const char *names[] = {"",       "constant",          "unused", "in-logic", "in-memory",
                                            "in-dsp", "in-shift-register", "retimed"};
    return names[static_cast<std::size_t>(reason)];
}

struct CrossProbe::State {
    explicit State(DesignDatabase &from)
        : database(from), generations{from.generation(ELABORATED), from.generation(POST_MAP)},
          elaborated(from, ELABORATED), postMap(from, POST_MAP)
    {
        {
            const Correspondence correspondence(elaborated, postMap);
            Verdicts found(elaborated, postMap, correspondence);
            names = correspondence.names().wires;
            verdicts = found.takeVerdicts();
            matches = found.takeMatches();
        }
        for (std::uint32_t match = 0; match < matches.size(); ++match) {
            back.push_back(match);
        }
        // The best grade first, whichever order the elaborated wires have.
        std::stable_sort(back.begin(), back.end(), [&](std::uint32_t a, std::uint32_t b) {
            const Match &left = matches[a];
            const Match &right = matches[b];
            if (left.wires.postMap != right.wires.postMap) {
                return left.wires.postMap < right.wires.postMap;
            }
            return left.byName != right.byName
                       ? left.byName
                       : verdicts[left.wires.elaborated].grade < verdicts[right.wires.elaborated].grade;
        });
        elaborated.pins = {};
        elaborated.nodes = {};
        postMap.pins = {};
        locators[0].emplace(elaborated, database.getRoot(ELABORATED));
        locators[1].emplace(postMap, database.getRoot(POST_MAP));
    }

    void check() const
    {
        if (database.generation(ELABORATED) != generations[0] || database.generation(POST_MAP) != generations[1]) {
            throw std::logic_error("CrossProbe: the source has been reset or imported anew");
        }
    }

    /// The nets on a wire: one of the name of @p wanted first, then declared ones.
    static void addTargets(const Locator &locator, Signal signal, bool inverted, Wanted &wanted,
                           std::vector<ProbeTarget> &targets)
    {
        const auto nets = locator.netsOn(signal);
        const auto add = [&](std::uint32_t net) {
            const NetPlace place = locator.placeOf(net);
            IVDBNet *const item = locator.netItem(place);
            IVDBInstance *const instance = locator.instanceItem(place.occurrence);
            if (item != nullptr && instance != nullptr) {
                targets.push_back({instance, item, inverted});
            }
        };
        if (nets.size() < 2) {
            std::for_each(nets.begin(), nets.end(), add);
            return;
        }
        const std::uint64_t *const names = locator.nameHashesOn(signal);
        const std::uint64_t name = wanted.name();
        targets.reserve(targets.size() + nets.size());
        for (const bool isFirst : {true, false}) {
            for (std::size_t at = 0; at < nets.size(); ++at) {
                if ((names[at] == name) == isFirst) {
                    add(nets[at]);
                }
            }
        }
    }

    std::string evidenceOf(Signal signal, ProbeGrade grade) const
    {
        const Verdict &verdict = verdicts[signal];
        switch (grade) {
        case ProbeGrade::Exact:
            return verdict.wasSeen ? "same name, and equal in all runs"
                                   : "same name; nothing contradicts, but it was hardly seen to change";
        case ProbeGrade::Register:
            return "a register that behaves the same, from reset and from random states";
        case ProbeGrade::Structural:
            return "computes the same from matched registers and inputs, over random values";
        case ProbeGrade::Merged:
            return "equal to another net of the elaborated form, which has this net";
        case ProbeGrade::Gone:
            return verdict.reason == GoneReason::Constant
                       ? std::string("always ") + (verdict.value ? "1" : "0") + " once reset"
                       : sentenceOf(verdict.reason);
        case ProbeGrade::Unknown:
            break;
        }
        const auto named = std::lower_bound(names.begin(), names.end(), WirePair{signal, 0});
        if (named != names.end() && named->elaborated == signal) {
            return "the net of this name behaves differently";
        }
        return !verdict.isKnown   ? "depends on something whose value is not known"
               : !verdict.wasSeen ? "hardly seen to change"
                                  : "no net was found that equals it, and no cell that has taken it in";
    }

    DesignDatabase &database;
    std::uint64_t generations[2];
    BitGraph elaborated;
    BitGraph postMap;
    std::vector<WirePair> names;
    std::vector<Verdict> verdicts;
    std::vector<Match> matches;
    std::vector<std::uint32_t> back; ///< places in matches, by post-map wire
    std::optional<Locator> locators[2];
};

CrossProbe::CrossProbe(DesignDatabase &database) : m_state(std::make_unique<const State>(database)) {}
CrossProbe::~CrossProbe() = default;
CrossProbe::CrossProbe(CrossProbe &&) noexcept = default;
CrossProbe &CrossProbe::operator=(CrossProbe &&) noexcept = default;

ProbeMatch CrossProbe::find(const IVDBInstance *inst, const IVDBNet *net) const
{
    m_state->check();
    const Signal signal = m_state->locators[0]->find(inst, net);
    ProbeMatch result;
    const Verdict &verdict = m_state->verdicts[signal];
    result.grade = verdict.grade;
    result.reason = verdict.reason;
    Wanted wanted(*inst, *net);
    auto match =
        std::lower_bound(m_state->matches.begin(), m_state->matches.end(), signal,
                         [](const Match &each, Signal elaborated) { return each.wires.elaborated < elaborated; });
    for (; match != m_state->matches.end() && match->wires.elaborated == signal; ++match) {
        State::addTargets(*m_state->locators[1], match->wires.postMap, match->inverted, wanted, result.targets);
    }
    if (verdict.node != NONE) {
        const Node &node = m_state->postMap.nodes[verdict.node];
        result.cell = m_state->postMap.pathOf(node.occurrence, node.cell);
    }
    result.evidence = m_state->evidenceOf(signal, result.grade);
    return result;
}

ProbeMatch CrossProbe::findBack(const IVDBInstance *inst, const IVDBNet *net) const
{
    m_state->check();
    const Signal signal = m_state->locators[1]->find(inst, net);
    ProbeMatch result;
    Wanted wanted(*inst, *net);
    auto place =
        std::lower_bound(m_state->back.begin(), m_state->back.end(), signal, [&](std::uint32_t each, Signal postMap) {
            return m_state->matches[each].wires.postMap < postMap;
        });
    for (; place != m_state->back.end() && m_state->matches[*place].wires.postMap == signal; ++place) {
        const Match &match = m_state->matches[*place];
        if (result.targets.empty()) {
            result.grade = m_state->verdicts[match.wires.elaborated].grade;
            result.evidence = m_state->evidenceOf(match.wires.elaborated, result.grade);
        }
        State::addTargets(*m_state->locators[0], match.wires.elaborated, match.inverted, wanted, result.targets);
    }
    if (result.targets.empty()) {
        result.evidence = "no net of the elaborated form was found that equals it";
    }
    return result;
}

} // namespace kvr::netlistdb::analysis
