#pragma once

#include "analysis/Hierarchy.h"

#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis {

/// What a net of a module is electrically, in the terms of the module.
class ElectricalCode {
  public:
    enum Kind : std::uint32_t {
        Clock, ///< a clock that begins in the module or below; the number is the clock's in the module
        Port,  ///< whatever comes in through that port
        Net,   ///< that net of the module, where nothing is clocked
        Below, ///< an output of an instance; the number is a place in ModuleClocks::below
    };
    ElectricalCode() = default;
    ElectricalCode(Kind kind, std::uint32_t number, bool inverted)
        : m_code(kind << 30 | std::uint32_t{inverted} << 29 | number)
    {
    }
    Kind kind() const { return static_cast<Kind>(m_code >> 30); }
    bool isInverted() const { return (m_code >> 29 & 1) != 0; }
    std::uint32_t number() const { return m_code & ((1U << 29) - 1); }
    ElectricalCode invertedIf(bool inverted) const { return {kind(), number(), isInverted() != inverted}; }

  private:
    std::uint32_t m_code = 0;
};

/// The clocks that begin in a module, and below it: first those that begin at nets of its own, then those of one
/// instance after the other.
struct ModuleClocks {
    struct SubOutput {
        std::uint32_t sub;
        std::uint32_t port;
    };
    std::vector<ElectricalCode> nets;
    std::vector<SubOutput> below;
    std::vector<std::uint32_t> roots;      ///< nets at which clocks begin, ascending
    std::vector<std::uint32_t> firstOfSub; ///< number of the first clock of each instance, and the number of all
    std::vector<bool> clockPorts;          ///< by port: clocks something inside

    std::uint32_t count() const { return firstOfSub.back(); }
    std::size_t memory() const
    {
        return nets.capacity() * sizeof(ElectricalCode) + below.capacity() * sizeof(SubOutput) +
               (roots.capacity() + firstOfSub.capacity()) * sizeof(std::uint32_t) + clockPorts.capacity() / 8;
    }
};

/// Follows every net of every module to what it is electrically, and numbers the clocks. One for each module.
/// @throws std::length_error when there are too many clocks.
std::vector<ModuleClocks> findClocks(const Hierarchy &hierarchy);

} // namespace kvr::netlistdb::analysis
