#pragma once

#include <string>
#include <unordered_set>
#include <vector>

namespace kvr::netlistdb {
class IVDBInstance;
class IVDBNetBase;
class IVDBNetBus;
} // namespace kvr::netlistdb

namespace kvr::netlistdb::tool {

class Design;
class ModuleNames;
class NamePattern;
struct OtherSignal;

/// A net or bus that a search found, or a vector or constant that is none.
struct OtherNameHit {
    IVDBNetBase *item = nullptr;         ///< the net or bus; null: what the signal names
    const OtherSignal *signal = nullptr; ///< where there is no item
    std::string matched;                 ///< the name by which it was found when that is not its own
};

/// Finds, in the instances that a search meets, what the pattern matches by another name than that of a net or bus.
class OtherNameHits {
  public:
    /// @p design and @p pattern must outlive the object. With @p declaredOnly, what no user declared is left out.
    OtherNameHits(Design &design, const NamePattern &pattern, bool declaredOnly)
        : m_design(design), m_pattern(pattern), m_declaredOnly(declaredOnly)
    {
    }

    /// Looks through the other names in @p instance; @p prefix precedes them.
    void enter(IVDBInstance &instance, const std::string &prefix);
    /// Hands out some hits in the instance, or none as yet: bits of buses are looked at by and by.
    std::vector<OtherNameHit> take();
    /// True when take() has handed out all.
    bool isTaken() const { return m_buses == nullptr && m_hits.empty(); }
    /// True when @p item, of the same instance, belongs to a vector that is a hit as a whole.
    bool covers(IVDBNetBase &item);

  private:
    void findBits(IVDBNetBus &bus, std::vector<OtherNameHit> &hits);
    bool isFoundAsNamed(const OtherSignal &other);
    void addVector(const OtherSignal &vector);
    void addItem(IVDBNetBase &item, const std::string &name);
    bool matches(std::string_view name);

    Design &m_design;
    const NamePattern &m_pattern;
    bool m_declaredOnly;
    ModuleNames *m_names = nullptr;
    std::string m_prefix;
    std::string m_fullName;
    const std::vector<IVDBNetBus *> *m_buses = nullptr; ///< whose bits are still to be looked at; null: none
    std::size_t m_nextBus = 0;
    std::vector<OtherNameHit> m_hits;
    std::unordered_set<const OtherSignal *> m_vectors;
    std::unordered_set<const IVDBNetBase *> m_items;
};

} // namespace kvr::netlistdb::tool
