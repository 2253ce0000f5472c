#pragma once

#include <netlistdb/analysis/ProbePlan.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The words of a plan for what is no name, both ways. Reading returns false for a word that is none.
namespace kvr::netlistdb::analysis::plan {

constexpr std::string_view FORMAT = "netlistdb-plan";
constexpr unsigned VERSION = 1;

/// `rise`, `fall`, `both`, or `-`.
const char *edgesText(std::uint8_t edges);
bool readEdges(std::string_view text, std::uint8_t &edges);

/// `exact`, `structural:inverted`, `gone:constant`, `none`.
std::string gradeText(const PlanBit &bit);
bool readGrade(std::string_view text, PlanBit &bit);

/// Two numbers of 16 hexadecimal digits with a dot between, `*` behind when other wires have the second one, too; `-`.
std::string fingerprintText(const NetFingerprint &fingerprint);
bool readFingerprint(std::string_view text, NetFingerprint &fingerprint);

/// The vector of which a net called @p name is a bit, or the name itself.
std::string vectorOf(const std::string &name);

} // namespace kvr::netlistdb::analysis::plan
