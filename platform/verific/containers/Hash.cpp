#include "Hash.h"

#include <cstring>

#include <xxhash.h>

namespace Verific {

std::uint64_t HashIndex::hashOf(hash_type type, const void *key)
{
    if (type == STRING_HASH) {
        const char *text = key != nullptr ? static_cast<const char *>(key) : "";
        return XXH3_64bits(text, std::strlen(text));
    }
    // Addresses differ in few bits and are multiples of 16: spread them over the whole word.
    std::uint64_t bits = reinterpret_cast<std::uintptr_t>(key);
    bits ^= bits >> 33;
    bits *= 0xff51afd7ed558ccdULL;
    bits ^= bits >> 33;
    bits *= 0xc4ceb9fe1a85ec53ULL;
    bits ^= bits >> 33;
    return bits;
}

bool HashIndex::equal(hash_type type, const void *left, const void *right)
{
    if (left == right) {
        return true;
    }
    if (type != STRING_HASH || left == nullptr || right == nullptr) {
        return false;
    }
    return std::strcmp(static_cast<const char *>(left), static_cast<const char *>(right)) == 0;
}

void HashIndex::clear()
{
    std::vector<Bucket>().swap(m_buckets);
    m_used = 0;
}

void HashIndex::reset(std::uint32_t count)
{
    std::size_t buckets = 16;
    while (buckets / 2 < count) {
        buckets *= 2;
    }
    std::vector<Bucket>(buckets, Bucket{NONE, 0}).swap(m_buckets);
    m_used = 0;
}

bool HashIndex::full() const
{
    return (static_cast<std::size_t>(m_used) + 1) * 4 > m_buckets.size() * 3;
}

void HashIndex::insert(std::uint64_t hash, std::uint32_t slot)
{
    const std::size_t mask = m_buckets.size() - 1;
    std::size_t at = static_cast<std::size_t>(hash) & mask;
    while (m_buckets[at].slot < DELETED) {
        at = (at + 1) & mask;
    }
    if (m_buckets[at].slot == NONE) {
        ++m_used;
    }
    m_buckets[at] = Bucket{slot, tagOf(hash)};
}

bool HashIndex::remove(std::uint64_t hash, std::uint32_t slot)
{
    const std::size_t mask = m_buckets.size() - 1;
    for (std::size_t at = static_cast<std::size_t>(hash) & mask; m_buckets[at].slot != NONE; at = (at + 1) & mask) {
        if (m_buckets[at].slot == slot) {
            // Without a successor the chain ends here, and the bucket can be reused.
            const bool last = m_buckets[(at + 1) & mask].slot == NONE;
            m_buckets[at].slot = last ? NONE : DELETED;
            m_used -= last ? 1 : 0;
            return true;
        }
    }
    return false;
}

} // namespace Verific
