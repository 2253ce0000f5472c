#include "tests/unit/analysis/MapTest.h"

#include "frontend/yosys/YosysReader.h"

#include <netlistdb/IClockDomain.h>
#include <netlistdb/IVDBInstance.h>
#include <netlistdb/IVDBNetlist.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>

namespace analysis_test {

namespace analysis = kvr::netlistdb::analysis;
namespace clocks = clock_test;

namespace {

bool isElaborated(const std::string &file)
{
    return file.find("elaborated") != std::string::npos;
}

std::vector<std::string> designFiles()
{
    std::vector<std::string> files{DESIGNS_DIR "/soc_elaborated.json", DESIGNS_DIR "/soc_postmap.json"};
    for (const auto &entry : std::filesystem::directory_iterator(DESIGNS_DIR "/families")) {
        if (entry.path().extension() == ".json" && entry.path().filename() != "expected.json") {
            files.push_back(entry.path().string());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

/// Why the trace may say something else than the one clock of a net; empty: it may not.
std::string exceptionOf(const ClockMap &map, const IVDBInstance *instance, const IVDBNet *net, bool elaborated)
{
    const analysis::LaunchProof proof = map.why(instance, net);
    const std::vector<ChainStep> &chain = proof.clocks.front().data;
    const auto passes = [](const std::vector<ChainStep> &steps) {
        return std::any_of(steps.begin(), steps.end(),
                           [](const ChainStep &step) { return step.kind == analysis::StepKind::Hierarchy; });
    };
    const bool passesModule = passes(chain) || passes(proof.clocks.front().clockToRoot);
    static const std::set<std::string> unclockedMemories{"KVR_RAMD16X4", "RAM32M", "RAM64M", "RAM32X1D", "RAM64X1D"};
    if (unclockedMemories.count(chain.back().cellType) != 0) {
        return "the trace takes a memory that reads without a clock for logic or for a barrier";
    }
    if (!elaborated && passesModule) {
        return "the trace of the post-map form does not look into modules";
    }
    if (!elaborated && chain.back().cellType.front() == '$') {
        return "the trace of the post-map form does not know the cells that yosys defines";
    }
    if (elaborated && chain.back().cellType.substr(0, 4) == "KVR_") {
        return "the trace of the elaborated form does not know device cells that describe themselves";
    }
    return {};
}

class Designs : public testing::TestWithParam<std::string> {
  protected:
    testsupport::LibsetGuard guard;
};

TEST_P(Designs, WhereOneClockAndNothingElseReachesANetTheTraceFindsThatClockToo)
{
    const bool elaborated = isElaborated(GetParam());
    const IDesignDatabase::SOURCE_TYPE source = elaborated ? ELABORATED : POST_MAP;
    DesignDatabase database(true);
    Verific::Netlist *const top = kvr::netlistdb::yosys::readJson(GetParam());
    elaborated ? database.parseElaboratedNetlist(top) : database.parsePostMapNetlist(top);
    const ClockMap map(database, source);
    EXPECT_EQ(analysis::countClocks(database, source), map.clocks().size());
    std::size_t asked = 0;
    std::map<std::string, std::size_t> exceptions;
    for (IVDBInstance *instance : clocks::treeOf(database.getRoot(source))) {
        for (IVDBNet *net : clocks::netsOf(instance)) {
            const analysis::LaunchClocks launch = map.launch(instance, net);
            if (launch.clocks.size() != 1 || launch.reached != 0 || !launch.networks.empty()) {
                continue;
            }
            ++asked;
            const auto *const traced = database.findDrivingClockDomains(instance, net, source);
            const auto clock = traced != nullptr ? map.find(traced->getName()) : std::nullopt;
            if (clock == launch.clocks.front().clock) {
                continue;
            }
            const std::string exception = exceptionOf(map, instance, net, elaborated);
            EXPECT_NE(exception, "") << clocks::nameOf({instance, net}) << ": trace " << clocks::nameOf(traced)
                                     << ", map " << map.clocks()[launch.clocks.front().clock].name;
            ++exceptions[exception];
        }
    }
    EXPECT_GT(asked, 10U);
    for (const auto &[rule, count] : exceptions) {
        RecordProperty(rule, std::to_string(count));
    }
}

std::string nameOfTest(const testing::TestParamInfo<std::string> &info)
{
    std::string name = std::filesystem::path(info.param).stem().string();
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c == '-' || c == '.'; }, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(CheckedIn, Designs, testing::ValuesIn(designFiles()), nameOfTest);

class Soc : public MapTest {
  protected:
    void read(const char *file, IDesignDatabase::SOURCE_TYPE type)
    {
        source = type;
        Verific::Netlist *const top = kvr::netlistdb::yosys::readJson(std::string(DESIGNS_DIR) + file);
        type == ELABORATED ? database->parseElaboratedNetlist(top) : database->parsePostMapNetlist(top);
        map = std::make_unique<ClockMap>(*database, type);
    }
};

TEST_F(Soc, TheElaboratedDesignHasTheClocksThatItsDescriptionNames)
{
    read("/soc_elaborated.json", ELABORATED);
    EXPECT_EQ(clocks(), "clk_adc_i port rise 45\n"
                        "clk_sys_i port rise+fall 116 = clk_idle\n"
                        "host_sclk_i port rise+fall 8 = u_mailbox/u_host/sclk_buf\n"
                        "u_clocks/clk_pll black-box rise+fall 28 = clk_link = u_clocks/clk_link_o\n"
                        "u_clocks/u_divider/clk_div_o register rise 17 <- clk_sys_i = clk_div = u_clocks/clk_div_o\n"
                        "u_spi/u_gate/clk_o logic rise 4 <- clk_sys_i = u_spi/clk_shift\n");
}

TEST_F(Soc, TheMappedDesignHasTheSameClocks)
{
    read("/soc_postmap.json", POST_MAP);
    EXPECT_EQ(clocks(), "clk_adc_i port rise 202 = clk_adc = clk_adc_g\n"
                        "clk_div register rise 67 <- clk_sys_i = clk_div_g\n"
                        "clk_sys_i port rise+fall 713 = clk_idle = clk_sys = clk_sys_g\n"
                        "host_sclk_i port rise+fall 31 = host_sclk = host_sclk_g = u_mailbox.u_host.sclk_buf\n"
                        "u_clocks.clk_pll black-box rise+fall 131 = clk_link\n"
                        "u_spi.clk_shift logic rise 24 <- clk_sys_i = u_spi.clk_shift_g\n");
}

} // namespace
} // namespace analysis_test
