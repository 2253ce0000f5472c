#pragma once

#include "Export.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Verific {

/// How the keys of a Map or Set are compared.
enum hash_type {
    STRING_HASH = 1,  ///< keys are NUL-terminated texts, compared byte by byte
    POINTER_HASH = 3, ///< keys are addresses, compared by identity
};

/// Look-up index over the slots of an insertion-ordered table: open addressing, 32-bit slot numbers.
///
/// The index does not know the table; callers pass the hash of each slot's key. Keys in it are distinct: of several
/// equal keys the owner enters only the first. An empty index costs one empty vector, so that tables which are only
/// iterated never pay for it.
class VERIFIC_EXPORT HashIndex {
  public:
    static constexpr std::uint32_t NONE = 0xFFFFFFFFu;
    /// Tables of up to this many slots are searched one by one: an index would cost more than it saves.
    static constexpr std::uint32_t MOST_UNINDEXED = 8;

    /// Hash of @p key under @p type. A null key hashes like an empty text.
    static std::uint64_t hashOf(hash_type type, const void *key);
    /// True when both keys are equal under @p type; a null key equals only a null one.
    static bool equal(hash_type type, const void *left, const void *right);

    bool built() const { return !m_buckets.empty(); }
    /// Forgets everything and frees the storage.
    void clear();
    /// Forgets everything and makes room for @p count slots.
    void reset(std::uint32_t count);
    /// True when one more slot would overfill the buckets, so that the owner must rebuild with more room.
    bool full() const;
    /// Adds @p slot under @p hash. The index must be built and not full.
    void insert(std::uint64_t hash, std::uint32_t slot);
    /// Removes @p slot, added under @p hash; returns false when it is not there.
    bool remove(std::uint64_t hash, std::uint32_t slot);

    /// The slot under @p hash for which @p matches(slot) is true, or NONE.
    template <typename Matches> std::uint32_t find(std::uint64_t hash, Matches matches) const
    {
        if (m_buckets.empty()) {
            return NONE;
        }
        const std::uint32_t tag = tagOf(hash);
        const std::size_t mask = m_buckets.size() - 1;
        for (std::size_t at = static_cast<std::size_t>(hash) & mask;; at = (at + 1) & mask) {
            const Bucket &bucket = m_buckets[at];
            if (bucket.slot == NONE) {
                return NONE;
            }
            if (bucket.slot != DELETED && bucket.tag == tag && matches(bucket.slot)) {
                return bucket.slot;
            }
        }
    }

  private:
    /// The tag avoids comparing keys whose hashes differ.
    struct Bucket {
        std::uint32_t slot;
        std::uint32_t tag;
    };
    static constexpr std::uint32_t DELETED = 0xFFFFFFFEu;

    static std::uint32_t tagOf(std::uint64_t hash) { return static_cast<std::uint32_t>(hash >> 32); }

    std::vector<Bucket> m_buckets; ///< power of two, at most 3/4 in use
    std::uint32_t m_used = 0;      ///< buckets that are not NONE
};

} // namespace Verific
