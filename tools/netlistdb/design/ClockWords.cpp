#include "design/ClockWords.h"

#include <utility>

namespace kvr::netlistdb::tool {

namespace {

using namespace analysis;

template <std::size_t N>
std::vector<std::string> wordsOf(std::uint32_t mask, const std::pair<std::uint32_t, const char *> (&words)[N])
{
    std::vector<std::string> list;
    for (const auto &[bit, word] : words) {
        if ((mask & bit) != 0) {
            list.emplace_back(word);
        }
    }
    return list;
}

} // namespace

const char *edgesText(std::uint8_t edges)
{
    static constexpr const char *TEXTS[] = {"", "rise", "fall", "both"};
    return TEXTS[edges & (EDGE_RISE | EDGE_FALL)];
}

std::vector<std::string> reachingWords(std::uint32_t reached)
{
    return wordsOf(reached, {{REACHED_BY_INPUT_PORT, "input-port"},
                             {REACHED_BY_CONSTANT, "constant"},
                             {REACHED_BY_BLACK_BOX, "black-box"},
                             {REACHED_BY_LATCH, "latch"},
                             {REACHED_BY_UNDRIVEN, "undriven"},
                             {REACHED_BY_LOOP, "loop"}});
}

std::vector<std::string> reachedWords(std::uint32_t reached)
{
    return wordsOf(reached, {{REACHES_OUTPUT_PORT, "output-port"},
                             {REACHES_BLACK_BOX, "black-box"},
                             {REACHES_LATCH, "latch"},
                             {REACHES_CLOCK_PIN, "clock-pin"}});
}

std::vector<std::string> roleWords(std::uint8_t roles)
{
    return wordsOf(roles, {{CAPTURE_DATA, "data"}, {CAPTURE_ENABLE, "enable"}, {CAPTURE_SET_RESET, "set-reset"}});
}

} // namespace kvr::netlistdb::tool
