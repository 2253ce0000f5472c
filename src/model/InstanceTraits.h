#pragma once

#include "model/NameBlock.h"

#include <cstdint>
#include <utility>

namespace kvr::netlistdb {

/// What all occurrences of an instance of the netlist database have in common.
class InstanceTraits {
  public:
    InstanceTraits(const char *name, std::uint32_t parameterCount)
        : m_name(NameBlock::make(name)), m_parameterCount(parameterCount)
    {
    }
    InstanceTraits(InstanceTraits &&other) noexcept
        : m_name(std::exchange(other.m_name, nullptr)), m_parameterCount(other.m_parameterCount)
    {
    }
    ~InstanceTraits() { NameBlock::release(m_name); }
    InstanceTraits(const InstanceTraits &) = delete;
    InstanceTraits &operator=(const InstanceTraits &) = delete;

    /// The name for one more holder; null for an empty one.
    NameBlock *shareName() const { return NameBlock::share(m_name); }
    std::uint32_t parameterCount() const { return m_parameterCount; }

  private:
    NameBlock *m_name;
    std::uint32_t m_parameterCount;
};

} // namespace kvr::netlistdb
