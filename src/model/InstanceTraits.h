#pragma once

#include <netlistdb/PooledItem.h>

#include <cstdint>
#include <string>
#include <utility>

namespace kvr::netlistdb {

/// What shared texts implement.
struct NoInterface {};

/// An immutable text with the number of those who hold it. Not safe to share between threads.
struct SharedString : PooledItem<NoInterface> {
    explicit SharedString(const char *from) : text(from) {}

    const std::string text;
    std::uint32_t holders = 1;
};

/// Lets go of @p text, which may be null, and deletes it when nobody else holds it.
inline void release(SharedString *text)
{
    if (text != nullptr && --text->holders == 0) {
        delete text;
    }
}

/// What all occurrences of an instance of the netlist database have in common.
class InstanceTraits {
  public:
    InstanceTraits(const char *name, std::uint32_t parameterCount)
        : m_name(name != nullptr && *name != '\0' ? new SharedString(name) : nullptr), m_parameterCount(parameterCount)
    {
    }
    InstanceTraits(InstanceTraits &&other) noexcept
        : m_name(std::exchange(other.m_name, nullptr)), m_parameterCount(other.m_parameterCount)
    {
    }
    ~InstanceTraits() { release(m_name); }
    InstanceTraits(const InstanceTraits &) = delete;
    InstanceTraits &operator=(const InstanceTraits &) = delete;

    /// The name for one more holder; null for an empty one.
    SharedString *shareName() const
    {
        if (m_name != nullptr) {
            ++m_name->holders;
        }
        return m_name;
    }
    std::uint32_t parameterCount() const { return m_parameterCount; }

  private:
    SharedString *m_name;
    std::uint32_t m_parameterCount;
};

} // namespace kvr::netlistdb
