#pragma once

#include "Export.h"

#include <vector>

namespace Verific {

/// Growable array of untyped pointers.
class VERIFIC_EXPORT Array {
  public:
    explicit Array(unsigned initial_size = 2) { m_items.reserve(initial_size); }

    unsigned Size() const { return static_cast<unsigned>(m_items.size()); }
    /// Item at @p index, or null past the end.
    void *At(unsigned index) const { return index < m_items.size() ? const_cast<void *>(m_items[index]) : nullptr; }
    void InsertLast(const void *item) { m_items.push_back(item); }
    void *GetFirst() const { return At(0); }
    void *GetLast() const { return m_items.empty() ? nullptr : At(Size() - 1); }
    void Reset() { m_items.clear(); }

  private:
    std::vector<const void *> m_items;
};

} // namespace Verific
