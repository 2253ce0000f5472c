#include "Set.h"

namespace Verific {

Set::Set(hash_type type, unsigned) : m_type(type) {}

Set::~Set() = default;

unsigned Set::Insert(const void *item)
{
    if (item == nullptr || find(item) != NO_SLOT) {
        return 0;
    }
    if (sparse()) {
        compact([](void *, unsigned) {});
    }
    append(item);
    return 1;
}

void *Set::Get(const void *item) const
{
    const unsigned slot = find(item);
    return slot == NO_SLOT ? nullptr : itemAt(slot);
}

unsigned Set::Remove(const void *item)
{
    const unsigned slot = find(item);
    if (slot == NO_SLOT) {
        return 0;
    }
    removeSlot(slot);
    return 1;
}

void Set::Reset()
{
    Items().swap(m_items);
    m_index.clear();
    m_size = 0;
    m_head = 0;
}

void *Set::GetLast() const
{
    return m_items.empty() ? nullptr : const_cast<void *>(m_items.back());
}

void Set::reserve(unsigned count)
{
    m_items.reserve(count);
}

unsigned Set::append(const void *item)
{
    const unsigned slot = slots();
    m_items.push_back(item);
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

void Set::removeSlot(unsigned slot)
{
    if (m_index.built()) {
        m_index.remove(HashIndex::hashOf(m_type, m_items[slot]), slot);
    }
    m_items[slot] = nullptr;
    --m_size;
    while (!m_items.empty() && m_items.back() == nullptr) {
        m_items.pop_back();
    }
    if (m_items.empty()) {
        m_head = 0;
    }
    while (m_head < slots() && m_items[m_head] == nullptr) {
        ++m_head;
    }
}

void Set::replace(unsigned slot, const void *item)
{
    m_items[slot] = item;
    m_index.clear();
}

unsigned Set::find(const void *item) const
{
    if (m_size == 0 || item == nullptr) {
        return NO_SLOT;
    }
    const auto matches = [this, item](unsigned slot) { return HashIndex::equal(m_type, m_items[slot], item); };
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
    return m_index.find(HashIndex::hashOf(m_type, item), matches);
}

void Set::buildIndex() const
{
    m_index.reset(m_size);
    for (unsigned slot = m_head; slot < slots(); ++slot) {
        if (m_items[slot] != nullptr) {
            indexSlot(slot);
        }
    }
}

void Set::indexSlot(unsigned slot) const
{
    m_index.insert(HashIndex::hashOf(m_type, m_items[slot]), slot);
}

unsigned SetIter::Next(void **item)
{
    const Set *set = static_cast<const Set *>(m_source);
    if (set != nullptr) {
        if (m_at < set->m_head) {
            m_at = set->m_head;
        }
        for (; m_at < set->slots(); ++m_at) {
            if (set->m_items[m_at] != nullptr) {
                if (item != nullptr) {
                    *item = const_cast<void *>(set->m_items[m_at]);
                }
                ++m_at;
                return 1;
            }
        }
    }
    if (item != nullptr) {
        *item = nullptr;
    }
    return 0;
}

} // namespace Verific
