#pragma once

#include "Export.h"

#include <cstddef>

namespace Verific {

/// An immutable text held once by every object that carries it: a copied netlist shares the names of its original.
///
/// One pointer wide; null stands for "no name", which differs from an empty one. Not safe to share between threads.
class VERIFIC_EXPORT SharedName {
  public:
    SharedName() = default;
    explicit SharedName(const char *text);
    SharedName(const char *text, std::size_t length);
    SharedName(const SharedName &other);
    SharedName(SharedName &&other) noexcept : m_text(other.m_text) { other.m_text = nullptr; }
    SharedName &operator=(SharedName other) noexcept
    {
        char *mine = m_text;
        m_text = other.m_text;
        other.m_text = mine;
        return *this;
    }
    ~SharedName();

    /// NUL-terminated text, or null.
    const char *get() const { return m_text; }

  private:
    char *m_text = nullptr; ///< points past the reference count
};

} // namespace Verific
