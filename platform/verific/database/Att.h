#pragma once

#include "SharedName.h"

#include <utility>

namespace Verific {

/// One attribute: a key and a value, both copied.
class VERIFIC_EXPORT Att {
  public:
    /// @p value may be null.
    Att(const char *key, const char *value) : m_key(key), m_value(value) {}
    Att(SharedName key, SharedName value) : m_key(std::move(key)), m_value(std::move(value)) {}

    const char *Key() const { return m_key.get(); }
    /// The value's text, or null when the attribute has none.
    const char *Value() const { return m_value.get(); }

  private:
    SharedName m_key;
    SharedName m_value;
};

} // namespace Verific
