#include "design/ClockChains.h"

#include "design/ClockWords.h"

#include <fmt/format.h>

namespace kvr::netlistdb::tool {

namespace {

using namespace analysis;

const char *nameOf(StepKind kind)
{
    switch (kind) {
    case StepKind::Cell:
        return "cell";
    case StepKind::Hierarchy:
        return "hierarchy";
    case StepKind::Register:
        return "register";
    case StepKind::End:
        break;
    }
    return "end";
}

std::string placeText(const SourcePlace &place, const std::string &directory)
{
    if (place.file.empty()) {
        return {};
    }
    std::string_view file = place.file;
    if (file.substr(0, directory.size()) == directory) {
        file.remove_prefix(directory.size());
    }
    return fmt::format("  {}:{}", file, place.line);
}

/// How the chain goes on behind the net of @p step; empty at its end.
std::string passageOf(const ChainStep &step)
{
    switch (step.kind) {
    case StepKind::Cell:
        return fmt::format("from {} of {} ({}), through {}", step.output, step.cell, step.cellType, step.input);
    case StepKind::Register:
        return fmt::format("from {} of the register {} ({}), clocked by {}", step.output, step.cell, step.cellType,
                           step.input);
    case StepKind::Hierarchy:
        return step.input.empty() ? fmt::format("through port {}", step.output)
                                  : fmt::format("into {} ({}) through port {}", step.cell, step.cellType, step.output);
    case StepKind::End:
        break;
    }
    return step.cell.empty() ? std::string() : fmt::format("from {} of {} ({})", step.output, step.cell, step.cellType);
}

void appendSteps(std::string &text, const std::vector<ChainStep> &steps, const std::string &directory)
{
    for (const ChainStep &step : steps) {
        const std::string passage = passageOf(step);
        const std::string place = placeText(step.place, directory);
        text += fmt::format("    {}{}\n", step.netName, passage.empty() ? place : "");
        if (!passage.empty()) {
            text += fmt::format("      {}{}\n", passage, place);
        }
    }
}

void appendChains(std::string &text, const std::vector<ClockChain> &chains, const char *what, const ClockMap &clocks,
                  const std::string &directory)
{
    for (const ClockChain &chain : chains) {
        text += fmt::format("  {}{}: {} cell{}\n", what, clocks.clocks()[chain.clock].name, chain.cells,
                            chain.cells == 1 ? "" : "s");
        appendSteps(text, chain.data, directory);
        appendSteps(text, chain.clockToRoot, directory);
    }
}

Json jsonOf(const std::vector<ChainStep> &steps)
{
    Json list = Json::array();
    for (const ChainStep &step : steps) {
        Json object = {{"net", step.netName}, {"step", nameOf(step.kind)}};
        const auto add = [&object](const char *key, const std::string &text) {
            if (!text.empty()) {
                object[key] = text;
            }
        };
        add("cell", step.cell);
        add("type", step.cellType);
        add("output", step.output);
        add("input", step.input);
        add("file", step.place.file);
        if (!step.place.file.empty()) {
            object["line"] = step.place.line;
        }
        list.push_back(std::move(object));
    }
    return list;
}

Json jsonOf(const std::vector<ClockChain> &chains, const ClockMap &clocks)
{
    Json list = Json::array();
    for (const ClockChain &chain : chains) {
        list.push_back({{"clock", clocks.clocks()[chain.clock].name},
                        {"cells", chain.cells},
                        {"data", jsonOf(chain.data)},
                        {"clock_to_root", jsonOf(chain.clockToRoot)}});
    }
    return list;
}

} // namespace

std::string pictureOf(const LaunchProof &proof, const ClockMap &clocks, const std::string &directory)
{
    std::string text;
    appendChains(text, proof.clocks, "", clocks, directory);
    appendChains(text, proof.networks, "network of ", clocks, directory);
    for (const EndChain &chain : proof.ends) {
        text += fmt::format("  {}\n", reachingWords(chain.end).front());
        appendSteps(text, chain.data, directory);
    }
    return text;
}

Json jsonOf(const LaunchProof &proof, const ClockMap &clocks)
{
    Json ends = Json::array();
    for (const EndChain &chain : proof.ends) {
        ends.push_back({{"end", reachingWords(chain.end).front()}, {"data", jsonOf(chain.data)}});
    }
    return {{"clocks", jsonOf(proof.clocks, clocks)},
            {"networks", jsonOf(proof.networks, clocks)},
            {"ends", std::move(ends)}};
}

} // namespace kvr::netlistdb::tool
