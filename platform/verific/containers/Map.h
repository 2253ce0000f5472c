#pragma once

#include "Hash.h"
#include "SlabAllocator.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Verific {

/// Hash map of untyped pointers that iterates in order of insertion.
///
/// Keys are not copied: a key (and, for STRING_HASH, its text) must stay valid and unchanged while it is in the map.
/// Removing while iterating is safe; inserting while iterating is not. Look-up is built on first use, so a map that is
/// only filled by the database and iterated costs 16 bytes an entry.
class VERIFIC_EXPORT Map {
  public:
    explicit Map(hash_type type = STRING_HASH, unsigned init_bucket_size = 2);
    ~Map();
    Map(const Map &) = delete;
    Map &operator=(const Map &) = delete;

    /// Adds @p key with @p value. An existing key keeps its value unless @p force_overwrite is non-zero.
    /// Returns 1 when the map changed, 0 when the key was there (and was not overwritten) or is a null text.
    unsigned Insert(const void *key, const void *value, unsigned force_overwrite = 0);
    /// The value of @p key, or null. Constant time (the first call on an unindexed map builds the index).
    void *GetValue(const void *key) const;
    /// Removes @p key; returns 1 when it was there.
    unsigned Remove(const void *key);
    unsigned Size() const { return m_size; }
    /// Removes everything and frees the storage.
    void Reset();
    /// Exchanges the entries with those of @p other, which has the same hash_type. Slots stay as they are.
    void swap(Map &other) noexcept;

    // What the database itself uses: entries under keys that may be null or occur twice, removed by position.

    static constexpr unsigned NO_SLOT = 0xFFFFFFFFu;
    /// Room for @p count entries in all.
    void reserve(unsigned count);
    /// Adds an entry without looking whether the key is there; returns its slot. A null key is never found. Cannot fail
    /// after reserve().
    unsigned append(const void *key, const void *value);
    /// Removes the entry at @p slot.
    void removeSlot(unsigned slot);
    /// Slots in use and freed, the bound of slot numbers.
    unsigned slots() const { return static_cast<unsigned>(m_entries.size()); }
    /// Value at @p slot, or null for a freed one.
    void *valueAt(unsigned slot) const
    {
        const void *value = m_entries[slot].value;
        return value == &FREED ? nullptr : const_cast<void *>(value);
    }
    const void *keyAt(unsigned slot) const { return m_entries[slot].key; }
    /// True when more than half of the slots are freed, so that compacting pays.
    bool sparse() const { return slots() > 64 && m_size < slots() / 2; }
    /// Closes the gaps, keeping the order, without allocating; @p moved(value, newSlot) is called for every
    /// entry.
    template <typename Moved> void compact(Moved moved)
    {
        unsigned to = 0;
        for (const Entry &entry : m_entries) {
            if (entry.value != &FREED) {
                m_entries[to] = entry;
                moved(const_cast<void *>(entry.value), to);
                ++to;
            }
        }
        m_entries.resize(to);
        m_head = 0;
        m_index.clear();
    }

  private:
    struct Entry {
        const void *key;
        const void *value; ///< the address of FREED marks a freed slot
    };

    friend class MapIter;
    static const char FREED;

    unsigned find(const void *key) const;
    void buildIndex() const;
    void indexSlot(unsigned slot) const;

    using Entries = std::vector<Entry, SlabAllocator<Entry>>;

    Entries m_entries;         ///< the last one is never a freed one
    mutable HashIndex m_index; ///< the first slot of every key; built by the first look-up in a table of some size
    unsigned m_size = 0;
    unsigned m_head = 0; ///< slots before it are freed
    hash_type m_type;
    mutable bool m_repeatedKeys = false; ///< a key in the index is also at a later slot
};

/// Walks a Map in order of insertion.
class VERIFIC_EXPORT MapIter {
  public:
    MapIter() = default;
    /// Starts before the first entry of @p map; a null map has none.
    void First(const Map *map)
    {
        m_source = map;
        m_at = 0;
    }
    /// Steps to the next entry and stores its key and value where the pointers (either may be null) lead.
    /// Returns 0 at the end, storing null.
    unsigned Next(void **key, void **value);

    // The macros of DataBase.h walk other ordered things with the same iterator type.

    /// Starts a walk over @p source, which is not a Map.
    void start(const void *source)
    {
        m_source = source;
        m_at = 0;
    }
    const void *source() const { return m_source; }
    void setSource(const void *source) { m_source = source; }
    unsigned position() const { return m_at; }
    void setPosition(unsigned position) { m_at = position; }

  private:
    const void *m_source = nullptr;
    unsigned m_at = 0;
};

} // namespace Verific

/// Loops over a Map: `FOREACH_MAP_ITEM(map, iter, &key, &value)`; a null map is an empty loop.
#define FOREACH_MAP_ITEM(map, iter, key, value) for ((iter).First(map); ::Verific::nextMapItem((iter), (key), (value));)

namespace Verific {

/// Typed step behind FOREACH_MAP_ITEM; @p key and @p value may be null pointers of any pointer type.
template <typename K, typename V> bool nextMapItem(MapIter &iter, K **key, V **value)
{
    void *k = nullptr;
    void *v = nullptr;
    const bool more = iter.Next(&k, &v) != 0;
    if (key != nullptr) {
        *key = static_cast<K *>(k);
    }
    if (value != nullptr) {
        *value = static_cast<V *>(v);
    }
    return more;
}
template <typename V> bool nextMapItem(MapIter &iter, std::nullptr_t, V **value)
{
    return nextMapItem(iter, static_cast<void **>(nullptr), value);
}
template <typename K> bool nextMapItem(MapIter &iter, K **key, std::nullptr_t)
{
    return nextMapItem(iter, key, static_cast<void **>(nullptr));
}

} // namespace Verific
