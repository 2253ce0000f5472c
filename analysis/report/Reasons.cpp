#include <netlistdb/analysis/ProbeReport.h>

#include <iterator>

namespace kvr::netlistdb::analysis {

namespace {

struct Words {
    const char *name;
    const char *sentence;
};

constexpr Words WORDS[] = {
    {"protected", "the source protects it: what is in it is not to be seen"},
    {"excluded-memory", "it is a memory as a whole: only what is read and written can be sampled"},
    {"constant", "it never changes"},
    {"undriven", "nothing drives it"},
    {"pad-side", "it lies between an I/O cell and the package: the fabric has no wire there"},
    {"hard-block-pin", "it ends at pins of hard blocks alone: the fabric need have no wire there"},
    {"absorbed", "no net of the device carries its value"},
    {"unmatched", "it is not known which net of the device carries its value"},
    {"clock-net", "it is a clock: sampled with itself it never changes, and a probe loads the clock network"},
    {"unused", "nothing depends on it"},
    {"several-clocks", "registers of several clocks reach it: samples may catch it while it changes"},
    {"no-clock", "registers of no clock reach it: samples may catch it while it changes"},
    {"unrelated-clocks",
     "its bits belong to clocks that are not in step: no sample shows them all as they belong together"},
};
static_assert(std::size(WORDS) == PROBE_REASONS);

} // namespace

const char *nameOf(ProbeReason reason)
{
    return WORDS[static_cast<std::size_t>(reason)].name;
}

const char *sentenceOf(ProbeReason reason)
{
    return WORDS[static_cast<std::size_t>(reason)].sentence;
}

const char *nameOf(ProbeVerdict verdict)
{
    static constexpr const char *names[] = {"ok", "warning", "partly", "no"};
    return names[static_cast<std::size_t>(verdict)];
}

} // namespace kvr::netlistdb::analysis
