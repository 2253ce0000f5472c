#include "analysis/plan/PlanTexts.h"

#include <netlistdb/analysis/Clocks.h>

#include <array>
#include <charconv>

namespace kvr::netlistdb::analysis::plan {

namespace {

constexpr std::array<const char *, 4> EDGES = {"-", "rise", "fall", "both"};
constexpr std::string_view INVERTED = ":inverted";
constexpr std::size_t HEX_DIGITS = 16;

std::string hexText(std::uint64_t value)
{
    std::array<char, HEX_DIGITS> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value, 16).ptr;
    const std::string_view text(digits.data(), static_cast<std::size_t>(end - digits.data()));
    return std::string(HEX_DIGITS - text.size(), '0').append(text);
}

bool readHex(std::string_view text, std::uint64_t &value)
{
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
    return text.size() == HEX_DIGITS && error == std::errc() && stop == text.data() + text.size();
}

} // namespace

const char *edgesText(std::uint8_t edges)
{
    return EDGES.at(edges & (EDGE_RISE | EDGE_FALL));
}

bool readEdges(std::string_view text, std::uint8_t &edges)
{
    for (edges = 0; edges < EDGES.size(); ++edges) {
        if (text == EDGES.at(edges)) {
            return true;
        }
    }
    return false;
}

std::string gradeText(const PlanBit &bit)
{
    if (!bit.grade) {
        return "none";
    }
    std::string text = nameOf(*bit.grade);
    if (*bit.grade == ProbeGrade::Gone) {
        text.append(":").append(nameOf(bit.reason));
    }
    return text.append(bit.isInverted ? INVERTED : std::string_view());
}

bool readGrade(std::string_view text, PlanBit &bit)
{
    if (text == "none") {
        bit.grade.reset();
        return true;
    }
    // Whatever is a grade is what a bit of some grade, reason and polarity is written as.
    for (auto grade = ProbeGrade::Exact; grade <= ProbeGrade::Unknown;
         grade = static_cast<ProbeGrade>(static_cast<unsigned>(grade) + 1)) {
        bit.grade = grade;
        if (grade != ProbeGrade::Gone) {
            for (const bool isInverted : {false, true}) {
                bit.isInverted = isInverted;
                if (gradeText(bit) == text) {
                    return true;
                }
            }
            bit.isInverted = false;
            continue;
        }
        for (auto reason = GoneReason::Constant; reason <= GoneReason::Retimed;
             reason = static_cast<GoneReason>(static_cast<unsigned>(reason) + 1)) {
            bit.reason = reason;
            if (gradeText(bit) == text) {
                return true;
            }
        }
        bit.reason = GoneReason::None;
    }
    return false;
}

std::string fingerprintText(const NetFingerprint &fingerprint)
{
    if (fingerprint.near == 0 && fingerprint.deep == 0) {
        return "-";
    }
    return hexText(fingerprint.near) + '.' + hexText(fingerprint.deep) + (fingerprint.isOnly ? "" : "*");
}

bool readFingerprint(std::string_view text, NetFingerprint &fingerprint)
{
    fingerprint.isOnly = text.empty() || text.back() != '*';
    if (!fingerprint.isOnly) {
        text.remove_suffix(1);
    }
    return text.size() == 2 * HEX_DIGITS + 1 && text[HEX_DIGITS] == '.' &&
           readHex(text.substr(0, HEX_DIGITS), fingerprint.near) &&
           readHex(text.substr(HEX_DIGITS + 1), fingerprint.deep);
}

std::string vectorOf(const std::string &name)
{
    const std::size_t open = name.rfind('[');
    return open == std::string::npos || name.back() != ']' ? name : name.substr(0, open);
}

} // namespace kvr::netlistdb::analysis::plan
