#pragma once

#include "Hash.h"
#include "SlabAllocator.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Verific {

/// Hash set of untyped pointers that iterates in order of insertion.
///
/// Removing while iterating is safe; inserting while iterating is not. Look-up is built on first use, so a set that is
/// only filled by the database and iterated costs 8 bytes an item. Null items are not kept.
class VERIFIC_EXPORT Set {
  public:
    explicit Set(hash_type type = POINTER_HASH, unsigned init_bucket_size = 2);
    ~Set();
    Set(const Set &) = delete;
    Set &operator=(const Set &) = delete;

    /// Adds @p item; returns 1 when the set changed, 0 when an equal item was there or @p item is null.
    unsigned Insert(const void *item);
    /// The item in the set that equals @p item, or null. Constant time once the index is built.
    void *Get(const void *item) const;
    /// Removes the item that equals @p item; returns 1 when it was there.
    unsigned Remove(const void *item);
    unsigned Size() const { return m_size; }
    /// Removes everything and frees the storage.
    void Reset();
    /// The item inserted last among those still there, or null.
    void *GetLast() const;

    // What the database itself uses: items known to be new, removed by position.

    static constexpr unsigned NO_SLOT = 0xFFFFFFFFu;
    void reserve(unsigned count);
    /// Adds @p item, which the caller knows is not there yet; returns its slot. Cannot fail after reserve().
    unsigned append(const void *item);
    void removeSlot(unsigned slot);
    /// Puts @p item at @p slot, which is in use. Between the first and the last of such calls that change the order the
    /// set may hold an item twice.
    void replace(unsigned slot, const void *item);
    unsigned slots() const { return static_cast<unsigned>(m_items.size()); }
    void *itemAt(unsigned slot) const { return const_cast<void *>(m_items[slot]); }
    /// True when more than half of the slots are freed, so that compacting pays.
    bool sparse() const { return slots() > 64 && m_size < slots() / 2; }
    /// Closes the gaps, keeping the order, without allocating; @p moved(item, newSlot) is called for every item.
    template <typename Moved> void compact(Moved moved)
    {
        unsigned to = 0;
        for (const void *item : m_items) {
            if (item != nullptr) {
                m_items[to] = item;
                moved(const_cast<void *>(item), to);
                ++to;
            }
        }
        m_items.resize(to);
        m_head = 0;
        m_index.clear();
    }

  private:
    unsigned find(const void *item) const;
    void buildIndex() const;
    void indexSlot(unsigned slot) const;

    friend class SetIter;

    using Items = std::vector<const void *, SlabAllocator<const void *>>;

    Items m_items;             ///< null marks a freed slot; the last one is never freed
    mutable HashIndex m_index; ///< built by the first look-up in a set of some size
    unsigned m_size = 0;
    unsigned m_head = 0; ///< slots before it are freed
    hash_type m_type;
};

/// Walks a Set in order of insertion.
class VERIFIC_EXPORT SetIter {
  public:
    SetIter() = default;
    /// Starts before the first item of @p set; a null set has none.
    void First(const Set *set)
    {
        m_source = set;
        m_at = 0;
    }
    /// Steps to the next item and stores it where @p item (may be null) leads. Returns 0 at the end, storing null.
    unsigned Next(void **item);

    // The macros of DataBase.h walk other ordered things with the same iterator type.

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

/// Typed step behind FOREACH_SET_ITEM.
template <typename T> bool nextSetItem(SetIter &iter, T **item)
{
    void *found = nullptr;
    const bool more = iter.Next(&found) != 0;
    if (item != nullptr) {
        *item = static_cast<T *>(found);
    }
    return more;
}

} // namespace Verific

/// Loops over a Set: `FOREACH_SET_ITEM(set, iter, &item)`; a null set is an empty loop.
#define FOREACH_SET_ITEM(set, iter, item) for ((iter).First(set); ::Verific::nextSetItem((iter), (item));)
