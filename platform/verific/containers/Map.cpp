#include "Map.h"

#include <utility>

namespace Verific {

const char Map::FREED = 0;

Map::Map(hash_type type, unsigned) : m_type(type) {}

Map::~Map() = default;

unsigned Map::Insert(const void *key, const void *value, unsigned force_overwrite)
{
    if (key == nullptr && m_type == STRING_HASH) {
        return 0;
    }
    const unsigned slot = find(key);
    if (slot != NO_SLOT) {
        if (force_overwrite == 0) {
            return 0;
        }
        m_entries[slot].value = value;
        return 1;
    }
    if (sparse()) {
        compact([](void *, unsigned) {});
    }
    append(key, value);
    return 1;
}

void *Map::GetValue(const void *key) const
{
    const unsigned slot = find(key);
    return slot == NO_SLOT ? nullptr : const_cast<void *>(m_entries[slot].value);
}

unsigned Map::Remove(const void *key)
{
    const unsigned slot = find(key);
    if (slot == NO_SLOT) {
        return 0;
    }
    removeSlot(slot);
    return 1;
}

void Map::Reset()
{
    Entries().swap(m_entries);
    m_index.clear();
    m_size = 0;
    m_head = 0;
    m_repeatedKeys = false;
}

void Map::swap(Map &other) noexcept
{
    std::swap(m_entries, other.m_entries);
    std::swap(m_index, other.m_index);
    std::swap(m_size, other.m_size);
    std::swap(m_head, other.m_head);
    std::swap(m_repeatedKeys, other.m_repeatedKeys);
}

void Map::reserve(unsigned count)
{
    m_entries.reserve(count);
}

unsigned Map::append(const void *key, const void *value)
{
    const unsigned slot = slots();
    m_entries.push_back(Entry{key, value});
    ++m_size;
    if (m_index.built()) {
        if (m_index.full()) {
            m_index.clear(); // the next look-up builds a larger one
        } else {
            indexSlot(slot);
        }
    }
    return slot;
}

void Map::removeSlot(unsigned slot)
{
    const void *key = m_entries[slot].key;
    if (m_index.built() && (key != nullptr || m_type != STRING_HASH)) {
        if (m_index.remove(HashIndex::hashOf(m_type, key), slot) && m_repeatedKeys) {
            m_index.clear(); // another entry of this key may have to take the place
        }
    }
    m_entries[slot] = Entry{nullptr, &FREED};
    --m_size;
    while (!m_entries.empty() && m_entries.back().value == &FREED) {
        m_entries.pop_back();
    }
    if (m_entries.empty()) {
        m_head = 0;
    }
    while (m_head < slots() && m_entries[m_head].value == &FREED) {
        ++m_head;
    }
}

unsigned Map::find(const void *key) const
{
    if (m_size == 0 || (key == nullptr && m_type == STRING_HASH)) {
        return NO_SLOT;
    }
    const auto matches = [this, key](unsigned slot) {
        const Entry &entry = m_entries[slot];
        return entry.value != &FREED && HashIndex::equal(m_type, entry.key, key);
    };
    if (!m_index.built()) {
        if (slots() <= HashIndex::MOST_UNINDEXED) {
            for (unsigned slot = 0; slot < slots(); ++slot) {
                if (matches(slot)) {
                    return slot;
                }
            }
            return NO_SLOT;
        }
        buildIndex();
    }
    return m_index.find(HashIndex::hashOf(m_type, key), matches);
}

void Map::buildIndex() const
{
    m_index.reset(m_size);
    m_repeatedKeys = false;
    for (unsigned slot = m_head; slot < slots(); ++slot) {
        if (m_entries[slot].value != &FREED) {
            indexSlot(slot);
        }
    }
}

void Map::indexSlot(unsigned slot) const
{
    const void *key = m_entries[slot].key;
    if (key == nullptr && m_type == STRING_HASH) {
        return;
    }
    const std::uint64_t hash = HashIndex::hashOf(m_type, key);
    const auto same = [this, key](unsigned other) { return HashIndex::equal(m_type, m_entries[other].key, key); };
    if (m_index.find(hash, same) != HashIndex::NONE) {
        m_repeatedKeys = true;
    } else {
        m_index.insert(hash, slot);
    }
}

unsigned MapIter::Next(void **key, void **value)
{
    const Map *map = static_cast<const Map *>(m_source);
    if (map != nullptr) {
        if (m_at < map->m_head) {
            m_at = map->m_head;
        }
        for (; m_at < map->slots(); ++m_at) {
            const Map::Entry &entry = map->m_entries[m_at];
            if (entry.value == &Map::FREED) {
                continue;
            }
            if (key != nullptr) {
                *key = const_cast<void *>(entry.key);
            }
            if (value != nullptr) {
                *value = const_cast<void *>(entry.value);
            }
            ++m_at;
            return 1;
        }
    }
    if (key != nullptr) {
        *key = nullptr;
    }
    if (value != nullptr) {
        *value = nullptr;
    }
    return 0;
}

} // namespace Verific
