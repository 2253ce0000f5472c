#pragma once

#include "Map.h"
#include "SharedName.h"
#include "SlabAllocator.h"

#include <memory>
#include <vector>

namespace Verific {

/// Parameters of an instance in order of addition, keys distinct. Copies of an instance share the table of the original
/// until one of them adds a parameter.
class ParamTable {
  public:
    static void retain(ParamTable *table)
    {
        if (table != nullptr) {
            ++table->m_users;
        }
    }
    static void release(ParamTable *table)
    {
        if (table != nullptr && --table->m_users == 0) {
            delete table;
        }
    }

    // One for nearly each look-up table of a device.
    static void *operator new(std::size_t size) { return allocateElements(size); }
    static void operator delete(void *table, std::size_t size) noexcept { freeElements(table, size); }

    bool shared() const { return m_users > 1; }
    /// Makes room for @p count parameters in all.
    void reserve(unsigned count);
    /// A table of one user with the same parameters.
    std::unique_ptr<ParamTable> clone() const;
    /// Adds a parameter; returns false when the key is null or there already.
    bool add(const SharedName &key, const SharedName &value);
    /// Adds a parameter; an existing key takes the new value. @p key has a text.
    void set(const SharedName &key, const SharedName &value);
    Map *map() { return &m_map; }
    const Map *map() const { return &m_map; }

  private:
    struct Texts {
        SharedName key;
        SharedName value;
    };

    Map m_map{STRING_HASH};
    std::vector<Texts, SlabAllocator<Texts>> m_texts; ///< owns what the map points to
    unsigned m_users = 1;
};

} // namespace Verific
