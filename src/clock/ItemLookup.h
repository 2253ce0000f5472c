#pragma once

#include "netlist/VDBObjectPool.h"

namespace kvr::netlistdb {

/// Leads from items to netlist objects and back for the analysis of one source.
///
/// Where one netlist was imported as both sources, an object leads to the item of the source that is analysed. What
/// this source does not know is looked up in the other: a caller may ask about an instance of one with a net of the
/// other.
class ItemLookup {
  public:
    explicit ItemLookup(const VDBObjectPool &own, const VDBObjectPool *other = nullptr) : m_own(own), m_other(other) {}

    /// What @p key leads to in the pools, or null; @p key may be null.
    template <typename Key> auto find(const Key *key) const -> decltype(std::declval<VDBObjectPool>().find(key))
    {
        auto *const found = m_own.find(key);
        return found != nullptr || m_other == nullptr ? found : m_other->find(key);
    }

  private:
    const VDBObjectPool &m_own;
    const VDBObjectPool *m_other;
};

} // namespace kvr::netlistdb
