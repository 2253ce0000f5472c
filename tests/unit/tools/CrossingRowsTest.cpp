#include "design/CrossingRows.h"

#include "base/Interrupt.h"
#include "base/Progress.h"
#include "base/Stats.h"
#include "design/Design.h"
#include "design/Subscript.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace kvr::netlistdb::tool {
namespace {

using analysis::Crossing;
using analysis::CrossingClass;
using analysis::CrossingEnd;

/// A row as it should be.
struct Expected {
    std::string from;
    std::string to;
    CrossingClass kind;
    unsigned waiver; ///< its line, or 0
    std::uint32_t bits;
    std::uint32_t deciding;
    std::uint32_t cells;
    std::uint32_t stages;

    bool operator==(const Expected &other) const
    {
        return std::tie(from, to, kind, waiver, bits, deciding, cells, stages) ==
               std::tie(other.from, other.to, other.kind, other.waiver, other.bits, other.deciding, other.cells,
                        other.stages);
    }
    friend std::ostream &operator<<(std::ostream &out, const Expected &row)
    {
        return out << row.from << " -> " << row.to << ' ' << nameOf(row.kind) << " waived " << row.waiver << ", "
                   << row.bits << " bits, " << row.deciding << " deciding, " << row.cells << " cells, " << row.stages
                   << " stages";
    }
};

std::string busOf(const CrossingEnd &end)
{
    return end.bus.empty() ? end.name : end.bus;
}

std::string textOf(const std::vector<const Crossing *> &crossings, CrossingEnd Crossing::*end)
{
    const CrossingEnd &first = crossings.front()->*end;
    std::vector<int> bits(crossings.size());
    std::transform(crossings.begin(), crossings.end(), bits.begin(),
                   [end](const Crossing *crossing) { return (crossing->*end).bit; });
    return first.bus.empty() ? first.name : bitsText(first.bus, bits);
}

/// What is alike by the texts of all that must be.
std::vector<Expected> expectedRows(const std::vector<Crossing> &crossings, const analysis::ClockMap &clocks,
                                   const CrossingRules &rules, CrossingRows::Options options)
{
    std::map<std::vector<std::string>, std::size_t> places;
    std::vector<std::vector<const Crossing *>> groups;
    std::vector<CrossingClass> kinds;
    for (const Crossing &crossing : crossings) {
        for (std::size_t number = 0; number < analysis::CROSSING_CLASSES; ++number) {
            const auto kind = static_cast<CrossingClass>(number);
            if (options.allClasses ? !crossing.holds(kind) : kind != crossing.kind) {
                continue;
            }
            const CrossingRules::Waiver *const waiver = rules.waiverOf(crossing, clocks);
            const std::vector<std::string> key{
                crossing.launch ? clocks.clocks()[*crossing.launch].name : "",
                clocks.clocks()[crossing.capture].name,
                nameOf(kind),
                busOf(crossing.from),
                busOf(crossing.to),
                crossing.to.pin.substr(0, crossing.to.pin.find('[')),
                crossing.isKept ? "kept" : "",
                waiver != nullptr ? std::to_string(waiver->line()) : "",
                options.bits ? std::to_string(&crossing - crossings.data()) : "",
            };
            const auto [place, isNew] = places.try_emplace(key, groups.size());
            if (isNew) {
                groups.emplace_back();
                kinds.push_back(kind);
            }
            groups[place->second].push_back(&crossing);
        }
    }
    std::vector<Expected> rows;
    for (std::size_t at = 0; at < groups.size(); ++at) {
        const std::vector<const Crossing *> &group = groups[at];
        const auto fewer = [](auto member) {
            return [member](const Crossing *a, const Crossing *b) { return a->*member < b->*member; };
        };
        const CrossingRules::Waiver *const waiver = rules.waiverOf(*group.front(), clocks);
        rows.push_back({textOf(group, &Crossing::from), textOf(group, &Crossing::to), kinds[at],
                        waiver != nullptr ? waiver->line() : 0, static_cast<std::uint32_t>(group.size()),
                        static_cast<std::uint32_t>(std::count_if(
                            group.begin(), group.end(), [&](const Crossing *each) { return each->kind == kinds[at]; })),
                        (*std::min_element(group.begin(), group.end(), fewer(&Crossing::cells)))->cells,
                        (*std::min_element(group.begin(), group.end(), fewer(&Crossing::stages)))->stages});
    }
    return rows;
}

std::vector<Expected> rowsOf(const CrossingRows &rows)
{
    std::vector<Expected> all;
    for (const CrossingRow &row : rows.all()) {
        all.push_back({rows.from(row), rows.to(row), row.kind, row.waiver != nullptr ? row.waiver->line() : 0, row.bits,
                       row.deciding, row.cells, row.stages});
    }
    return all;
}

class CrossingRowsTest : public testing::TestWithParam<const char *> {
  protected:
    CrossingRowsTest()
    {
        Progress progress([](const std::string &, std::uint64_t, std::uint64_t) {});
        Stats stats;
        std::vector<std::string> notes;
        Interrupt interrupt(Interrupt::Signals::LeaveAlone);
        const VerilogOptions verilog;
        const Reading reading{{}, "", {}, "", verilog, 1'000'000, progress, stats, interrupt, notes};
        m_design = loadDesign({std::string(DESIGNS_DIR) + "/" + GetParam()}, Clocks::Yes, reading);
        m_crossings = analysis::Crossings(m_design->clocks()).all();
        const std::string file = testing::TempDir() + "/crossing_rows_" + GetParam() + ".waivers";
        std::ofstream(file) << "waive u_dsp** ** class=memory looked at\n"
                               "waive ** **coef_q[3] one bit of several\n"
                               "waive never never no such\n";
        m_rules = CrossingRules(file);
    }

    std::unique_ptr<Design> m_design;
    std::vector<Crossing> m_crossings;
    CrossingRules m_rules;
};

TEST_P(CrossingRowsTest, RowsHoldWhatIsAlikeInTheOrderInWhichItComes)
{
    ASSERT_GT(m_crossings.size(), 100U);
    for (const bool allClasses : {false, true}) {
        for (const bool bits : {false, true}) {
            const CrossingRows::Options options{allClasses, bits};
            const CrossingRows rows(m_crossings, m_design->clocks(), m_rules, options);
            EXPECT_EQ(rowsOf(rows), expectedRows(m_crossings, m_design->clocks(), m_rules, options));
        }
    }
}

TEST_P(CrossingRowsTest, WaiversThatAreGivenToNoRowAreUnused)
{
    const CrossingRows rows(m_crossings, m_design->clocks(), m_rules, {});
    const std::vector<std::string> unused = m_rules.unused(rows.usedWaivers());
    ASSERT_EQ(unused.size(), 1U);
    EXPECT_NE(unused.front().find("no crossing matches 'waive never never'"), std::string::npos) << unused.front();
}

INSTANTIATE_TEST_SUITE_P(Designs, CrossingRowsTest, testing::Values("soc_elaborated.json", "soc_postmap.json"),
                         [](const auto &each) { return each.index == 0 ? "Elaborated" : "PostMap"; });

} // namespace
} // namespace kvr::netlistdb::tool
