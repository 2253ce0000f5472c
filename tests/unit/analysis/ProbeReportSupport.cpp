#include "tests/unit/analysis/ProbeReportTest.h"

#include <netlistdb/IVDBNetBus.h>

namespace analysis_test {

using kvr::netlistdb::IVDBNetBus;
using kvr::netlistdb::analysis::CrossProbe;
using kvr::netlistdb::analysis::ProbeFinding;

const std::string PROBE_CELLS = R"(
    register DFF(in clk, d, out q) clock=clk end
    primitive $_AND_(in A, B, out Y) type=7 end
    primitive $_NOT_(in A, out Y) type=6 input=A end
    primitive $_BUF_(in A, out Y) type=5 input=A end
    primitive $_DFF_N_(in C, D, out Q) end
    primitive POWER(out Y) type=1 end
    operator $and(in A, B, out Y) end
    operator $xor(in A, B, out Y) end
    operator $not(in A, out Y) end
    operator $sdff(in CLK, SRST, D, out Q) end
    operator $_SDFF_PP0_(in C, D, R, out Q) end
    operator $_ANDNOT_(in A, B, out Y) end
    operator $_XOR_(in A, B, out Y) end
    blackbox BOX(in I, out O) end
    blackbox PLL(in CLKIN, FB, out CLKOUT, FBOUT) @NETLISTDB_CELL_KIND=pll end
    blackbox LINK(in PIN, out DATA) @NETLISTDB_CELL_KIND=hard-block end
)";

std::string textOf(const SignalReport &report)
{
    std::string text = nameOf(report.verdict);
    for (const ProbeFinding &finding : report.findings) {
        text.append(&finding == report.findings.data() ? ": " : " ").append(nameOf(finding.reason));
        text.append(finding.bars ? "!" : "");
        if (finding.bits.size() < report.bits.size()) {
            text += '[';
            for (const std::uint32_t bit : finding.bits) {
                text.append(text.back() == '[' ? "" : ",").append(std::to_string(bit));
            }
            text += ']';
        }
    }
    return text;
}

std::string detailsOf(const SignalReport &report)
{
    std::string text;
    for (const ProbeFinding &finding : report.findings) {
        text.append(nameOf(finding.reason)).append(" | ").append(finding.evidence);
        text.append(" | ").append(finding.instead).append("\n");
    }
    return text;
}

void ProbeReportTest::loadElaborated(const std::string &netlist)
{
    elaboratedMap((PROBE_CELLS + netlist).c_str());
    reports = std::make_unique<ProbeReport>(*map);
}

void ProbeReportTest::loadPostMap(const std::string &netlist)
{
    postMapMap((PROBE_CELLS + netlist).c_str());
    reports = std::make_unique<ProbeReport>(*map);
}

void ProbeReportTest::loadBoth(const std::string &rtl, const std::string &mapped)
{
    postMap((PROBE_CELLS + mapped).c_str());
    elaboratedMap((PROBE_CELLS + rtl).c_str());
    deviceMap = std::make_unique<ClockMap>(*database, POST_MAP);
    probe = std::make_unique<CrossProbe>(*database);
    reports = std::make_unique<ProbeReport>(*map, *deviceMap, *probe);
}

SignalReport ProbeReportTest::reportOf(const std::string &name, const std::string &path) const
{
    IVDBInstance *const instance = instanceOf(path);
    for (const IVDBNetBus *bus : instance->getModule()->getAllNetBus()) {
        if (bus->getName() == name) {
            return reports->of(instance, bus);
        }
    }
    return reports->of(instance, netIn(path, name));
}

} // namespace analysis_test
