#pragma once

#include <cstdint>
#include <vector>

namespace Verific::saved {

// Bits of the flag columns of a saved netlist.

constexpr std::uint8_t PROTECTED = 1;
constexpr std::uint8_t USER_DECLARED = 2;
constexpr std::uint8_t ALL_OBJECT_FLAGS = PROTECTED | USER_DECLARED;

constexpr std::uint8_t BLACK_BOX = 1;
constexpr std::uint8_t REGISTER = 2;
constexpr std::uint8_t OPERATOR = 4;
constexpr std::uint8_t ALL_NETLIST_FLAGS = BLACK_BOX | REGISTER | OPERATOR;

/// For each netlist the netlists that it instantiates, each once.
using Children = std::vector<std::vector<std::uint32_t>>;

/// True when no netlist contains itself at any depth.
bool isAcyclic(const Children &children);

} // namespace Verific::saved
